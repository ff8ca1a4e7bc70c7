#include <zentara/rom/chunked_memory_management_header.h>

#include "rom/big_endian_reader.h"
#include "rom/big_endian_writer.h"
#include "rom/checksum.h"

namespace Zentara::ROM {

namespace {
constexpr std::size_t CHECKED_SIZE = ChunkedMemoryManagementHeader::SIZE - 2; // all but the CRC itself
}

ChunkedMemoryManagementHeader::ChunkedMemoryManagementHeader(std::uint8_t formatVersion,
                                                             std::uint8_t readoutVersion, std::uint32_t chunk,
                                                             std::uint32_t available,
                                                             std::uint32_t firstBlock)
    : version(formatVersion), minReadoutVersion(readoutVersion), chunkSize(chunk),
      availableMemorySize(available), firstBlockAddress(firstBlock) {}
ChunkedMemoryManagementHeader::ChunkedMemoryManagementHeader(const ChunkedMemoryManagementHeader& other) =
    default;
ChunkedMemoryManagementHeader&
ChunkedMemoryManagementHeader::operator=(const ChunkedMemoryManagementHeader& other) = default;
ChunkedMemoryManagementHeader::~ChunkedMemoryManagementHeader() = default;

std::uint8_t ChunkedMemoryManagementHeader::getVersion() const { return version; }
std::uint8_t ChunkedMemoryManagementHeader::getMinReadoutVersion() const { return minReadoutVersion; }
std::uint32_t ChunkedMemoryManagementHeader::getAvailableMemorySize() const { return availableMemorySize; }
std::uint32_t ChunkedMemoryManagementHeader::getChunkSize() const { return chunkSize; }
std::uint32_t ChunkedMemoryManagementHeader::getFirstBlockAddress() const { return firstBlockAddress; }

std::vector<std::uint8_t> ChunkedMemoryManagementHeader::serialize() const {
    BigEndianWriter out(SIZE);
    out.writeU8(STRATEGY);
    out.writeU8(version);
    out.writeU8(minReadoutVersion);
    out.writeU32(availableMemorySize);
    out.writeU32(chunkSize);
    out.writeU32(firstBlockAddress);
    out.writeU16(checksum(out.written()));
    return out.take();
}

ChunkedMemoryManagementHeader*
ChunkedMemoryManagementHeader::deserialize(const std::vector<std::uint8_t>& bytes) {
    BigEndianReader in(bytes);
    const std::uint8_t strategy = in.readU8();
    const std::uint8_t version = in.readU8();
    const std::uint8_t minReadoutVersion = in.readU8();
    const std::uint32_t available = in.readU32();
    const std::uint32_t chunkSize = in.readU32();
    const std::uint32_t firstBlock = in.readU32();
    const std::uint16_t crc = in.readU16();
    // The checksum before the meaning: erased flash has neither strategy nor CRC. What the numbers say is the manager's
    // to judge.
    if (!in.ok() || strategy != STRATEGY || crc != checksum({bytes.data(), CHECKED_SIZE}))
        return nullptr;
    return new ChunkedMemoryManagementHeader(version, minReadoutVersion, chunkSize, available, firstBlock);
}

} // namespace Zentara::ROM
