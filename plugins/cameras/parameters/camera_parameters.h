#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <zentara/error_code.h>
#include <zentara/io/tof_registers.h>
#include <zentara/parameter_type.h>
#include <zentara/parameter_value_type.h>
#include <zentara/region_of_interest_internal.h>

#include "plugins/cameras/parameters/parameter_table.h"

namespace Zentara::Cameras {

/// Why the back-end could not do what it was asked, for its last-error text. Caught before it leaves the library.
class Failure : public std::runtime_error {
public:
    Failure(ErrorCode errorCode, const std::string& reason) : std::runtime_error(reason), code(errorCode) {}

    const ErrorCode code;
};

/// The parameters of one camera: what they accept, and where they are kept. Every operation throws `Failure`, and what
/// the registers throw.
class CameraParameters {
public:
    /// Finds the camera's registers and gives them their starting values, unless they have had them.
    CameraParameters(const IO::BackEndWay& way, const HardwareVersionInternal& version);

    /// The parameter. \throws Failure if the cameras do not have it, or of another type
    [[nodiscard]] static const Parameter& parameter(ParameterType number);
    [[nodiscard]] static const Parameter& parameter(ParameterType number, ParameterValueType type);

    /// The value of a number or a switch, 0 or 1.
    [[nodiscard]] double read(const Parameter& parameter);
    /// \throws Failure `ErrorCode_OUT_OF_RANGE`; the camera is not touched then
    void write(const Parameter& parameter, double value);

    [[nodiscard]] RegionOfInterestInternal readRegion();
    void writeRegion(const RegionOfInterestInternal& region);

    /// Reads, or checks as a whole and then writes, the entries of a system state.
    void readState(std::vector<std::uint8_t>& state);
    void writeState(const std::vector<std::uint8_t>& state);

    /// What the parameter accepts, encoded.
    [[nodiscard]] static std::vector<std::uint8_t> range(const Parameter& parameter);

    /// What was written last, else what the camera's flash holds, where the described cameras keep it.
    [[nodiscard]] const std::vector<std::uint8_t>& readCalibration();
    /// Kept until the back-end ends; the flash stays as it is. \throws Failure if the bytes are no calibration
    void writeCalibration(std::vector<std::uint8_t> bytes);

    /// Millimetres for each step of a 16-bit phase.
    [[nodiscard]] double phaseScaling();

private:
    void start();
    [[nodiscard]] double unambiguousRange();

    std::unique_ptr<IO::TofRegisters> registers;
    std::optional<std::vector<std::uint8_t>> calibration; ///< once it was read or written
};

} // namespace Zentara::Cameras
