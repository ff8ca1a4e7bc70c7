#include "utils/platform/error_text.h"

#include <memory>

#include "utils/platform/text_encoding.h"
#include "utils/platform/windows/system.h"

namespace Zentara::Utils::Platform {

namespace {

constexpr DWORD defaultLanguage = 0x400; // the user's

} // namespace

std::uint32_t lastError() noexcept { return GetLastError(); }

void setLastError(std::uint32_t number) noexcept { SetLastError(number); }

std::uint32_t lastSocketError() noexcept { return static_cast<std::uint32_t>(WSAGetLastError()); }

std::string errorText(std::uint32_t number) {
    struct Freer {
        void operator()(wchar_t* text) const noexcept { LocalFree(text); }
    };
    const LastErrorKeeper keeper; // asking for the text of an error must not be one
    wchar_t* buffer = nullptr;
    const DWORD size =
        FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM, nullptr, number,
                       defaultLanguage, reinterpret_cast<wchar_t*>(&buffer), 0, nullptr);
    const std::unique_ptr<wchar_t, Freer> text(buffer);
    return text ? wideToUtf8OrNarrowed({text.get(), size}) : std::string();
}

std::string lastErrorText() { return errorText(GetLastError()); }

} // namespace Zentara::Utils::Platform
