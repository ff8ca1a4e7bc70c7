#include <zentara/core/plugin_exports.h>

#include "plugins/simulated/plugin_guids.h"
#include "plugins/simulated/store/simulated_descriptor_store.h"

ZENTARA_DEFINE_PLUGIN(Zentara::Simulated::SimulatedDescriptorStore, Zentara::Simulated::descriptorStoreGuid,
                      Zentara::Core::ImplType_DESCRIPTOR_STORE, 1, 0, 0)
