#pragma once

#include <memory>
#include <string>
#include <vector>

#include <zentara/external_event.h>
#include <zentara/host/failure.h>
#include <zentara/host/note.h>
#include <zentara/io/enumerator_interface.h>
#include <zentara/utils/queue.h>
#include <zentara/utils/smart_ptr.h>

#include "host/cameras/camera_store.h"

namespace Zentara::Host {

/// The nodes of one camera, as an enumerator found them.
struct CameraEntry {
    std::string path; ///< the parent path of its nodes
    std::vector<NodeEvent> nodes;
    std::string vendor;     ///< this and the rest is what its description says; empty where that is not known
    std::string product;    ///< where the description does not say: what the camera calls itself
    std::string controller; ///< "OV0570"

    /// Null when the camera has no such node.
    [[nodiscard]] const NodeEvent* find(NodeType type) const;
    [[nodiscard]] std::string serialNumber() const;
    /// What it is called in messages: its serial number, else its product's name or its place. Fit for showing.
    [[nodiscard]] std::string label() const;
};

/// What cameras there are, and what comes and goes: the enumerators that are registered, side by side. One that fails
/// is told and left out while there are others.
class CameraBus final {
public:
    using Events = Utils::Collection::Queue<ExternalEvent>;

    /// \param arrivals where events go; the enumerators keep it until they have gone
    /// \throws Failure when there is no enumerator or store plug-in, or all of them fail.
    explicit CameraBus(Note told, std::shared_ptr<Events> arrivals = std::make_shared<Events>());
    ~CameraBus();
    CameraBus(const CameraBus&) = delete;
    CameraBus& operator=(const CameraBus&) = delete;

    /// The cameras that are there now, in the order of the enumerators; none is no failure.
    [[nodiscard]] std::vector<CameraEntry> cameras();

    /// The same. \throws what failForNone() throws when there is none
    [[nodiscard]] std::vector<CameraEntry> someCameras();

    /// \throws Failure (NoDevice): no camera is plugged in, and what an enumerator complains of
    [[noreturn]] void failForNone();

    /// A node's camera, as far as its description tells it.
    [[nodiscard]] CameraEntry describe(const NodeEvent& node);

    /// From now on arrivals and removals come through next(), beginning with the arrivals of what is there.
    void watch();

    /// \return false when nothing came within that time
    [[nodiscard]] bool next(ExternalEvent& event, unsigned long milliseconds);

    /// The names of the enumerators' back-ends, with commas between.
    [[nodiscard]] std::string backendName();

private:
    struct Source;

    [[nodiscard]] std::string complaint();
    void open(const GUID& guid);
    void leaveOut(const Failure& failure);

    const Note note;
    CameraStore descriptions; ///< for cameras()
    const std::shared_ptr<Events> events;
    std::vector<std::unique_ptr<Source>> sources; ///< they use the queue
};

} // namespace Zentara::Host
