#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <zentara/host/camera.h>
#include <zentara/host/export.h>
#include <zentara/host/note.h>
#include <zentara/host/stream_info.h>

namespace Zentara::Host {

/// Something that happened on the buses. A plain value. Separate.
struct CameraEvent {
    /// What happened.
    enum class Type {
        Arrived, ///< a node was plugged in
        Removed, ///< a node was pulled out
        Trouble, ///< an enumerator lost touch with its bus
    };

    Type type = Type::Arrived;
    CameraInfo camera;           ///< the node's; its `nodes` are just that one. Empty for trouble
    std::string message;         ///< of trouble
    std::int64_t timeMicros = 0; ///< when it happened, on the host's monotonic clock
};

/// A bare device plug-in, for its authors: without enumerator, descriptions and worker thread. A plain value. Separate.
struct DeviceOptions {
    /// Which one is meant: GUIDs, well-known names and files, each of any kind of device; the first by GUID, those
    /// of the system last, unless given.
    std::vector<std::string> plugins;
    /// Which controller it is to have, where it can have several: "VC0258".
    std::string controller;
};

/// What cameras there are, and what comes and goes: all enumerators and all stores of descriptions that are registered,
/// side by side. One that fails is noted and left out while there are others.
///
/// What the plug-ins must be asked is asked on a thread of its own; every call takes at most `Options::limit`, then
/// Failure (TimedOut) names what hangs, and so do later ones at once. Destruction takes at most 2 s. Cameras live on
/// beside it, and keep the enumerators open. Safe.
class ZENTARA_HOST_API Cameras {
public:
    /// How the plug-ins are asked.
    struct Options {
        /// How long a call into a plug-in may take, here and in the cameras that are opened: 15 s.
        std::chrono::milliseconds limit{15'000};
        /// Is told of what was left out; the library's log unless set.
        Note note;
    };

    /// Asks nothing yet.
    Cameras();
    explicit Cameras(Options options);
    Cameras(const Cameras&) = delete;
    Cameras& operator=(const Cameras&) = delete;
    ~Cameras();

    /// The cameras that are there now, in the order of the enumerators; none is no failure.
    /// \throws Failure (NoPlugin) when there is no enumerator or store, or what they throw when all of them fail
    [[nodiscard]] std::vector<CameraInfo> list();

    /// The cameras of those names: whose serial number or path that is or, if none is, in whose name, product or
    /// controller it occurs, whatever the case. \param names none for the first camera
    /// \throws Failure (NoDevice) when there is none, and why as far as an enumerator tells; (Usage) for an empty name
    [[nodiscard]] std::vector<CameraInfo> choose(const std::vector<std::string>& names);

    /// Opens the one camera of that name, or the first one. It is asked for nothing yet.
    /// \throws Failure as above, and (Usage) when the name fits several
    [[nodiscard]] Camera open(const std::string& name = {});
    [[nodiscard]] Camera open(const char* name); ///< the same

    /// The same for who is to change a camera: of several one must be named.
    /// \throws Failure as above, and (Usage) with the list of them when none is
    [[nodiscard]] Camera openToWrite(const std::string& name);

    /// Opens what list(), choose() or an event told of.
    [[nodiscard]] Camera open(const CameraInfo& camera);

    /// A bare device as a camera: it has chip() and streams, and nothing else.
    /// \throws Failure (NoPlugin) when no device plug-in is registered, (Usage) when none is named so
    [[nodiscard]] Camera openDevice(const DeviceOptions& device);

    /// From now on arrivals and removals come through next(), beginning with the arrivals of what is there.
    void watch();

    /// Waits for the next event; one for which memory is lacking comes again. \return nothing when none came in that time
    [[nodiscard]] std::optional<CameraEvent> next(std::chrono::milliseconds limit);

    /// The names of the enumerators' back-ends, with commas between.
    [[nodiscard]] std::string backEnds();

    /// Closes the enumerators unless cameras are open. \throws Failure when a plug-in complains, or hangs
    void close();

private:
    std::shared_ptr<class CameraRegister> shared;
};

} // namespace Zentara::Host
