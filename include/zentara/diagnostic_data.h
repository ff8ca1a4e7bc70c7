#pragma once

#include <cstdint>

namespace Zentara {

/// How often a camera became too hot, counted by the camera over its life and kept in its flash, 0 to 255 each. A
/// copyable value. Separate.
struct DiagnosticData {
    std::uint8_t softOverheatingCounter = 0; ///< it dimmed its illumination
    std::uint8_t hardOverheatingCounter = 0; ///< it switched its illumination off

    friend bool operator==(const DiagnosticData&, const DiagnosticData&) = default;
};

} // namespace Zentara
