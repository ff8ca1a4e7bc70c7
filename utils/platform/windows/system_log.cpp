#include "utils/platform/system_log.h"

#include <algorithm>
#include <new>

#include "utils/platform/text_encoding.h"
#include "utils/platform/windows/system.h"

namespace Zentara::Utils::Platform {

namespace {

constexpr WORD eventCategory = 1;
constexpr DWORD eventIdentifier = 100;
/// The event log refuses longer texts.
constexpr std::size_t longestText = 31839;

std::wstring eventText(const std::string& text) {
    std::wstring wide = utf8ToWideOrWidened(text);
    wide.resize(std::min(wide.size(), longestText));
    return wide;
}

} // namespace

void* openSystemLog(const char* source) noexcept {
    try {
        return RegisterEventSourceW(nullptr, utf8ToWideOrWidened(source).c_str());
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void reportToSystemLog(void* log, SystemLogType type, const std::string& tag,
                       const std::string& message) noexcept {
    if (!log)
        return;
    try {
        const std::wstring wideTag = eventText(tag);
        const std::wstring wideMessage = eventText(message);
        const wchar_t* texts[] = {wideTag.c_str(), wideMessage.c_str()};
        ReportEventW(log, static_cast<WORD>(type), eventCategory, eventIdentifier, nullptr, 2, 0, texts,
                     nullptr);
    } catch (const std::bad_alloc&) {
        // Nothing is left to report the lack of memory to.
    }
}

void closeSystemLog(void* log) noexcept {
    if (log)
        DeregisterEventSource(log);
}

} // namespace Zentara::Utils::Platform
