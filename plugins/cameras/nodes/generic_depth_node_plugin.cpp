#include <zentara/core/plugin_exports.h>

#include "plugins/cameras/nodes/z16_depth_node.h"
#include "plugins/cameras/plugin_guids.h"

ZENTARA_DEFINE_PLUGIN(Zentara::Cameras::GenericDepthNode, Zentara::Cameras::genericDepthNodeGuid,
                      Zentara::Core::ImplType_DEPTH_NODE, 1, 0, 0)
