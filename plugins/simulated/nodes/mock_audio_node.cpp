#include <zentara/core/plugin_exports.h>

#include "plugins/simulated/nodes/simulated_audio_node.h"
#include "plugins/simulated/plugin_guids.h"

ZENTARA_DEFINE_PLUGIN(Zentara::Simulated::SimulatedAudioNode, Zentara::Simulated::audioNodeGuid,
                      Zentara::Core::ImplType_AUDIO_NODE, 1, 0, 0)
