#pragma once

#include <functional>
#include <string>

namespace Zentara::Host {

/// Is told what does not end an operation: an enumerator that was left out, a calibration that is not the camera's own, a
/// call that has not come back. One line of text without a line end, which may hold texts of devices as they are.
/// Called on the thread that calls the operation, or that destroys the object; it must throw nothing. Where a host sets
/// none, notes go to the library's log as warnings.
using Note = std::function<void(const std::string& text)>;

} // namespace Zentara::Host
