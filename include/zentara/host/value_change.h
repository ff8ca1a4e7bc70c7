#pragma once

#include <string>

#include <zentara/host/export.h>

namespace Zentara::Host {

/// A value that a change makes another, of a section of a flash or of a calibration. A plain value. Separate.
struct ValueChange {
    std::string path;   ///< in the JSON of the whole: "records/0/fx"
    std::string before; ///< as JSON; "null" where there was none
    std::string after;  ///< as JSON; "null" where there is none any more

    /// "records/0/fx: 224.5 -> 230.5"; in ASCII, cut where a value is long.
    [[nodiscard]] ZENTARA_HOST_API std::string text() const;
};

} // namespace Zentara::Host
