#pragma once

#include <cstdint>

namespace Zentara::ROM {

/// The one-byte tag in front of each record inside a section. The markers 34 and 64 to 66 are also tags of the form in
/// which a calibration travels to parameter back-ends, with contents of another layout (`CalibrationInternal`).
enum class TypeMarker : std::uint8_t {
    SystemInfoData = 1,
    DepthIntrinsicsData = 16,
    ColorIntrinsicsData = 17,
    ExtrinsicsData = 18,
    OverheatingDiagnosticData = 32,
    AccelerometerCalibrationData = 33,
    TemperatureCalibrationData = 34,
    PhaseOffset = 64,
    PhaseOffset2 = 65,
    TemperatureCompensationData = 66,
    CyclicErrorCorrectionData = 67,
    GradientDistortionCorrectionHeader = 68,
    GradientDistortionCorrectionData = 69,
    ZT536HardwareInfoData = 128,
};

} // namespace Zentara::ROM
