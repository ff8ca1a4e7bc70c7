#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "plugins/simulated/usb/camera_shape.h"
#include "plugins/simulated/usb/usb_ip.h"

namespace Zentara::Simulated {

/// The requests of the video and audio classes that units answer.
enum ClassRequest : std::uint8_t {
    SetCur = 0x01,
    GetCur = 0x81,
    GetMin = 0x82,
    GetMax = 0x83,
    GetRes = 0x84,
    GetLen = 0x85,
    GetInfo = 0x86,
    GetDef = 0x87,
};

/// The answer of GetInfo: bit 0 that a control can be read, bit 1 that it can be set.
constexpr std::uint8_t canBeReadAndSet = 3;

/// What the units and terminals of a camera let a host set: exposure, brightness, contrast and gain of a colour chain, mute
/// and level of the microphone. Bound.
class ControlTable final {
public:
    explicit ControlTable(const CameraShape& shape);

    /// \return the answer, which is empty for a setting; nothing for what there is not
    [[nodiscard]] std::optional<Bytes> answer(const Setup& setup, const Bytes& data);

    [[nodiscard]] int brightness() const;
    /// 0 to 1; 0 when muted.
    [[nodiscard]] float microphoneLevel() const;

private:
    struct Control {
        std::uint8_t interfaceNumber;
        std::uint8_t unit;
        std::uint8_t selector;
        std::uint8_t bytes;
        std::int32_t minimum;
        std::int32_t maximum;
        std::int32_t step;
        std::int32_t initial;
        std::int32_t value;
    };

    [[nodiscard]] Control* find(std::uint8_t interfaceNumber, std::uint8_t unit, std::uint8_t selector);
    [[nodiscard]] const Control* find(std::uint8_t interfaceNumber, std::uint8_t unit,
                                      std::uint8_t selector) const;

    std::vector<Control> controls;
    std::uint8_t microphoneInterface;
    std::uint8_t colorUnit = 0; ///< 0 when nothing is to be set
};

} // namespace Zentara::Simulated
