#include "plugins/simulated/usb/virtual_controller.h"

#include <cerrno>
#include <fstream>
#include <stdexcept>
#include <string>
#include <system_error>

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace Zentara::Simulated {
namespace {

const std::string controller = "/sys/devices/platform/vhci_hcd.0/";
constexpr const char* freePort = "004";
constexpr int highSpeed = 3;
constexpr int attempts = 20; // another camera may take the port first

[[noreturn]] void fail(const std::string& what) {
    throw std::system_error(errno, std::generic_category(), what);
}

/// The table has a line for each port, below one of headings: hub, port, state and more.
std::string findFreePort() {
    std::ifstream table(controller + "status");
    if (!table)
        throw std::runtime_error("there is no virtual host controller; load it with 'modprobe vhci-hcd'");
    std::string hub;
    std::string port;
    std::string state;
    for (std::string rest; table >> hub >> port >> state && std::getline(table, rest);) {
        if (hub == "hs" && state == freePort)
            return port;
    }
    throw std::runtime_error("no port of the virtual host controller is free");
}

/// False when the port was taken in the meantime.
bool attach(int socket, const std::string& port) {
    const std::string path = controller + "attach";
    const int file = ::open(path.c_str(), O_WRONLY | O_CLOEXEC);
    if (file < 0)
        fail("opening " + path);
    const int number = std::stoi(port);
    const std::string line = std::to_string(number) + ' ' + std::to_string(socket) + ' ' +
                             std::to_string(0x10000 + number + 2) + ' ' + std::to_string(highSpeed);
    const bool done = ::write(file, line.data(), line.size()) >= 0;
    const int reason = errno;
    ::close(file);
    errno = reason;
    if (!done && errno != EBUSY && errno != EINVAL)
        fail("writing '" + line + "' to " + path);
    return done;
}

} // namespace

int plugIntoVirtualController() {
    int ends[2];
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0)
        fail("making a cable");
    for (int attempt = 0; attempt < attempts; ++attempt) {
        if (attach(ends[1], findFreePort())) {
            ::close(ends[1]); // the controller keeps its own hold of it
            return ends[0];
        }
    }
    throw std::runtime_error("no port of the virtual host controller could be taken");
}

} // namespace Zentara::Simulated
