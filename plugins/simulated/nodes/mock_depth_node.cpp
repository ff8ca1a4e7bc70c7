#include <zentara/core/plugin_exports.h>

#include "plugins/simulated/nodes/simulated_depth_node.h"
#include "plugins/simulated/plugin_guids.h"

ZENTARA_DEFINE_PLUGIN(Zentara::Simulated::SimulatedDepthNode, Zentara::Simulated::depthNodeGuid,
                      Zentara::Core::ImplType_DEPTH_NODE, 1, 0, 0)
