#pragma once

#include <string>

#include <zentara/plugin/plugin_exceptions.h>

namespace Zentara::IO {

/// A failure on its way from the worker thread to the caller.
struct ProxyFailure {
    Zentara::Plugin::PluginExceptionType type = Zentara::Plugin::PluginExceptionType_STREAMING;
    std::string message;
};

} // namespace Zentara::IO
