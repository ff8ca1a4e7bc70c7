#include <zentara/core/plugin_exports.h>

#include "plugins/cameras/plugin_guids.h"
#include "plugins/cameras/store/descriptor_store.h"

ZENTARA_DEFINE_PLUGIN(Zentara::Cameras::DescriptorStore, Zentara::Cameras::descriptorStoreGuid,
                      Zentara::Core::ImplType_DESCRIPTOR_STORE, 1, 0, 0)
