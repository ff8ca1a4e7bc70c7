#pragma once

#include <zentara/host/attempt.h>
#include <zentara/plugin/plugin_exceptions.h>

namespace Zentara::Host {

/// The code of a plug-in's exception.
[[nodiscard]] Failure::Code codeOf(Plugin::PluginExceptionType type) noexcept;

/// The kind of a plug-in's exception, for people: "I/O failure".
[[nodiscard]] const char* failureText(Plugin::PluginExceptionType type) noexcept;

} // namespace Zentara::Host
