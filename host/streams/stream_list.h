#pragma once

#include <memory>
#include <optional>
#include <vector>

#include <zentara/host/failure.h>
#include <zentara/host/stream.h>
#include <zentara/utils/mutex.h>

namespace Zentara::Host {

/// Streams that end together: those of one camera when it is closed, those of which sets are made. Each is stopped on a
/// thread of its own, so that several that hang take no longer than one. Safe.
class StreamList final {
public:
    /// Does not keep it.
    void add(const Stream& stream);

    /// Stops all that are still there. \throws Failure of the first that could not be stopped in order
    void stop();
    /// The same for a destructor: what could not be stopped in order is told, as a stream's destructor tells it.
    void end() noexcept;

private:
    using Cores = std::vector<std::shared_ptr<Stream::Core>>;
    [[nodiscard]] Cores take();
    /// \return what each failed with
    [[nodiscard]] static std::vector<std::optional<Failure>> stopAll(const Cores& cores);

    Utils::Threading::Mutex lock;
    std::vector<std::weak_ptr<Stream::Core>> streams ZENTARA_GUARDED_BY(lock); ///< some may have gone
};

} // namespace Zentara::Host
