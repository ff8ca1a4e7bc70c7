#include <zentara/rom/system_calibration.h>

#include "rom/record.h"

namespace Zentara::ROM {

SystemCalibration::SystemCalibration(const AccelerometerCalibrationData& acceleration,
                                     const ExtrinsicsData& transform,
                                     const std::vector<IntrinsicsData>& depth,
                                     const std::vector<IntrinsicsData>& color)
    : accelerometer(acceleration), extrinsics(transform), depthIntrinsics(depth), colorIntrinsics(color) {}
SystemCalibration::SystemCalibration(const SystemCalibration& other) = default;
SystemCalibration& SystemCalibration::operator=(const SystemCalibration& other) = default;
SystemCalibration::~SystemCalibration() = default;

ContainerSectionType SystemCalibration::getType() const { return ContainerSectionType::SystemCalibration; }
std::vector<IntrinsicsData> SystemCalibration::getDepthIntrinsics() const { return depthIntrinsics; }
std::vector<IntrinsicsData> SystemCalibration::getColorIntrinsics() const { return colorIntrinsics; }
const ExtrinsicsData& SystemCalibration::getExtrinsics() const { return extrinsics; }
const AccelerometerCalibrationData& SystemCalibration::getAccelerometerCalibration() const {
    return accelerometer;
}

// In the order of the format. Extrinsics and accelerometer are written also where there are none: all 0.
std::vector<std::uint8_t> SystemCalibration::serialize() const {
    std::vector<std::uint8_t> bytes;
    for (const IntrinsicsData& lens : depthIntrinsics)
        append(bytes, lens.serialize());
    for (const IntrinsicsData& lens : colorIntrinsics)
        append(bytes, lens.serialize());
    append(bytes, extrinsics.serialize());
    append(bytes, accelerometer.serialize());
    return bytes;
}

SystemCalibration* SystemCalibration::deserialize(const std::vector<std::uint8_t>& bytes) {
    std::vector<IntrinsicsData> depth;
    std::vector<IntrinsicsData> color;
    ExtrinsicsData transform;
    AccelerometerCalibrationData acceleration;
    readRecords(
        bytes,
        {{IntrinsicsData::DEPTH_MARKER, "IntrinsicsData",
          [&](const auto& record) { return add(depth, IntrinsicsData::deserialize(record)); }},
         {IntrinsicsData::COLOR_MARKER, "IntrinsicsData",
          [&](const auto& record) { return add(color, IntrinsicsData::deserialize(record)); }},
         {ExtrinsicsData::MARKER, "ExtrinsicsData",
          [&](const auto& record) { return keep(transform, ExtrinsicsData::deserialize(record)); }},
         {AccelerometerCalibrationData::MARKER, "AccelerometerCalibrationData", [&](const auto& record) {
              return keep(acceleration, AccelerometerCalibrationData::deserialize(record));
          }}});
    return new SystemCalibration(acceleration, transform, depth, color);
}

} // namespace Zentara::ROM
