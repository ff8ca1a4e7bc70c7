#pragma once

#include <memory>
#include <string>
#include <vector>

#include <zentara/core/descriptor_store_interface.h>
#include <zentara/core/plugin_manager.h>
#include <zentara/external_event.h>
#include <zentara/host/failure.h>
#include <zentara/host/note.h>
#include <zentara/io/enumerator_interface.h>
#include <zentara/utils/queue.h>
#include <zentara/utils/smart_ptr.h>

namespace Zentara::Host {

/// Makes an object of a plug-in. \throws Failure
template<typename Interface>
[[nodiscard]] Utils::SmartPtr<Interface> makePlugin(GUID guid);

class JoinedDescriptions;

/// The descriptor stores that are registered, each with its descriptions read; all are asked. A store describes one
/// node at a time, so everyone who uses them has his own.
class CameraStore final {
public:
    /// A store that fails is left out while there are others.
    /// \param leftOut is told of each such store; null for nobody
    /// \throws Failure when there is no store plug-in, or all fail.
    explicit CameraStore(const Note* leftOut = nullptr);
    ~CameraStore();
    CameraStore(const CameraStore&) = delete;
    CameraStore& operator=(const CameraStore&) = delete;

    /// \throws Failure when no description has the node.
    void select(const NodeEvent& node);
    /// Of the store that has the node which was selected last.
    [[nodiscard]] Core::DescriptorStoreRO& view() const;
    /// All of them as one, for whoever selects himself.
    [[nodiscard]] Core::DescriptorStoreRO& all() const;

private:
    std::vector<Utils::SmartPtr<Core::DescriptorStoreInterface>> stores;
    std::size_t selected = 0;
    std::unique_ptr<JoinedDescriptions> joined;
};

/// The nodes of one camera, as an enumerator found them.
struct CameraEntry {
    std::string path; ///< the parent path of its nodes
    std::vector<NodeEvent> nodes;
    std::string vendor; ///< this and the rest is what its description says; empty where that is not known
    std::string product;
    std::string controller; ///< "OV0570"

    /// Null when the camera has no such node.
    [[nodiscard]] const NodeEvent* find(NodeType type) const;
    [[nodiscard]] std::string serialNumber() const;
};

/// What cameras there are, and what comes and goes: the enumerators that are registered, side by side. One that fails
/// is told and left out while there are others.
class CameraBus final {
public:
    /// \throws Failure when there is no enumerator or store plug-in, or all of them fail.
    explicit CameraBus(Note told);
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
    Utils::Collection::Queue<ExternalEvent> events;
    std::vector<std::unique_ptr<Source>> sources; ///< they use the queue
};

/// The cameras whose serial number or path is that name or, if none is, in whose name, product name or controller it
/// occurs, whatever the case.
/// \param names empty for the first camera
/// \throws Failure (NoDevice), when there is none, or a name fits none; (Usage) for an empty name
[[nodiscard]] std::vector<CameraEntry> chooseCameras(const std::vector<CameraEntry>& cameras,
                                                     const std::vector<std::string>& names);

/// The one camera of that name; the first one if the name is empty.
/// \throws Failure as above, and (Usage) when the name fits several
[[nodiscard]] CameraEntry chooseCamera(const std::vector<CameraEntry>& cameras, const std::string& name);

/// The same for what changes a camera: of several one has to be named.
/// \throws Failure as above, and (Usage) with the list of them when none is
[[nodiscard]] CameraEntry chooseCameraToWrite(const std::vector<CameraEntry>& cameras,
                                              const std::string& name);

/// What to call a camera in a message: the name of its first node and its serial number.
[[nodiscard]] std::string cameraLabel(const NodeEvent& node);

template<typename Interface>
Utils::SmartPtr<Interface> makePlugin(GUID guid) {
    Utils::SmartPtr<Interface> made;
    Core::PluginManager* manager = Core::PluginManager::instance();
    if (manager == nullptr)
        throw Failure(Failure::NoPlugin, "there is no plug-in manager");
    try {
        const auto plugin = Utils::SmartPtr<Core::Plugin>::adopt(
            static_cast<Core::Plugin*>(manager->createInstance(guid, Interface::getImplType())));
        made.reset(dynamic_cast<Interface*>(plugin.get()));
    } catch (...) {
        manager->release();
        throw;
    }
    manager->release();
    if (!made)
        throw Failure(Failure::NoPlugin, "the plug-in made no object of its kind");
    return made;
}

} // namespace Zentara::Host
