#include <zentara/calibration_internal.h>

#include <algorithm>
#include <cstddef>
#include <utility>

#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/format.h>

namespace Zentara {

namespace {

constexpr std::size_t maximumCoefficients = 255;

// A record: tag, version, and a 16-bit length that counts this header. By the length a reader passes over what it does
// not know, so that back-ends may send more than this library asks for.
constexpr unsigned int headerSize = 1 + 1 + 2;
constexpr unsigned char recordVersion = 1;
constexpr unsigned int phaseDelaySize = headerSize + 2;
constexpr unsigned int coefficientsOffset = headerSize + 4;

/// The markers that records with the same content have in a camera's flash. The records themselves differ: there numbers
/// are big-endian and coefficients floats.
enum Tag : unsigned char {
    Tag_FIRST_COEFFICIENTS = 0x22, // count, three bytes 0xFF, the coefficients
    Tag_PHASE_DELAY = 0x40,
    Tag_PHASE_DELAY_2 = 0x41,
    Tag_SECOND_COEFFICIENTS = 0x42, // kind, count, two bytes 0xFF, the coefficients
};

constexpr unsigned int coefficientsRecordSize(unsigned int count) { return coefficientsOffset + count * 4; }

/// Writes little-endian values into a buffer that is known to be large enough.
class Writer {
public:
    explicit Writer(unsigned char* buffer) : position(buffer) {}

    void header(Tag tag, unsigned int length) {
        byte(tag);
        byte(recordVersion);
        word(static_cast<std::uint16_t>(length));
    }
    void byte(unsigned int value) { *position++ = static_cast<unsigned char>(value); }
    void word(std::uint16_t value) {
        byte(value & 0xFFU);
        byte(value >> 8U);
    }
    /// Always `count` values: a shorter set ends in zeros.
    void coefficients(const std::vector<std::int32_t>& values, unsigned int count) {
        for (unsigned int i = 0; i < count; ++i) {
            const auto value = static_cast<std::uint32_t>(i < values.size() ? values[i] : 0);
            word(static_cast<std::uint16_t>(value));
            word(static_cast<std::uint16_t>(value >> 16U));
        }
    }

private:
    unsigned char* position;
};

std::uint16_t readWord(const unsigned char* bytes) {
    return static_cast<std::uint16_t>(bytes[0] | static_cast<unsigned int>(bytes[1]) << 8U);
}

/// One record of the tagged form, its length already checked against the buffer.
struct Record {
    const unsigned char* bytes;
    unsigned int length;

    [[nodiscard]] bool phaseDelay(std::int16_t& value) const {
        if (length < phaseDelaySize)
            return false;
        value = static_cast<std::int16_t>(readWord(bytes + headerSize));
        return true;
    }

