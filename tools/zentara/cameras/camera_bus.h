#pragma once

#include <ostream>
#include <string>
#include <vector>

#include <zentara/core/descriptor_store_interface.h>
#include <zentara/core/plugin_manager.h>
#include <zentara/external_event.h>
#include <zentara/io/enumerator_interface.h>
#include <zentara/utils/queue.h>
#include <zentara/utils/smart_ptr.h>

#include "tools/zentara/exit_code.h"
#include "tools/zentara/json_output.h"

namespace Zentara::Tool {

/// Makes an object of a plug-in. \throws ToolFailure
template<typename Interface>
[[nodiscard]] Utils::SmartPtr<Interface> makePlugin(GUID guid);

/// A descriptor store of its own, with the descriptions read. A store describes one node at a time, so everyone
/// who uses one has his own.
class CameraStore final {
public:
    /// \throws ToolFailure when there is no store plug-in, or it fails.
    explicit CameraStore(std::ostream& err);
    ~CameraStore();
    CameraStore(const CameraStore&) = delete;
    CameraStore& operator=(const CameraStore&) = delete;

    /// \throws ToolFailure when no description has the node.
    void select(const NodeEvent& node);
    [[nodiscard]] Core::DescriptorStoreRO& view() const;

private:
    Utils::SmartPtr<Core::DescriptorStoreInterface> store;
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

/// What cameras there are, and what comes and goes.
class CameraBus final {
public:
    /// \throws ToolFailure when there is no enumerator or store plug-in, or one fails.
    explicit CameraBus(std::ostream& err);
    ~CameraBus();
    CameraBus(const CameraBus&) = delete;
    CameraBus& operator=(const CameraBus&) = delete;

    /// The cameras that are there now, in the enumerator's order; none is no failure.
    [[nodiscard]] std::vector<CameraEntry> cameras();

    /// The same. \throws what failForNone() throws when there is none
    [[nodiscard]] std::vector<CameraEntry> someCameras();

    /// \throws ToolFailure, exit code 3: no camera is plugged in, and what the enumerator complains of
    [[noreturn]] void failForNone();

    /// A node's camera, as far as its description tells it.
    [[nodiscard]] CameraEntry describe(const NodeEvent& node);

    /// From now on arrivals and removals come through next(), beginning with the arrivals of what is there.
    void watch();

    /// \return false when nothing came within that time
    [[nodiscard]] bool next(ExternalEvent& event, unsigned long milliseconds);

    [[nodiscard]] std::string backendName();

private:
    [[nodiscard]] std::string complaint();

    CameraStore store;        ///< the enumerator's
    CameraStore descriptions; ///< for cameras()
    Utils::Collection::Queue<ExternalEvent> events;
    Utils::SmartPtr<IO::EnumeratorInterface> enumerator;
};

/// The cameras whose serial number or path is that name or, if none is, in whose name, product name or controller it
/// occurs, whatever the case.
/// \param names empty for the first camera
/// \throws ToolFailure, exit code 3, when there is none, or a name fits none; exit code 2 for an empty name
[[nodiscard]] std::vector<CameraEntry> chooseCameras(const std::vector<CameraEntry>& cameras,
                                                     const std::vector<std::string>& names);

/// The one camera of that name; the first one if the name is empty.
/// \throws ToolFailure as above, and exit code 2 when the name fits several
[[nodiscard]] CameraEntry chooseCamera(const std::vector<CameraEntry>& cameras, const std::string& name);

/// Who a camera is, the same in every verb: serial, name (the product's, else its first node's), path and controller;
/// null where that is not known.
[[nodiscard]] Json cameraJson(const CameraEntry& camera);

/// The same for what changes a camera: of several one has to be named.
/// \throws ToolFailure as above, and exit code 2 with the list of them when none is
[[nodiscard]] CameraEntry chooseCameraToWrite(const std::vector<CameraEntry>& cameras,
                                              const std::string& name);

/// What to call a camera in a message: the name of its first node and its serial number.
[[nodiscard]] std::string cameraLabel(const NodeEvent& node);

/// For a terminal: control characters, which names from files may hold, become '?'.
[[nodiscard]] std::string printable(std::string text);

template<typename Interface>
Utils::SmartPtr<Interface> makePlugin(GUID guid) {
    Utils::SmartPtr<Interface> made;
    Core::PluginManager* manager = Core::PluginManager::instance();
    if (manager == nullptr)
        throw ToolFailure(ExitCode_NO_PLUGIN, "there is no plug-in manager");
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
        throw ToolFailure(ExitCode_NO_PLUGIN, "the plug-in made no object of its kind");
    return made;
}

} // namespace Zentara::Tool
