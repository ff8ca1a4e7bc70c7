#include <zentara/rom/container_header.h>

#include "rom/big_endian_reader.h"
#include "rom/big_endian_writer.h"
#include "rom/checksum.h"

namespace Zentara::ROM {

namespace {
constexpr std::size_t CHECKED_SIZE = ContainerHeader::SIZE - 2; // all but the CRC itself
}

ContainerHeader::ContainerHeader(std::uint8_t formatVersion, std::uint8_t readoutVersion)
    : version(formatVersion), minReadoutVersion(readoutVersion) {}
ContainerHeader::ContainerHeader(const ContainerHeader& other) = default;
ContainerHeader& ContainerHeader::operator=(const ContainerHeader& other) = default;
ContainerHeader::~ContainerHeader() = default;

bool ContainerHeader::operator==(const ContainerHeader& other) const {
    return version == other.version && minReadoutVersion == other.minReadoutVersion;
}
std::uint8_t ContainerHeader::getVersion() const { return version; }
std::uint8_t ContainerHeader::getMinReadoutVersion() const { return minReadoutVersion; }

std::vector<std::uint8_t> ContainerHeader::serialize() const {
    BigEndianWriter out(SIZE);
    out.writeU8(version);
    out.writeU8(minReadoutVersion);
    out.writeU16(checksum(out.written()));
    return out.take();
}

ContainerHeader* ContainerHeader::deserialize(const std::vector<std::uint8_t>& bytes) {
    BigEndianReader in(bytes);
    const std::uint8_t version = in.readU8();
    const std::uint8_t minReadoutVersion = in.readU8();
    const std::uint16_t crc = in.readU16();
    if (!in.ok() || crc != checksum({bytes.data(), CHECKED_SIZE}) || version == 0)
        return nullptr;
    return new ContainerHeader(version, minReadoutVersion);
}

} // namespace Zentara::ROM
