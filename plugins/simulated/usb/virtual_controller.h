#pragma once

namespace Zentara::Simulated {

/// Plugs a camera into this machine's virtual USB host controller, at high speed.
/// \return the camera's end of the cable; closing it pulls the camera out
/// \throws std::runtime_error that says what is missing: the module vhci-hcd, a free port, permission
[[nodiscard]] int plugIntoVirtualController();

} // namespace Zentara::Simulated
