#include "plugins/simulated/usb/control_table.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace Zentara::Simulated {
namespace {

constexpr std::uint8_t exposureMode = 2; // of a camera terminal: a bit for each
constexpr std::uint8_t exposureTime = 4; // in steps of 0.1 ms
constexpr std::int32_t manualMode = 1;
constexpr std::int32_t aperturePriority = 8;
constexpr std::uint8_t brightnessSelector = 2; // of a processing unit
constexpr std::uint8_t contrastSelector = 3;
constexpr std::uint8_t gainSelector = 4;
constexpr std::uint8_t muteSelector = 1; // of a microphone's features
constexpr std::uint8_t levelSelector = 2;
constexpr std::int32_t stepsPerDecibel = 256;

Bytes encode(std::int32_t value, std::size_t bytes) {
    Bytes encoded;
    for (std::size_t i = 0; i < bytes; ++i)
        encoded.push_back(static_cast<std::uint8_t>(static_cast<std::uint32_t>(value) >> 8 * i));
    return encoded;
}

/// Signed, as the two-byte controls are; the others never use their highest bit.
std::int32_t decode(const Bytes& data, std::size_t bytes) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < bytes; ++i)
        value |= std::uint32_t{data[i]} << 8 * i;
    return bytes == 2 ? static_cast<std::int16_t>(value) : static_cast<std::int32_t>(value);
}

} // namespace

ControlTable::ControlTable(const CameraShape& shape) : microphoneInterface(audioInterface(shape)) {
    for (std::size_t stream = 0; stream < shape.streams.size(); ++stream) {
        if (!shape.streams[stream].hasControls)
            continue;
        const std::uint8_t terminal = unitOf(stream, cameraTerminal);
        colorUnit = unitOf(stream, processingUnit);
        const auto add = [&](std::uint8_t unit, std::uint8_t selector, std::uint8_t bytes, std::int32_t least,
                             std::int32_t most, std::int32_t step, std::int32_t initial) {
            controls.push_back(
                {controlInterface, unit, selector, bytes, least, most, step, initial, initial});
        };
        // The step of the mode is the set of modes that there are.
        add(terminal, exposureMode, 1, manualMode, aperturePriority, manualMode | aperturePriority,
            aperturePriority);
        add(terminal, exposureTime, 4, 1, 333, 1, 100);
        add(colorUnit, brightnessSelector, 2, -64, 64, 1, 0);
        add(colorUnit, contrastSelector, 2, 0, 100, 1, 50);
        add(colorUnit, gainSelector, 2, 0, 100, 1, 20);
    }
    if (!shape.hasMicrophone)
        return;
    controls.push_back({microphoneInterface, microphoneFeatures, muteSelector, 1, 0, 1, 1, 0, 0});
    controls.push_back({microphoneInterface, microphoneFeatures, levelSelector, 2, -60 * stepsPerDecibel, 0,
                        stepsPerDecibel, 0, 0});
}

const ControlTable::Control* ControlTable::find(std::uint8_t interfaceNumber, std::uint8_t unit,
                                                std::uint8_t selector) const {
    const auto found = std::find_if(controls.begin(), controls.end(), [&](const Control& control) {
        return control.interfaceNumber == interfaceNumber && control.unit == unit &&
               control.selector == selector;
    });
    return found == controls.end() ? nullptr : &*found;
}

ControlTable::Control* ControlTable::find(std::uint8_t interfaceNumber, std::uint8_t unit,
                                          std::uint8_t selector) {
    return const_cast<Control*>(std::as_const(*this).find(interfaceNumber, unit, selector));
}

std::optional<Bytes> ControlTable::answer(const Setup& setup, const Bytes& data) {
    Control* const control =
        find(static_cast<std::uint8_t>(setup.index), static_cast<std::uint8_t>(setup.index >> 8),
             static_cast<std::uint8_t>(setup.value >> 8));
    if (control == nullptr)
        return std::nullopt;
    switch (setup.request) {
    case SetCur: {
        if (data.size() < control->bytes)
            return std::nullopt;
        const std::int32_t wanted = decode(data, control->bytes);
        if (wanted < control->minimum || wanted > control->maximum)
            return std::nullopt;
        control->value = wanted;
        return Bytes();
    }
    case GetCur:
        return encode(control->value, control->bytes);
    case GetMin:
        return encode(control->minimum, control->bytes);
    case GetMax:
        return encode(control->maximum, control->bytes);
    case GetRes:
        return encode(control->step, control->bytes);
    case GetDef:
        return encode(control->initial, control->bytes);
    case GetLen:
        return encode(control->bytes, 2);
    case GetInfo:
        return Bytes{canBeReadAndSet};
    default:
        return std::nullopt;
    }
}

int ControlTable::brightness() const {
    const Control* const control = find(controlInterface, colorUnit, brightnessSelector);
    return control == nullptr ? 0 : control->value;
}

float ControlTable::microphoneLevel() const {
    const Control* const mute = find(microphoneInterface, microphoneFeatures, muteSelector);
    const Control* const level = find(microphoneInterface, microphoneFeatures, levelSelector);
    if (mute == nullptr || level == nullptr || mute->value != 0)
        return 0;
    return std::pow(10.0F, static_cast<float>(level->value) / (20.0F * stepsPerDecibel));
}

} // namespace Zentara::Simulated
