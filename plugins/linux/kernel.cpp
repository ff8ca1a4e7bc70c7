#include "plugins/linux/kernel.h"

#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <span>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <system_error>
#include <unistd.h>
#include <utility>

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
    int watch(int file, int wake) override {
        const int made = ::epoll_create1(EPOLL_CLOEXEC);
        if (made < 0)
            return -errno;
        for (const Watched one : {Watched{file, Ready::Frame}, Watched{wake, Ready::Woken}}) {
            epoll_event event{};
            event.events = EPOLLIN;
            event.data.u32 = static_cast<std::uint32_t>(one.meaning);
            if (::epoll_ctl(made, EPOLL_CTL_ADD, one.file, &event) == 0)
                continue;
            const int error = errno;
            ::close(made);
            return -error;
        }
        return made;
    }
    [[nodiscard]] Ready wait(int watch, int milliseconds) override {
        epoll_event events[2];
        const int count = ::epoll_wait(watch, events, 2, milliseconds);
        if (count < 0)
            return errno == EINTR ? Ready::Nothing : Ready::Broken;
        Ready ready = Ready::Nothing;
        for (const epoll_event& event : std::span(events, static_cast<std::size_t>(count))) {
            if (static_cast<Ready>(event.data.u32) == Ready::Woken)
                return Ready::Woken;
            ready = (event.events & (EPOLLERR | EPOLLHUP)) != 0 ? Ready::Broken : Ready::Frame;
        }
        return ready;
    }

private:
    struct Watched {
        int file;
        Ready meaning;
    };
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

FrameWait::FrameWait(std::shared_ptr<Kernel> system, int file, const WakeUp& wake)
    : kernel(std::move(system)), watch(kernel->watch(file, wake.file())) {
    if (watch < 0)
        throw Plugin::IOPluginException("cannot wait for frames: " + errorWords(-watch));
}

FrameWait::~FrameWait() { kernel->close(watch); }

} // namespace Zentara::Linux
