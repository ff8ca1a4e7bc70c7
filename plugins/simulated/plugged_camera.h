#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include <zentara/node_event.h>
#include <zentara/utils/mutex.h>
#include <zentara/utils/thread_annotations.h>

#include "plugins/simulated/scene.h"
#include "plugins/simulated/simulated_bus.h"

namespace Zentara::Simulated {

/// The camera on the bus that a device belongs to, for as long as it is plugged in. Safe.
class PluggedCamera {
public:
    /// Finds the camera of a node. One that did not come from the simulated bus has none, and nothing ever happens to
    /// it.
    /// \return how the camera is set, in the words of Settings
    /// \throws Plugin::IOPluginException "initialize: no camera is plugged in as 'PATH'", and what is wrong with the
    ///         bus if something is
    std::string attach(const NodeEvent& node);

    /// Lenses and extrinsics as its description says; the usual ones for a camera of no bus.
    [[nodiscard]] Eyes eyes();

    /// The streams of one camera look at one scene. Returns the scene's frame for the first of a stream that starts now,
    /// in microseconds of the monotonic clock: 0 unless another one of the camera runs, of this device or another.
    [[nodiscard]] std::uint64_t joinScene(std::int64_t now, int framesPerSecond);
    /// Ends what joinScene() began.
    void leaveScene();

    /// Whether the camera was pulled out; looks at most ten times a second. A camera that comes back is another one.
    [[nodiscard]] bool isGone();

    /// \throws Plugin::IOPluginException "OPERATION: the camera was unplugged"
    void require(const char* operation);

private:
    Utils::Threading::Mutex lock;
    /// Null for a camera of no bus, which never goes.
    std::unique_ptr<SimulatedBus> bus ZENTARA_GUARDED_BY(lock);
    std::string path ZENTARA_GUARDED_BY(lock); ///< of the camera on it
    Eyes seenWith ZENTARA_GUARDED_BY(lock);
    /// When the scene began; shared by the camera's streams, null while none of this device runs.
    std::shared_ptr<const std::int64_t> sceneBegin ZENTARA_GUARDED_BY(lock);
    bool gone ZENTARA_GUARDED_BY(lock) = false;         ///< stays true until the next attach()
    std::int64_t nextLook ZENTARA_GUARDED_BY(lock) = 0; ///< microseconds of the monotonic clock
};

} // namespace Zentara::Simulated
