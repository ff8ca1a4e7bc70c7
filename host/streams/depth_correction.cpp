#include "host/streams/depth_correction.h"

#include <algorithm>
#include <cmath>

#include <zentara/cyclic_error_correction.h>
#include <zentara/depth_node.h>
#include <zentara/utils/format.h>

namespace Zentara::Host {

using Utils::Format;

namespace {

constexpr double stepsOfTurn = 65536;

const SensorValue* find(std::span<const SensorValue> values, std::int32_t sensor) noexcept {
    const auto found = std::find_if(values.begin(), values.end(),
                                    [sensor](const SensorValue& value) { return value.sensorId == sensor; });
    return found == values.end() ? nullptr : &*found;
}

bool allFinite(const std::vector<float>& numbers) {
    return std::all_of(numbers.begin(), numbers.end(), [](float number) { return std::isfinite(number); });
}

bool allZero(const std::vector<float>& numbers) {
    return std::all_of(numbers.begin(), numbers.end(), [](float number) { return number == 0; });
}

/// How much warmer a sensor is than it was at calibration.
struct Warming {
    double degrees = 0;
    std::string trouble; ///< why it is not known
};

Warming warmingOf(std::int32_t sensor, std::span<const SensorValue> now, const SensorValueArray& then) {
    const SensorValue* const reading = find(now, sensor);
    const SensorValue* const reference = find(then.values, sensor);
    if (reference == nullptr)
        return {0, Format("what sensor % read at calibration is not known") % sensor};
    if (reading == nullptr || !std::isfinite(reading->value))
        return {0, Format("there is no reading of sensor %") % sensor};
    return {double{reading->value} - double{reference->value}, {}};
}

/// The sensors of the parameters: those that are named, else those of the calibration in its order.
std::vector<std::int32_t> sensorsOf(const ModeCorrections& mode) {
    std::vector<std::int32_t> sensors = mode.temperatureSensors;
    if (sensors.empty()) {
        for (const SensorValue& value : mode.calibratedAt.values)
            sensors.push_back(value.sensorId);
    }
    return sensors;
}

} // namespace

DepthCorrection::DepthCorrection(const StreamContext& stream, std::span<const SensorValue> temperatures,
                                 bool hasPhase)
    : context(stream), info(stream.info), mode(correctionsOf(info)) {
    if (info.correctionsSource == Source::None) {
        const char* const reason = "the camera gives none";
        wanted = {{Correction_TEMPERATURE, "temperature", reason},
                  {Correction_CYCLIC_ERROR, "cyclic error", reason},
                  {Correction_PHASE_DELAY, "phase delay", reason}};
        return;
    }
    addTemperature(temperatures);
    addCyclicError(hasPhase);
    addPhaseDelay();
}

std::uint8_t DepthCorrection::possible() const noexcept {
    unsigned bits = 0;
    for (const Part& part : wanted) {
        if (part.trouble.empty())
            bits |= part.bit;
    }
    return static_cast<std::uint8_t>(bits);
}

void DepthCorrection::addTemperature(std::span<const SensorValue> temperatures) {
    using Temperature = ModeCorrections::Temperature;
    if (mode == nullptr || mode->temperature == Temperature::None ||
        (mode->temperature != Temperature::Other && allZero(mode->temperatureParameters)))
        return;
    Part& part = wanted.emplace_back(Part{Correction_TEMPERATURE, "temperature", {}});
    const std::vector<float>& parameters = mode->temperatureParameters;
    const std::vector<std::int32_t> sensors = sensorsOf(*mode);
    const std::size_t needed = mode->temperature == Temperature::Linear ? parameters.size() : 1;
    if (mode->temperature == Temperature::Other)
        part.trouble = "its algorithm is not known";
    else if (!allFinite(parameters))
        part.trouble = "a parameter is not finite";
    else if (sensors.size() < needed)
        part.trouble = Format("its % parameters have % sensors") % parameters.size() % sensors.size();
    if (!part.trouble.empty())
        return;
    // Linear: a coefficient for each sensor. Polynomial: coefficients of the first sensor's powers, from the constant on.
    double sum = 0;
    for (std::size_t i = 0; i < needed && part.trouble.empty(); ++i) {
        const Warming warming = warmingOf(sensors[i], temperatures, mode->calibratedAt);
        part.trouble = warming.trouble;
        if (mode->temperature == Temperature::Linear) {
            sum += double{parameters[i]} * warming.degrees;
            continue;
        }
        for (auto coefficient = parameters.rbegin(); coefficient != parameters.rend(); ++coefficient)
            sum = sum * warming.degrees + double{*coefficient};
    }
    if (part.trouble.empty())
        offset += sum;
}

void DepthCorrection::addCyclicError(bool hasPhase) {
    if (mode == nullptr || mode->cyclicAlgorithm == CorrectionAlgorithm_NONE ||
        (mode->cyclicAlgorithm == CorrectionAlgorithm_HARMONIC && allZero(mode->cyclicParameters)))
        return;
    Part& part = wanted.emplace_back(Part{Correction_CYCLIC_ERROR, "cyclic error", {}});
    if (mode->cyclicAlgorithm != CorrectionAlgorithm_HARMONIC)
        part.trouble = Format("algorithm % is not known") % mode->cyclicAlgorithm;
    else if (!allFinite(mode->cyclicParameters))
        part.trouble = "a parameter is not finite";
    else if (!hasPhase && !(info.millimetresPerPhaseStep > 0))
        part.trouble = "neither the frame nor the camera tells the phase";
    else
        cyclic = &context.harmonics();
}

void DepthCorrection::addPhaseDelay() {
    const Corrections& corrections = info.corrections;
    const std::int16_t delay =
        info.mode.cameraMode == DepthNode::CameraMode_1 ? corrections.phaseDelay2 : corrections.phaseDelay;
    if (delay == 0)
        return;
    Part& part = wanted.emplace_back(Part{Correction_PHASE_DELAY, "phase delay", {}});
    if (!(info.millimetresPerPhaseStep > 0) || !std::isfinite(info.millimetresPerPhaseStep))
        part.trouble = "how many millimetres a step of phase is, is not known";
    else
        offset -= double{info.millimetresPerPhaseStep} * delay;
}

/// Light that came back never has the phase 0: that stands for a camera that sends depth in its place.
std::uint16_t DepthCorrection::stepOf(double millimetres, std::uint16_t phase) const noexcept {
    if (phase != 0 || !(info.millimetresPerPhaseStep > 0))
        return phase;
    return static_cast<std::uint16_t>(
        std::fmod(millimetres / double{info.millimetresPerPhaseStep}, stepsOfTurn));
}

void DepthCorrection::apply(std::span<const std::uint16_t> depth, std::span<const std::uint16_t> phase,
                            std::uint16_t* corrected) const noexcept {
    const double unit = info.millimetresPerUnit;
    for (std::size_t i = 0; i < depth.size(); ++i) {
        if (depth[i] == 0) {
            corrected[i] = 0;
            continue;
        }
        // The cyclic error goes by the phase as it was measured, before any correction. What comes out as 0, or too great for
        // 16 bits, is no depth.
        double millimetres = depth[i] * unit;
        if (cyclic != nullptr)
            millimetres +=
                double{(*cyclic)[stepOf(millimetres, phase.empty() ? std::uint16_t{0} : phase[i])]};
        const double value = std::round((millimetres + offset) / unit);
        corrected[i] = value >= 1 && value <= 0xFFFF ? static_cast<std::uint16_t>(value) : std::uint16_t{0};
    }
}

} // namespace Zentara::Host
