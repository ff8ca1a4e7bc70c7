#pragma once

#include <string>

#include <zentara/utils/environment_variable.h>

namespace Zentara::TestSupport {

/// A value of an environment variable for one scope.
class ScopedVariable {
public:
    ScopedVariable(const char* name, const std::string& value) : variable(name) {
        before = variable.isDefined() ? variable.getValue() : "";
        variable.setValue(value.c_str());
    }
    ~ScopedVariable() { variable.setValue(before.c_str()); }
    ScopedVariable(const ScopedVariable&) = delete;
    ScopedVariable& operator=(const ScopedVariable&) = delete;

private:
    Utils::EnvironmentVariable variable;
    std::string before;
};

} // namespace Zentara::TestSupport
