#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "host/streams/frame_data.h"

namespace Zentara::Host {

/// What the depth of one frame is to be corrected by. Separate.
class DepthCorrection final {
public:
    /// What can be worked out for a frame of that stream, taken at those temperatures.
    /// \param hasPhase whether the frame holds its phase, for the cyclic error
    DepthCorrection(const StreamContext& stream, std::span<const SensorValue> temperatures, bool hasPhase);

    /// One of the corrections, as a frame is asked about it.
    struct Part {
        Correction bit;
        const char* name;    ///< "temperature"
        std::string trouble; ///< why it cannot be done; empty when it can
    };

    /// Those that the camera asks for; what is zero needs none.
    [[nodiscard]] const std::vector<Part>& parts() const noexcept { return wanted; }

    /// The set of those that can be done.
    [[nodiscard]] std::uint8_t possible() const noexcept;

    /// Corrects values of a plane. \param phase as many, or none \param corrected room for as many
    void apply(std::span<const std::uint16_t> depth, std::span<const std::uint16_t> phase,
               std::uint16_t* corrected) const noexcept;

private:
    void addPhaseDelay();
    void addCyclicError(bool hasPhase);
    void addTemperature(std::span<const SensorValue> temperatures);
    [[nodiscard]] std::uint16_t stepOf(double millimetres, std::uint16_t phase) const noexcept;

    const StreamContext& context;
    const StreamInfo& info;
    const ModeCorrections* mode; ///< null where the mode is none that there are corrections for
    std::vector<Part> wanted;
    double offset = 0;                          ///< millimetres that are added to every value
    const std::vector<float>* cyclic = nullptr; ///< millimetres to add for each step of phase; null for none
};

} // namespace Zentara::Host
