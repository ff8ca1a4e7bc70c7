#pragma once

#include <zentara/io/parameter_interpreter.h>
#include <zentara/io/xu_request.h>

namespace Zentara::Cameras {

/// Does what a request about parameters says. \return false for a request about something else
bool writeParameter(IO::ParameterInterpreter& parameters, const IO::xuRequest& request);

} // namespace Zentara::Cameras
