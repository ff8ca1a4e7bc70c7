#pragma once

#include <string>

#include <zentara/utils/environment_variable.h>

#include "plugins/simulated/settings.h"

namespace Zentara::TestSupport {

/// Devices made while it lives, here and in programs that are started, behave by these settings.
class SimulatedFaults {
public:
    explicit SimulatedFaults(const std::string& settings) { variable.setValue(settings.c_str()); }
    ~SimulatedFaults() { variable.setValue(nullptr); }
    SimulatedFaults(const SimulatedFaults&) = delete;
    SimulatedFaults& operator=(const SimulatedFaults&) = delete;

private:
    Utils::EnvironmentVariable variable{Simulated::Settings::variable};
};

} // namespace Zentara::TestSupport
