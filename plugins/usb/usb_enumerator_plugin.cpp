#include <zentara/core/guids.h>
#include <zentara/core/plugin_exports.h>

#include "plugins/usb/usb_enumerator.h"

ZENTARA_DEFINE_PLUGIN(Zentara::Usb::UsbEnumerator, Zentara::Core::Guids::DEFAULT_ENUMERATOR_IMPL,
                      Zentara::Core::ImplType_ENUMERATOR, 1, 0, 0)
