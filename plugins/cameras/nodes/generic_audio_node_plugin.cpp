#include <zentara/core/plugin_exports.h>

#include "plugins/cameras/nodes/audio_node.h"
#include "plugins/cameras/plugin_guids.h"

ZENTARA_DEFINE_PLUGIN(Zentara::Cameras::GenericAudioNode, Zentara::Cameras::genericAudioNodeGuid,
                      Zentara::Core::ImplType_AUDIO_NODE, 1, 0, 0)
