#pragma once

#include <optional>
#include <string>

#include <zentara/host/export.h>

namespace Zentara::Host {

/// Begins the log that the user asks for by the environment variable ZENTARASDK_LOG, "LEVELS" or "LEVELS@TARGET":
///
///     warning                            warnings and worse, on standard error
///     info@/tmp/zentara.log              all that there is, behind what stands in a file
///     warning,rom=info,streams=off@-     by area, on standard output
///     chips=info                         one area alone
///
/// - A level is off, critical, error, warning or info; one that stands alone is for every area that is not named, which
///   is off without it.
/// - The areas are plugins, devices, chips, rom and streams, as of Utils::LogArea.
/// - The target is the path of a file (UTF-8), "-" or STDOUT for standard output, or STDERR.
///
/// Lines are those of Utils::KVLogger; at level info each step that a plug-in or a device takes part in is one, before it
/// begins. Cameras, Plugins, Flash, Recorder and Recording call this first, and so every program follows the variable.
/// The log begins once and ends with the process; without the variable, or an empty one, there is none. A program that
/// has a KVLogger of its own before keeps that, which is told that the variable is not followed. Safe.
/// \throws Failure (Usage) for a value that means nothing, again at every call; as files do when the target cannot be
///         written
ZENTARA_HOST_API void beginUserLog();

/// Where that log goes, as the variable has it; nothing while there is none. Safe.
[[nodiscard]] ZENTARA_HOST_API std::optional<std::string> userLogTarget();

} // namespace Zentara::Host
