#include <zentara/core/guids.h>
#include <zentara/core/plugin_exports.h>

#include "plugins/simulated/simulated_audio_device.h"

ZENTARA_DEFINE_PLUGIN(Zentara::Simulated::SimulatedAudioDevice, Zentara::Core::Guids::MOCKAUDIODEVICE_IMPL,
                      Zentara::Core::ImplType_AUDIO_DEVICE, 1, 0, 0)
