#include "plugins/cameras/nodes/node_commands.h"

#include <zentara/plugin/plugin_exceptions.h>

#include "plugins/descriptions/controller.h"

namespace Zentara::Cameras {
namespace {

Core::RequestList copyOf(const Core::RequestList* list) { return list ? *list : Core::RequestList(); }

ChipKind controllerOf(const Core::DescriptorStoreRO& store) {
    const auto kind = describedController(store.getDeviceCapabilities());
    if (!kind)
        throw Plugin::InitializationPluginException(
            "cannot initialize a node: the descriptor store tells no controller of the camera");
    return *kind;
}

} // namespace

NodeCommands::NodeCommands(Core::DescriptorStoreRO& store, IO::VideoDeviceProxy& proxy)
    : target(NodeChip::create(controllerOf(store), proxy)), preCommon(copyOf(store.getPreCommonSettings())),
      postCommon(copyOf(store.getPostCommonSettings())), stopCommon(copyOf(store.getStopCommonSettings())) {}

void NodeCommands::start(const Core::RequestList* specific) {
    target->send(&preCommon);
    change(specific);
}

void NodeCommands::change(const Core::RequestList* specific) {
    target->send(specific);
    target->send(&postCommon);
}

void NodeCommands::stop() { target->send(&stopCommon); }

} // namespace Zentara::Cameras
