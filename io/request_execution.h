#pragma once

namespace Zentara::IO {

class deviceRequest;

/// Calls the operation of the request's device that belongs to the request's type. Stop, region-of-interest and
/// output-format requests, and types that do not exist, have no effect.
/// \throws Plugin::NotSupportedPluginException if request, type and device do not fit together
/// \throws what the device throws
void dispatch(deviceRequest& request);

} // namespace Zentara::IO
