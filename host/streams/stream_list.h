#pragma once

#include <memory>
#include <vector>

#include <zentara/host/stream.h>
#include <zentara/utils/mutex.h>

namespace Zentara::Host {

/// The streams of one camera, which end when it is closed. Safe.
class StreamList final {
public:
    /// Does not keep it.
    void add(const Stream& stream);

    /// Stops all that are still there. \throws Failure of the first that could not be stopped in order
    void stop();

private:
    Utils::Threading::Mutex lock;
    std::vector<std::weak_ptr<Stream::Core>> streams ZENTARA_GUARDED_BY(lock); ///< some may have gone
};

} // namespace Zentara::Host
