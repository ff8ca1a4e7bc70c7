// Any bytes as what back-ends and cameras say of themselves: a calibration, the range of a parameter, and the
// corrections of a ROM. The first byte is the type of the parameter's value, the rest is given to every decoder.
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <vector>

#include <zentara/calibration_internal.h>
#include <zentara/cyclic_error_correction.h>
#include <zentara/parameter_range.h>
#include <zentara/temperature_compensation.h>

namespace Zentara {
namespace {

using Bytes = std::vector<unsigned char>;

void require(bool holds) {
    if (!holds)
        std::abort();
}

/// Asks for the size and then for the bytes.
template<typename Value>
Bytes encode(const Value& value) {
    unsigned int size = 0;
    value.marshal(nullptr, &size);
    Bytes bytes(size + 1); // one more has an address also when there are none
    require(value.marshal(bytes.data(), &size) == 0);
    bytes.resize(size);
    return bytes;
}

/// What is refused changes nothing, and what is read is written so that it reads the same.
void checkCalibration(const unsigned char* bytes, unsigned int size) {
    const CalibrationInternal before(5, DriftCompensation(1, 2));
    CalibrationInternal calibration = before;
    if (calibration.unmarshal(bytes, size) != 0) {
        require(calibration == before);
        return;
    }
    const Bytes encoded = encode(calibration);
    CalibrationInternal again = calibration;
    require(again.unmarshal(encoded.data(), static_cast<unsigned int>(encoded.size())) == 0 ||
            encoded.empty());
    require(encode(again) == encoded);
}

/// A range is written as the bytes that it was read from, but for the type bytes within.
void checkRange(ParameterValueType type, const unsigned char* bytes, unsigned int size) {
    const auto range = ParameterRangeBaseInternal::unmarshal(type, bytes, size);
    if (!range)
        return;
    const Bytes encoded = encode(*range);
    require(encoded.size() <= size && encoded[0] == bytes[0]);
    const auto encodedSize = static_cast<unsigned int>(encoded.size());
    require(encode(*ParameterRangeBaseInternal::unmarshal(type, encoded.data(), encodedSize)) == encoded);
}

/// A stored record reads the same as a temperature compensation and as a cyclic-error correction.
void checkCorrections(const unsigned char* bytes, unsigned int size) {
    TemperatureCompensation temperature(size, bytes);
    const Bytes block = cyclicErrorBlock(size, bytes);
    require(temperature.comesFromRom() == !block.empty());
    if (block.empty())
        return;
    CyclicErrorCorrection cyclic(static_cast<const void*>(block.data()));
    temperature.setCurrentMode(DepthNode::CameraMode_0);
    cyclic.setCurrentMode(DepthNode::CameraMode_1);
    require(cyclic.getAlgorithm() == static_cast<int>(temperature.getAlgorithm()));
    require(cyclic.getParameterCount() == temperature.getParameterCount());
}

} // namespace
} // namespace Zentara

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace Zentara;
    if (size == 0)
        return 0;
    const auto length = static_cast<unsigned int>(size - 1);
    checkCalibration(data + 1, length);
    checkRange(static_cast<ParameterValueType>(data[0] % 6), data + 1, length);
    checkCorrections(data + 1, length);
    return 0;
}