    /// \param countIndex where the count stands in the payload
    [[nodiscard]] bool coefficients(unsigned int countIndex, std::vector<std::int32_t>& values) const {
        if (length < coefficientsOffset)
            return false;
        const unsigned int count = bytes[headerSize + countIndex];
        if (count * 4 > length - coefficientsOffset)
            return false;
        values.clear();
        for (unsigned int i = 0; i < count; ++i) {
            const unsigned char* value = bytes + coefficientsOffset + std::size_t{i} * 4;
            values.push_back(static_cast<std::int32_t>(
                static_cast<std::uint32_t>(readWord(value + 2)) << 16U | readWord(value)));
        }
        return true;
    }
};

} // namespace

CalibrationInternal::CalibrationInternal() = default;

CalibrationInternal::CalibrationInternal(std::int16_t phase, DriftCompensation drift)
    : phaseOffset(phase), phaseDelay(phase), driftCompensation(drift) {}

std::int16_t CalibrationInternal::getPhaseOffset() const { return phaseOffset; }

void CalibrationInternal::setPhaseOffset(std::int16_t newOffset) { phaseOffset = newOffset; }

std::int16_t CalibrationInternal::getPhaseDelay() const { return phaseDelay; }

void CalibrationInternal::setPhaseDelay(std::int16_t newDelay) { phaseDelay = newDelay; }

std::int16_t CalibrationInternal::getPhaseDelay2() const { return phaseDelay2; }

void CalibrationInternal::setPhaseDelay2(std::int16_t newDelay) { phaseDelay2 = newDelay; }

DriftCompensation CalibrationInternal::getDriftCompensation() const { return driftCompensation; }

void CalibrationInternal::setDriftCompensation(DriftCompensation newDrift) { driftCompensation = newDrift; }

TemperatureCompensationData CalibrationInternal::getTemperatureCompensation() const {
    TemperatureCompensationData data{compensationKind, firstCoefficients, secondCoefficients};
    const std::size_t count = std::max(firstCoefficients.size(), secondCoefficients.size());
    data.firstCoefficients.resize(count);
    data.secondCoefficients.resize(count);
    return data;
}

void CalibrationInternal::setTemperatureCompensation(TemperatureCompensationData data) {
    const std::size_t first = data.firstCoefficients.size();
    const std::size_t second = data.secondCoefficients.size();
    if (first != second || first > maximumCoefficients)
        throw Plugin::ArgumentPluginException(
            Utils::Format("temperature compensation: sets of % and % coefficients; both must have the same "
                          "number, at most %") %
            first % second % maximumCoefficients);
    compensationKind = data.kind;
    compensationCount = static_cast<std::uint16_t>(first);
    firstCoefficients = std::move(data.firstCoefficients);
    secondCoefficients = std::move(data.secondCoefficients);
}

int CalibrationInternal::marshal(unsigned char* buffer, unsigned int* size) const {
    if (!size)
        return -1;
    // What is zero has no record: a reader keeps what it had, so zero cannot be told.
    const unsigned int coefficientsSize =
        compensationKind != 0 ? coefficientsRecordSize(compensationCount) : 0;
    const unsigned int required = (phaseDelay != 0 ? phaseDelaySize : 0) +
                                  (phaseDelay2 != 0 ? phaseDelaySize : 0) + 2 * coefficientsSize;
    // All or nothing: a buffer that holds a part would pass for a calibration that says less.
    if (!buffer || *size < required) {
        *size = required;
        return -1;
    }
    Writer writer(buffer);
    if (phaseDelay != 0) {
        writer.header(Tag_PHASE_DELAY, phaseDelaySize);
        writer.word(static_cast<std::uint16_t>(phaseDelay));
    }
    if (phaseDelay2 != 0) {
        writer.header(Tag_PHASE_DELAY_2, phaseDelaySize);
        writer.word(static_cast<std::uint16_t>(phaseDelay2));
    }
    if (compensationKind != 0) {
        // The first set, stored last in the object, is written first.
        writer.header(Tag_FIRST_COEFFICIENTS, coefficientsSize);
        writer.byte(compensationCount);
        writer.byte(0xFF);
        writer.word(0xFFFF);
        writer.coefficients(firstCoefficients, compensationCount);
        writer.header(Tag_SECOND_COEFFICIENTS, coefficientsSize);
        writer.byte(static_cast<std::uint32_t>(compensationKind) & 0xFFU);
        writer.byte(compensationCount);
        writer.word(0xFFFF);
        writer.coefficients(secondCoefficients, compensationCount);
    }
    return 0;
}

int CalibrationInternal::unmarshal(const unsigned char* buffer, unsigned int size) {
    if (!buffer)
        return -1;
    // Into a copy: bytes that end in the middle of a record leave the object as it was.
    CalibrationInternal read(*this);
    for (unsigned int position = 0; position < size;) {
        if (headerSize > size - position)
            return -1;
        const Record record{buffer + position, readWord(buffer + position + 2)};
        if (record.length < headerSize || record.length > size - position)
            return -1;
        position += record.length;
        // Of another version even a known tag may mean something else.
        if (record.bytes[1] != recordVersion)
            continue;
        bool fits = true;
        switch (record.bytes[0]) {
        case Tag_PHASE_DELAY:
            fits = record.phaseDelay(read.phaseDelay);
            break;
        case Tag_PHASE_DELAY_2:
            fits = record.phaseDelay(read.phaseDelay2);
            break;
        case Tag_FIRST_COEFFICIENTS:
            fits = record.coefficients(0, read.firstCoefficients);
            break;
        case Tag_SECOND_COEFFICIENTS:
            fits = record.coefficients(1, read.secondCoefficients);
            read.compensationKind = fits ? record.bytes[headerSize] : 0;
            // The second set's number counts; the first one is brought to it when it is written or handed out.
            read.compensationCount = static_cast<std::uint16_t>(read.secondCoefficients.size());
            break;
        default:
            break;
        }
        if (!fits)
            return -1;
    }
    *this = std::move(read);
    return 0;
}

} // namespace Zentara
