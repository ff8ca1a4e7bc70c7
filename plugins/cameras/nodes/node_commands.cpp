#include "plugins/cameras/nodes/node_commands.h"

#include <zentara/core/descriptor_details.h>
#include <zentara/plugin/plugin_exceptions.h>

namespace Zentara::Cameras {
namespace {

Core::RequestList copyOf(const Core::RequestList* list) { return list ? *list : Core::RequestList(); }

std::unique_ptr<IO::CameraChip> chipOf(const Core::DescriptorStoreRO& store, IO::VideoDeviceProxy& proxy) {
    const std::string name = Core::controllerNameOf(store);
    return name.empty() ? nullptr : IO::CameraChip::create(name, proxy);
}

} // namespace

NodeCommands::NodeCommands(Core::DescriptorStoreRO& store, IO::VideoDeviceProxy& proxy)
    : target(chipOf(store, proxy)), preCommon(copyOf(store.getPreCommonSettings())),
      postCommon(copyOf(store.getPostCommonSettings())), stopCommon(copyOf(store.getStopCommonSettings())) {
    if (!preCommon.empty() || !postCommon.empty() || !stopCommon.empty())
        static_cast<void>(chip());
}

IO::CameraChip& NodeCommands::chip() {
    if (!target)
        throw Plugin::InitializationPluginException(
            "cannot initialize a node: the descriptor store tells no controller of the camera");
    return *target;
}

void NodeCommands::start(const Core::RequestList* specific) {
    if (target)
        target->wire().processCommands(&preCommon);
    change(specific);
}

void NodeCommands::change(const Core::RequestList* specific) {
    if (!target)
        return;
    target->wire().processCommands(specific);
    target->wire().processCommands(&postCommon);
}

void NodeCommands::stop() {
    if (target)
        target->wire().processCommands(&stopCommon);
}

} // namespace Zentara::Cameras
