#pragma once

#include <memory>

#include "plugins/simulated/controller.h"
#include "plugins/simulated/controllers/controller_settings.h"

namespace Zentara::Simulated {

/// The controller that the settings describe, for a simulated video device; null when they say that it has none.
/// \throws Plugin::ConfigurationPluginException when the settings name a file that cannot be used.
[[nodiscard]] std::unique_ptr<Controller> makeController(const ControllerSettings& settings);

} // namespace Zentara::Simulated
