#pragma once

#include <cstdint>
#include <vector>

#include <zentara/export.h>
#include <zentara/rom/type_marker.h>

namespace Zentara::ROM {

/// The coefficients of the temperature calibration: a count byte, then that many floats. The SDK's nodes take them for
/// what the sensors 0, 1 and so on read when the camera was calibrated, in degrees Celsius, the same for both camera
/// modes. A copyable value. Separate.
class ZENTARA_API TemperatureCalibrationData {
public:
    static constexpr TypeMarker MARKER = TypeMarker::TemperatureCalibrationData;
    static constexpr std::uint8_t VERSION = 1;
    static constexpr std::uint32_t MIN_SIZE = 1;
    /// No coefficients.
    TemperatureCalibrationData();
    explicit TemperatureCalibrationData(const std::vector<float>& values);
    TemperatureCalibrationData(const TemperatureCalibrationData& other);
    TemperatureCalibrationData& operator=(const TemperatureCalibrationData& other);
    virtual ~TemperatureCalibrationData();

    bool operator==(const TemperatureCalibrationData& other) const;
    bool operator!=(const TemperatureCalibrationData& other) const;

    const std::vector<float>& getValues() const;

protected:
    friend class Configuration;

    /// A new record read from its complete bytes, owned by the caller; null if they are no version 1 record
    /// of this marker or fewer than it needs.
    static TemperatureCalibrationData* deserialize(const std::vector<std::uint8_t>& bytes);

    /// \throws ArgumentPluginException for more than 255 coefficients.
    virtual std::vector<std::uint8_t> serialize() const;

private:
    void swap(TemperatureCalibrationData& other) noexcept;

    std::vector<float> values; ///< at most 255 can be written
};

} // namespace Zentara::ROM
