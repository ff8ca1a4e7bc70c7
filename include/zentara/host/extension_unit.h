#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <zentara/guid.h>
#include <zentara/host/export.h>

namespace Zentara::Host {

/// A control of an extension unit, as the camera tells of it. A plain value; what the camera does not tell is empty.
struct ExtensionControl {
    std::uint32_t selector = 0;
    std::uint32_t length = 0; ///< bytes; 0 when the camera does not say
    bool canGet = false;
    bool canSet = false;
    // As many bytes as the control has.
    std::vector<std::uint8_t> minimum;
    std::vector<std::uint8_t> maximum;
    std::vector<std::uint8_t> step;
    std::vector<std::uint8_t> standard; ///< what it is when the camera begins
    std::string failure;                ///< why its length or what can be done with it is not known
};

/// An extension unit of a camera, with the controls that its descriptors name. A plain value.
struct ExtensionUnit {
    std::uint32_t number = 0;
    GUID guid{};
    std::vector<ExtensionControl> controls;

    /// The identifier in its usual form, upper case: "DD880F8A-1CBA-4954-8A25-F7875967F0F7".
    [[nodiscard]] ZENTARA_HOST_API std::string guidText() const;
};

} // namespace Zentara::Host
