#pragma once

#include <string>

#include <zentara/host/attempt.h>
#include <zentara/host/failure.h>

namespace Zentara::Tool {

using namespace Host;

/// What the process ends with.
using ExitCode = Failure::Code;

/// What helps: what the failure says, else what is usual with its code; empty for nothing.
[[nodiscard]] std::string remedyOf(const Failure& failure);

} // namespace Zentara::Tool
