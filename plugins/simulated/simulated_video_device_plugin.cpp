#include <zentara/core/guids.h>
#include <zentara/core/plugin_exports.h>

#include "plugins/simulated/simulated_video_device.h"

ZENTARA_DEFINE_PLUGIN(Zentara::Simulated::SimulatedVideoDevice, Zentara::Core::Guids::MOCKVIDEODEVICE_IMPL,
                      Zentara::Core::ImplType_VIDEO_DEVICE, 1, 0, 0)
