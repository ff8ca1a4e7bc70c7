#pragma once

#include <string>
#include <vector>

#include <zentara/core/impl_type.h>
#include <zentara/guid.h>
#include <zentara/host/note.h>

namespace Zentara::Host {

/// The registered plug-ins of a kind, sorted by GUID.
/// \param what the kind, for messages: "video device".
/// \throws Failure when none is registered, or the plug-in manager does not come up.
[[nodiscard]] std::vector<GUID> registeredPlugins(Core::ImplType type, const char* what);

/// Picks the registered device plug-in of a kind: one that is named or, with several, the first by GUID, which is then
/// told as a note; those of the system's own devices come last.
/// \param names GUIDs, well-known names and files; each names a plug-in of one of the kinds that are wanted
/// \throws Failure as above, and (Usage) when none of the kind is named although names are given
[[nodiscard]] GUID chooseDevice(Core::ImplType type, const char* what, const std::vector<std::string>& names,
                                const Note& note);

} // namespace Zentara::Host
