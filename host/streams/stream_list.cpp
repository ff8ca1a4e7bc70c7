#include "host/streams/stream_list.h"

#include <system_error>
#include <thread>
#include <utility>

#include <zentara/host/failure.h>

#include "host/streams/stream_core.h"

namespace Zentara::Host {

using Utils::Threading::AutoLock;

void StreamList::add(const Stream& stream) {
    AutoLock hold(lock);
    std::erase_if(streams, [](const auto& one) { return one.expired(); });
    streams.push_back(stream.core);
}

/// Those that are still there.
StreamList::Cores StreamList::take() {
    std::vector<std::weak_ptr<Stream::Core>> all;
    {
        AutoLock hold(lock);
        all.swap(streams);
    }
    Cores cores;
    for (const auto& one : all) {
        if (auto core = one.lock())
            cores.push_back(std::move(core));
    }
    return cores;
}

std::vector<std::optional<Failure>> StreamList::stopAll(const Cores& cores) {
    std::vector<std::optional<Failure>> failures(cores.size());
    std::vector<std::thread> threads;
    threads.reserve(cores.size());
    for (std::size_t i = 0; i < cores.size(); ++i) {
        const auto stopOne = [&cores, &failures, i] { failures[i] = cores[i]->tryStop(); };
        try {
            if (i + 1 < cores.size())
                threads.emplace_back(stopOne);
        } catch (const std::system_error&) {
            // Without another thread they end one after the other.
        }
        if (threads.size() <= i)
            stopOne();
    }
    for (std::thread& thread : threads)
        thread.join();
    return failures;
}

void StreamList::stop() {
    for (const std::optional<Failure>& failure : stopAll(take())) {
        if (failure)
            throw Failure(*failure);
    }
}

void StreamList::end() noexcept {
    const Cores cores = take();
    const std::vector<std::optional<Failure>> failures = stopAll(cores);
    for (std::size_t i = 0; i < cores.size(); ++i) {
        if (failures[i])
            cores[i]->tellOf(*failures[i]);
    }
}

} // namespace Zentara::Host
