#include <zentara/core/guids.h>
#include <zentara/core/plugin_exports.h>

#include "plugins/simulated/simulated_enumerator.h"

ZENTARA_DEFINE_PLUGIN(Zentara::Simulated::SimulatedEnumerator, Zentara::Core::Guids::MOCK_ENUMERATOR_IMPL,
                      Zentara::Core::ImplType_ENUMERATOR, 1, 0, 0)
