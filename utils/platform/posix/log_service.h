#pragma once

#include <string>

namespace Zentara::Utils::Platform {

/// Stands in for the system's log service, for tests: the copy of the library that they link contains it, the library
/// does not. While it lives, what the process reports to the system's log comes here.
class [[gnu::visibility("default")]] LogService final {
public:
    /// Listens at a path that must not exist yet; aborts where it cannot.
    explicit LogService(std::string path);
    ~LogService();
    LogService(const LogService&) = delete;
    LogService& operator=(const LogService&) = delete;

    /// The next entry as it was sent; empty when there is none.
    std::string receive();

    /// Ends the connections to it, as a service that is started anew does.
    void restart();

private:
    void listen();
    void end();

    const std::string path;
    const char* const formerAddress;
    int socket = -1;
};

} // namespace Zentara::Utils::Platform
