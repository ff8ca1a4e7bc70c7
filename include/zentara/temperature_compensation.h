#pragma once

#include <cstdint>
#include <vector>

#include <zentara/depth_node.h>
#include <zentara/export.h>
#include <zentara/temperature_calibration.h>
#include <zentara/temperature_compensation_data.h>

namespace Zentara {

/// How depth is corrected for temperature: for each camera mode an algorithm, its parameters and the
/// sensors that feed it. A camera mode is current or none is; the getters answer for the current one.
///
/// Nothing throws: a question that cannot be answered logs a warning and returns 0, or -1 for a sensor.
/// A copyable value. Separate.
///
/// In a camera's ROM a mode's settings are a range: the algorithm in one byte, the number of parameters in one, and
/// the parameters as big-endian floats. It names no sensors: those are set afterwards, and without any a host takes the
/// calibration's, in its order.
class ZENTARA_API TemperatureCompensation {
public:
    /// What the parameters mean: from the degrees by which the sensors are warmer than at calibration to the
    /// millimetres that are to be added to the depth. Cameras may store other values; they are kept.
    enum CompensationAlgorithm : std::int32_t {
        CompensationAlgorithm_LINEAR = 0,     ///< millimetres per degree, one parameter a sensor
        CompensationAlgorithm_POLYNOMIAL = 1, ///< coefficients of rising powers, of the first sensor
    };

    /// The form in which a calibration carries it.
    using TemperatureCompensationData = Zentara::TemperatureCompensationData;

    /// No camera mode has a compensation.
    TemperatureCompensation();

    /// Reads exactly one range of a camera's ROM, for camera mode 0. The bytes that it announces must be there. Null
    /// reads as none.
    explicit TemperatureCompensation(const void* data);

    /// Reads ranges until the bytes end, the first for camera mode 0, the second for 1; any more are not
    /// looked at. A range that is cut short is dropped with a warning. \param size of `data` in bytes
    TemperatureCompensation(unsigned int size, const void* data);

    /// The same for both camera modes: algorithm 0 with one parameter and one sensor; not from a ROM.
    /// \param parameter millimetres to add for each degree above the calibration's \param sensorId -1: not known
    TemperatureCompensation(float parameter, int sensorId);

    /// Mode -1 always succeeds and leaves none current.
    /// \return false, with the current mode as it was, for a mode that has no compensation
    bool setCurrentMode(DepthNode::CameraMode mode);
    /// -1, or a mode that has a compensation.
    [[nodiscard]] DepthNode::CameraMode getCurrentMode() const;

    /// Of the current mode, as stored: also a number that nobody knows.
    [[nodiscard]] CompensationAlgorithm getAlgorithm() const;
    /// The parameters of the current mode, in the unit that its algorithm gives them. \param index from 0
    [[nodiscard]] unsigned int getParameterCount() const;
    [[nodiscard]] float getParameter(unsigned int index) const;

    /// The camera's numbers for the sensors that feed the current mode, in the parameters' order. \param index from 0
    [[nodiscard]] unsigned int getSensorIDCount() const;
    [[nodiscard]] int getSensorID(unsigned int index) const;

    /// Sets the sensors of any mode that has a compensation. \return false for any other
    bool setSensorIDs(DepthNode::CameraMode mode, std::vector<int> ids);

    /// Keeps a copy of what the sensors read at calibration, degrees Celsius. \return always true
    bool setTemperatureCalibration(const TemperatureCalibration& newCalibration);
    [[nodiscard]] const TemperatureCalibration& getTemperatureCalibration() const;

    /// Whether at least one range was read from a camera's ROM.
    [[nodiscard]] bool comesFromRom() const;

private:
    struct Record {
        CompensationAlgorithm algorithm = CompensationAlgorithm_LINEAR;
        std::vector<float> parameters;       // in the algorithm's unit
        std::vector<std::int32_t> sensorIds; // of a range from the ROM none, until they are set
    };

    void init(unsigned int size, const void* data);
    void logRecords() const;

    /// Null, with a warning that `what` cannot be had, when no mode is current.
    const Record* currentRecord(const char* what) const;

    std::vector<Record> records;   // the mode is the index
    std::int32_t currentMode = -1; // always one that has a record, or none
    TemperatureCalibration calibration;
    bool fromRom = false;
};

} // namespace Zentara
