#include <zentara/rom/gradient_distortion_correction_header.h>

#include <utility>

#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/rom/string_serialization.h>
#include <zentara/utils/format.h>

#include "rom/big_endian_writer.h"
#include "rom/record.h"

namespace Zentara::ROM {

namespace {

constexpr std::size_t MAX_SERIAL_ID = 254; // with its zero byte it must be told in one byte

void checkSerialId(const std::string& serialId) {
    if (serialId.size() > MAX_SERIAL_ID)
        throw Plugin::ArgumentPluginException(
            Utils::Format("cannot store a serial id of % characters - at most % fit") %
            static_cast<unsigned long long>(serialId.size()) % static_cast<unsigned int>(MAX_SERIAL_ID));
    if (serialId.find('\0') != std::string::npos)
        throw Plugin::ArgumentPluginException("cannot store a serial id with a zero byte in it");
}

} // namespace

GradientDistortionCorrectionHeader::GradientDistortionCorrectionHeader() = default;
GradientDistortionCorrectionHeader::GradientDistortionCorrectionHeader(std::uint16_t number,
                                                                       std::uint32_t written,
                                                                       std::uint8_t sets,
                                                                       const std::string& serial)
    : versionNumber(number), timeOfLastWrite(written), numberOfSets(sets), serialId(serial) {}
GradientDistortionCorrectionHeader::GradientDistortionCorrectionHeader(
    const GradientDistortionCorrectionHeader& other) = default;
GradientDistortionCorrectionHeader&
GradientDistortionCorrectionHeader::operator=(const GradientDistortionCorrectionHeader& other) {
    GradientDistortionCorrectionHeader copy(other);
    swap(copy);
    return *this;
}
GradientDistortionCorrectionHeader::~GradientDistortionCorrectionHeader() = default;

bool GradientDistortionCorrectionHeader::operator==(const GradientDistortionCorrectionHeader& other) const {
    return versionNumber == other.versionNumber && timeOfLastWrite == other.timeOfLastWrite &&
           numberOfSets == other.numberOfSets && serialId == other.serialId;
}

void GradientDistortionCorrectionHeader::swap(GradientDistortionCorrectionHeader& other) noexcept {
    std::swap(versionNumber, other.versionNumber);
    std::swap(timeOfLastWrite, other.timeOfLastWrite);
    std::swap(numberOfSets, other.numberOfSets);
    std::swap(serialId, other.serialId);
}

std::uint16_t GradientDistortionCorrectionHeader::getVersionNumber() const { return versionNumber; }
std::uint32_t GradientDistortionCorrectionHeader::getTimeofLastWrite() const { return timeOfLastWrite; }
std::uint8_t GradientDistortionCorrectionHeader::getNumberOfSets() const { return numberOfSets; }
std::string GradientDistortionCorrectionHeader::getSerialId() const { return serialId; }

GradientDistortionCorrectionHeader*
GradientDistortionCorrectionHeader::deserialize(const std::vector<std::uint8_t>& bytes) {
    BigEndianReader in = openRecord(bytes, MARKER, VERSION);
    GradientDistortionCorrectionHeader read;
    read.versionNumber = in.readU16();
    read.timeOfLastWrite = in.readU32();
    read.numberOfSets = in.readU8();
    in.readU8(); // the id ends at its zero byte, whatever its stored length says
    read.serialId = in.readText();
    return in.ok() ? new GradientDistortionCorrectionHeader(read) : nullptr;
}

std::vector<std::uint8_t> GradientDistortionCorrectionHeader::serialize() const {
    checkSerialId(serialId);
    const std::size_t length = serializedLength(serialId);
    BigEndianWriter out(MIN_SIZE);
    out.writeU16(versionNumber);
    out.writeU32(timeOfLastWrite);
    out.writeU8(numberOfSets);
    out.writeU8(static_cast<std::uint8_t>(length));
    std::vector<std::uint8_t> data = out.take();
    data.resize(MIN_SIZE + length);
    Zentara::ROM::serialize(data.data() + MIN_SIZE, serialId);
    return makeRecord(MARKER, VERSION, data);
}

} // namespace Zentara::ROM
