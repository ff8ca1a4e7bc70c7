#include "tools/zentara/exit_code.h"

namespace Zentara::Tool {

namespace {

/// What usually helps; a failure that knows more says it itself.
const char* remedyFor(ExitCode code) noexcept {
    switch (code) {
    case Failure::NoDevice:
        return "'zentara --log devices' lists the cameras that are plugged in, and tells of descriptions "
               "that "
               "were refused";
    case Failure::NoPlugin:
        return "'zentara plugins --all' tells what each file of the plug-in directory is refused for";
    case Failure::Busy:
        return "try again when the program that uses it has ended";
    case Failure::TimedOut:
        return "try again; if it stays so, unplug the camera and plug it in";
    default:
        return "";
    }
}

} // namespace

std::string remedyOf(const Failure& failure) {
    return failure.remedy().empty() ? remedyFor(failure.code()) : failure.remedy();
}

} // namespace Zentara::Tool
