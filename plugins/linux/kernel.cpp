#include "plugins/linux/kernel.h"

#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <system_error>
#include <unistd.h>

#include <zentara/plugin/plugin_exceptions.h>

namespace Zentara::Linux {
namespace {

template<typename Call>
int again(Call call) {
    for (;;) {
        const int result = call();
        if (result >= 0)
            return result;
        if (errno != EINTR)
            return -errno;
    }
}

class System final : public Kernel {
public:
    [[nodiscard]] int open(const std::string& path) override {
        return again([&] { return ::open(path.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC); });
    }
    void close(int file) override { ::close(file); }
    int control(int file, unsigned long request, void* argument) override {
        return again([&] { return ::ioctl(file, request, argument); });
    }
    [[nodiscard]] std::byte* map(int file, std::size_t length, std::uint32_t offset) override {
        void* const memory =
            ::mmap(nullptr, length, PROT_READ | PROT_WRITE, MAP_SHARED, file, static_cast<off_t>(offset));
        return memory == MAP_FAILED ? nullptr : static_cast<std::byte*>(memory);
    }
    void unmap(std::byte* memory, std::size_t length) override { ::munmap(memory, length); }
    [[nodiscard]] Ready wait(int file, int wake, int milliseconds) override {
        pollfd files[] = {{file, POLLIN, 0}, {wake, POLLIN, 0}};
        const int count = ::poll(files, 2, milliseconds);
        if (count < 0)
            return errno == EINTR ? Ready::Nothing : Ready::Broken;
        if (files[1].revents != 0)
            return Ready::Woken;
        if ((files[0].revents & (POLLERR | POLLHUP | POLLNVAL)) != 0)
            return Ready::Broken;
        return files[0].revents != 0 ? Ready::Frame : Ready::Nothing;
    }
};

} // namespace

std::shared_ptr<Kernel> systemKernel() { return std::make_shared<System>(); }

std::string errorWords(int number) { return std::generic_category().message(number); }

WakeUp::WakeUp() : event(::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {
    if (event < 0)
        throw Plugin::IOPluginException("cannot make an event to wait for: " + errorWords(errno));
}

WakeUp::~WakeUp() { ::close(event); }

void WakeUp::set() noexcept { static_cast<void>(::eventfd_write(event, 1)); }

void WakeUp::reset() noexcept {
    eventfd_t count = 0;
    static_cast<void>(::eventfd_read(event, &count));
}

} // namespace Zentara::Linux
