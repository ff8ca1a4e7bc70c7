#pragma once

#include <string>

#include <zentara/guid.h>

namespace Zentara::Host {

/// The usual form, upper case: "39E23FC6-E54A-4CD0-9FB4-67C1781E2C5B".
[[nodiscard]] std::string guidText(const GUID& guid);

/// The well-known name; empty for a GUID that has none.
[[nodiscard]] std::string guidName(const GUID& guid);

/// What to call a plug-in in a message: the well-known name, else the GUID.
[[nodiscard]] std::string guidLabel(const GUID& guid);

} // namespace Zentara::Host
