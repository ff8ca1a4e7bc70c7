#include "host/streams/stream_list.h"

#include <optional>

#include <zentara/host/failure.h>

#include "host/streams/stream_core.h"

namespace Zentara::Host {

using Utils::Threading::AutoLock;

void StreamList::add(const Stream& stream) {
    AutoLock hold(lock);
    std::erase_if(streams, [](const auto& one) { return one.expired(); });
    streams.push_back(stream.core);
}

void StreamList::stop() {
    std::vector<std::weak_ptr<Stream::Core>> all;
    {
        AutoLock hold(lock);
        all.swap(streams);
    }
    std::optional<Failure> first;
    for (const auto& one : all) {
        try {
            if (const auto core = one.lock())
                core->stop();
        } catch (const Failure& failure) {
            if (!first)
                first = failure;
        }
    }
    if (first)
        throw Failure(*first);
}

} // namespace Zentara::Host
