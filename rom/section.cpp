#include <zentara/rom/section.h>

#include "rom/big_endian_reader.h"
#include "rom/big_endian_writer.h"
#include "rom/checksum.h"

namespace Zentara::ROM {

Section::Section(ContainerSectionType sectionType, std::uint16_t identifier, std::uint8_t flagBits,
                 const std::vector<std::uint8_t>& payload)
    : type(sectionType), uid(identifier), flags(flagBits), data(payload) {}
Section::Section(const Section& other) = default;
Section& Section::operator=(const Section& other) = default;
Section::~Section() = default;

ContainerSectionType Section::getSectionType() const { return type; }
std::uint16_t Section::getUID() const { return uid; }
std::uint8_t Section::getFlags() const { return flags; }
const std::vector<std::uint8_t>& Section::getSerializedData() const { return data; }
void Section::setFlags(std::uint8_t value) { flags = value; }

std::vector<std::uint8_t> Section::serialize() const {
    BigEndianWriter out(data.size() + MIN_SIZE);
    out.writeU8(SECTION_MARKER);
    out.writeU32(static_cast<std::uint32_t>(data.size()) + MIN_SIZE);
    out.writeU8(static_cast<std::uint8_t>(type));
    out.writeU8(flags);
    out.writeU16(uid);
    out.writeU16(checksum(out.written()));
    out.writeBytes(data);
    out.writeU16(checksum(data));
    return out.take();
}

Section* Section::deserialize(const std::vector<std::uint8_t>& bytes) {
    BigEndianReader in(bytes);
    const std::uint8_t marker = in.readU8();
    const std::uint32_t length = in.readU32();
    const auto type = static_cast<ContainerSectionType>(in.readU8());
    const std::uint8_t flags = in.readU8();
    const std::uint16_t uid = in.readU16();
    const std::uint16_t headerCrc = in.readU16();
    // The header's checksum before its length: a length that was garbled would be believed otherwise.
    if (!in.ok() || marker != SECTION_MARKER || headerCrc != checksum({bytes.data(), HEADER_SIZE}) ||
        length < MIN_SIZE)
        return nullptr;
    const auto data = in.readBytes(length - MIN_SIZE);
    const std::uint16_t dataCrc = in.readU16();
    if (!in.ok() || dataCrc != checksum(data))
        return nullptr;
    return new Section(type, uid, flags, {data.begin(), data.end()});
}

} // namespace Zentara::ROM
