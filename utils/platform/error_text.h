#pragma once

#include <cstdint>
#include <string>

namespace Zentara::Utils::Platform {

/// The number of the calling thread's last failed system call.
std::uint32_t lastError() noexcept;
void setLastError(std::uint32_t number) noexcept;
/// The same for sockets, which may count apart.
std::uint32_t lastSocketError() noexcept;

/// The system's text of an error number (UTF-8), perhaps ending in line ends; empty for an unknown number.
std::string errorText(std::uint32_t number);

/// The text of the last error. After openLibrary() or findSymbol() failed, it is the loader's own text where
/// the system gives one.
std::string lastErrorText();

/// Puts the last error back as it was, for code that must not disturb its caller's.
class LastErrorKeeper {
public:
    LastErrorKeeper() noexcept : number(lastError()) {}
    ~LastErrorKeeper() { setLastError(number); }
    LastErrorKeeper(const LastErrorKeeper&) = delete;
    LastErrorKeeper& operator=(const LastErrorKeeper&) = delete;

private:
    std::uint32_t number;
};

} // namespace Zentara::Utils::Platform
