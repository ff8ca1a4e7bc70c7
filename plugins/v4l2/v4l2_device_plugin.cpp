#include <zentara/core/guids.h>
#include <zentara/core/plugin_exports.h>

#include "plugins/v4l2/v4l2_device.h"

ZENTARA_DEFINE_PLUGIN(Zentara::V4l2::V4l2Device, Zentara::Core::Guids::V4L2VIDEO_IMPL,
                      Zentara::Core::ImplType_VIDEO_DEVICE, 1, 0, 0)
