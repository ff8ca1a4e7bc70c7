#include <zentara/core/plugin_exports.h>

#include "plugins/cameras/nodes/color_node.h"
#include "plugins/cameras/plugin_guids.h"

ZENTARA_DEFINE_PLUGIN(Zentara::Cameras::GenericColorNode, Zentara::Cameras::genericColorNodeGuid,
                      Zentara::Core::ImplType_COLOR_NODE, 1, 0, 0)
