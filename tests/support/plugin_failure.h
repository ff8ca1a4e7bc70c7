#pragma once

#include <string>
#include <utility>

#include <zentara/plugin/plugin_exceptions.h>

namespace Zentara::TestSupport {

/// The kind and the message of the plug-in exception that the operation throws.
template<typename Operation>
std::pair<int, std::string> failure(Operation operation) {
    try {
        operation();
    } catch (const Zentara::Plugin::PluginException& thrown) {
        return {thrown.type(), thrown.message()};
    }
    return {-1, "nothing was thrown"};
}

} // namespace Zentara::TestSupport
