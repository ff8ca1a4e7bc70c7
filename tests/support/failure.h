#pragma once

#include <string>

#include <zentara/plugin/plugin_exceptions.h>

namespace Zentara::Host {
class Failure;
}

namespace Zentara::TestSupport {

/// The message of the exception of that class which the operation ends with.
template<typename Exception, typename Operation>
std::string messageOf(Operation operation) {
    try {
        operation();
    } catch (const Exception& thrown) {
        return thrown.what();
    }
    return "nothing was thrown";
}

/// The Host::Failure that the operation ends with; one of the code None if it goes well.
template<typename Operation, typename Failure = Host::Failure>
Failure failureOf(Operation operation) {
    try {
        operation();
    } catch (const Failure& thrown) {
        return thrown;
    }
    return {Failure::None, "nothing was thrown"};
}
template<typename Operation>
auto codeOf(Operation operation) {
    return failureOf(operation).code();
}

/// "KIND: MESSAGE" of the plug-in exception that the operation ends with.
template<typename Operation>
std::string failure(Operation operation) {
    try {
        operation();
    } catch (const Plugin::PluginException& thrown) {
        return std::to_string(thrown.type()) + ": " + thrown.message();
    }
    return "nothing was thrown";
}

} // namespace Zentara::TestSupport
