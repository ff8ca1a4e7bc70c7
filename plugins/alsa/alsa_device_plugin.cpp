#include <zentara/core/guids.h>
#include <zentara/core/plugin_exports.h>

#include "plugins/alsa/alsa_device.h"

ZENTARA_DEFINE_PLUGIN(Zentara::Alsa::AlsaDevice, Zentara::Core::Guids::ALSAAUDIO_IMPL,
                      Zentara::Core::ImplType_AUDIO_DEVICE, 1, 0, 0)
