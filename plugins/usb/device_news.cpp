#include "plugins/usb/device_news.h"

#include <algorithm>
#include <cstring>
#include <linux/netlink.h>
#include <poll.h>
#include <string_view>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <zentara/utils/clock.h>

namespace Zentara::Usb {

namespace {

constexpr std::uint32_t kernelGroup = 1;
constexpr int quietMilliseconds = 150; // between the nodes of one camera, and until their permissions are set
constexpr int longestNoise =
    2000; // milliseconds: a device that comes and goes all the time does not hide others

int listen() {
    const int made = ::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, NETLINK_KOBJECT_UEVENT);
    sockaddr_nl address{};
    address.nl_family = AF_NETLINK;
    address.nl_groups = kernelGroup;
    if (made < 0 || ::bind(made, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0)
        return made;
    ::close(made);
    return -1;
}

} // namespace

DeviceNews::DeviceNews() : socket(listen()), event(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

DeviceNews::~DeviceNews() {
    if (socket >= 0)
        ::close(socket);
    if (event >= 0)
        ::close(event);
}

void DeviceNews::wake() noexcept { static_cast<void>(::eventfd_write(event, 1)); }

/// Whether there is news; false when the time has passed, or somebody wants the waiting to end.
bool DeviceNews::readable(int milliseconds) const {
    pollfd files[] = {{socket, POLLIN, 0}, {event, POLLIN, 0}};
    if (::poll(files, 2, milliseconds) <= 0 || files[1].revents != 0)
        return false;
    return files[0].revents != 0;
}

/// Takes one piece of news: "add@/devices/..." and then "KEY=VALUE" texts, each with a 0 behind it.
bool DeviceNews::isOfInterest() const {
    char text[8192];
    const ssize_t count = ::recv(socket, text, sizeof text, 0);
    if (count < 0)
        return true; // too many came at once, and some are lost
    const std::string_view all(text, static_cast<std::size_t>(count));
    return all.find("SUBSYSTEM=video4linux") != std::string_view::npos ||
           all.find("SUBSYSTEM=sound") != std::string_view::npos ||
           all.find("SUBSYSTEM=usb") != std::string_view::npos;
}

void DeviceNews::wait(int milliseconds) {
    const std::int64_t end = Utils::Clock::nowMicros() + std::int64_t{milliseconds} * 1000;
    const auto left = [&] {
        return static_cast<int>(std::max<std::int64_t>(0, (end - Utils::Clock::nowMicros()) / 1000));
    };
    while (readable(left())) {
        if (!isOfInterest())
            continue;
        const std::int64_t noise = Utils::Clock::nowMicros() + std::int64_t{longestNoise} * 1000;
        while (Utils::Clock::nowMicros() < noise && readable(quietMilliseconds))
            static_cast<void>(isOfInterest());
        break;
    }
    eventfd_t count = 0;
    static_cast<void>(::eventfd_read(event, &count));
}

} // namespace Zentara::Usb
