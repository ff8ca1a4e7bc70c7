#pragma once

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <system_error>
#include <thread>

#include "utils/platform/program.h"

/// What the handles stand for, where the system has a directory of them.
inline void tellHandles() {
    std::error_code none;
    for (const auto& handle : std::filesystem::directory_iterator("/proc/self/fd", none))
        std::printf("  handle %s: %s\n", handle.path().filename().string().c_str(),
                    std::filesystem::read_symlink(handle, none).string().c_str());
}

/// Whether the process has no more threads and handles than before, and says so. A device that hangs lets go of its thread
/// later than its caller does: that is waited for.
inline bool nothingIsLeft(const Zentara::Utils::Platform::ResourceUse& before) {
    using namespace std::chrono_literals;
    using Clock = std::chrono::steady_clock;
    Zentara::Utils::Platform::ResourceUse now = Zentara::Utils::Platform::resourceUse();
    const auto holdsMore = [&] { return now.threads > before.threads || now.handles > before.handles; };
    for (const auto until = Clock::now() + 20s; holdsMore() && Clock::now() < until;
         now = Zentara::Utils::Platform::resourceUse())
        std::this_thread::sleep_for(50ms);
    std::printf("%s: %u threads, %u handles left; before it were %u and %u\n",
                holdsMore() ? "NOT ALL ENDED" : "ended", now.threads, now.handles, before.threads,
                before.handles);
    if (now.handles > before.handles)
        tellHandles();
    return !holdsMore();
}
