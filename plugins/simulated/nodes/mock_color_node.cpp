#include <zentara/core/plugin_exports.h>

#include "plugins/simulated/nodes/simulated_color_node.h"
#include "plugins/simulated/plugin_guids.h"

ZENTARA_DEFINE_PLUGIN(Zentara::Simulated::SimulatedColorNode, Zentara::Simulated::colorNodeGuid,
                      Zentara::Core::ImplType_COLOR_NODE, 1, 0, 0)
