#pragma once

#include <string>

#include <zentara/guid.h>
#include <zentara/host/export.h>

namespace Zentara::Host {

/// A plug-in: its well-known name, empty where it has none, and its GUID. A plain value. Separate.
struct PluginName {
    std::string name; ///< as the table of well-known identifiers has it: "MOCKDEPTH_IMPL"
    GUID guid{};      ///< by which the plug-in manager makes its objects

    /// The GUID in its usual form, upper case: "39E23FC6-E54A-4CD0-9FB4-67C1781E2C5B".
    [[nodiscard]] ZENTARA_HOST_API std::string guidText() const;
};

} // namespace Zentara::Host
