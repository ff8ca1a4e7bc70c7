#pragma once

#include <string>

#include <zentara/plugin/plugin_exceptions.h>

namespace Zentara::IO {

/// A failure on its way from the worker thread to the caller: kind and text, because an exception itself may be of a
/// class whose code leaves the process with the device's library. A copyable value. Separate.
struct ProxyFailure {
    /// Says nothing by itself: whether there is a failure, the request knows.
    Zentara::Plugin::PluginExceptionType type = Zentara::Plugin::PluginExceptionType_STREAMING;
    std::string message; ///< UTF-8; empty where memory did not suffice for it
};

} // namespace Zentara::IO
