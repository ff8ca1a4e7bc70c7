#include "utils/platform/posix/log_service.h"

#include "utils/platform/posix/system_log_address.h"

#include <array>
#include <cstdlib>
#include <cstring>
#include <utility>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace Zentara::Utils::Platform {

LogService::LogService(std::string socketPath)
    : path(std::move(socketPath)), formerAddress(std::exchange(systemLogAddress(), path.c_str())) {
    listen();
}

LogService::~LogService() {
    end();
    systemLogAddress() = formerAddress;
}

std::string LogService::receive() {
    std::array<char, 16384> entry;
    const ssize_t size = recv(socket, entry.data(), entry.size(), MSG_DONTWAIT);
    return size < 0 ? std::string() : std::string(entry.data(), static_cast<std::size_t>(size));
}

void LogService::restart() {
    end();
    listen();
}

void LogService::listen() {
    socket = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{AF_UNIX, {}};
    if (path.size() >= sizeof address.sun_path)
        std::abort();
    std::memcpy(address.sun_path, path.c_str(), path.size());
    if (socket < 0 || bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        std::abort();
}

void LogService::end() {
    close(socket);
    ::unlink(path.c_str());
}

} // namespace Zentara::Utils::Platform
