#pragma once

#include <string>

#include <zentara/plugin/plugin_exceptions.h>

namespace Zentara::IO {

/// A failure on its way from the worker thread to the caller.
struct ProxyFailure {
    Plugin::PluginExceptionType type = Plugin::PluginExceptionType_STREAMING;
    std::string message;
};

} // namespace Zentara::IO
