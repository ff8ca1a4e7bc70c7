#pragma once

#include <string>

#include "plugins/simulated/settings.h"
#include "support/scoped_variable.h"

namespace Zentara::TestSupport {

/// Devices made while it lives, here and in programs that are started, behave by these settings.
struct SimulatedFaults : ScopedVariable {
    explicit SimulatedFaults(const std::string& settings)
        : ScopedVariable(Simulated::Settings::variable, settings) {}
};

} // namespace Zentara::TestSupport
