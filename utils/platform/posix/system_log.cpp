#include "utils/platform/system_log.h"

#include "utils/platform/posix/system_log_address.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <memory>
#include <new>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "utils/platform/local_time.h"

namespace Zentara::Utils::Platform {

namespace {

constexpr int userFacility = 1;
constexpr std::size_t longestEntry = 8192;

/// A socket of our own: openlog() would change the source name of the whole process.
struct SystemLog {
    const std::string source;
    const int socket;

    explicit SystemLog(const char* sourceName)
        : source(sourceName), socket(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)) {}
    ~SystemLog() {
        if (socket >= 0)
            close(socket);
    }
    SystemLog(const SystemLog&) = delete;
    SystemLog& operator=(const SystemLog&) = delete;
};

bool connectToLog(int socket) noexcept {
    sockaddr_un address{AF_UNIX, {}};
    std::strncpy(address.sun_path, systemLogAddress(), sizeof address.sun_path - 1);
    return connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

int priority(SystemLogType type) noexcept {
    switch (type) {
    case SystemLogType::Error:
        return userFacility * 8 + 3;
    case SystemLogType::Warning:
        return userFacility * 8 + 4;
    case SystemLogType::Information:
        break;
    }
    return userFacility * 8 + 6;
}

/// "<PRIORITY>Mmm dd hh:mm:ss SOURCE[PID]: ", with English months whatever the locale.
std::string entryHeader(const std::string& source, SystemLogType type) {
    constexpr std::array months{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    std::tm time{};
    localTime(std::time(nullptr), time);
    char header[64];
    std::snprintf(header, sizeof header, "<%d>%s %2d %02d:%02d:%02d ", priority(type),
                  months[static_cast<std::size_t>(time.tm_mon) % months.size()], time.tm_mday, time.tm_hour,
                  time.tm_min, time.tm_sec);
    return header + source + '[' + std::to_string(getpid()) + "]: ";
}

bool sendEntry(int socket, const std::string& entry) noexcept {
    return send(socket, entry.data(), entry.size(), MSG_NOSIGNAL | MSG_DONTWAIT) >= 0;
}

} // namespace

void* openSystemLog(const char* source) noexcept {
    try {
        auto log = std::make_unique<SystemLog>(source);
        return log->socket >= 0 && connectToLog(log->socket) ? log.release() : nullptr;
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void reportToSystemLog(void* log, SystemLogType type, const std::string& tag,
                       const std::string& message) noexcept {
    if (!log)
        return;
    try {
        const auto& open = *static_cast<const SystemLog*>(log);
        std::string entry = entryHeader(open.source, type) + tag + ' ' + message;
        entry.resize(std::min(entry.size(), longestEntry));
        // A log service that was started anew has lost the connection.
        if (!sendEntry(open.socket, entry) && connectToLog(open.socket))
            sendEntry(open.socket, entry);
    } catch (const std::bad_alloc&) {
        // Nothing is left to report the lack of memory to.
    }
}

void closeSystemLog(void* log) noexcept { delete static_cast<SystemLog*>(log); }

} // namespace Zentara::Utils::Platform
