#pragma once

#include <ostream>

#include <zentara/core/impl_type.h>
#include <zentara/guid.h>

namespace Zentara::Tool {

/// Picks the registered device plug-in of a kind; with several, the first by GUID, which is then said on `err`.
/// \param what the kind, for messages: "video device".
/// \throws ToolFailure when none is registered, or the plug-in manager does not come up.
[[nodiscard]] GUID chooseDevice(Core::ImplType type, const char* what, std::ostream& err);

} // namespace Zentara::Tool
