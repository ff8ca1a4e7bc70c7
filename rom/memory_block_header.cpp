#include <zentara/rom/memory_block_header.h>

#include <new>

#include "rom/big_endian_reader.h"
#include "rom/big_endian_writer.h"
#include "rom/block_header_fields.h"
#include "rom/checksum.h"

namespace Zentara::ROM {

namespace {
constexpr std::size_t CHECKED_SIZE = MemoryBlockHeader::SIZE - 2; // all but the CRC itself
}

MemoryBlockHeader::MemoryBlockHeader(std::uint32_t size, std::uint32_t next)
    : allocatedSize(size), nextBlockOffset(next) {}
MemoryBlockHeader::MemoryBlockHeader(const MemoryBlockHeader& other) = default;
MemoryBlockHeader& MemoryBlockHeader::operator=(const MemoryBlockHeader& other) = default;
MemoryBlockHeader::~MemoryBlockHeader() = default;

// Apart from the class, so that a reader can tell a damaged header from a lack of memory, which must not end a chain.
std::optional<BlockHeaderFields> readBlockHeader(std::span<const std::uint8_t> bytes) noexcept {
    BigEndianReader in(bytes);
    const std::uint32_t allocatedSize = in.readU32();
    const std::uint32_t nextBlockOffset = in.readU32();
    const std::uint16_t crc = in.readU16();
    if (!in.ok() || crc != checksum(bytes.first(CHECKED_SIZE)) || allocatedSize < MemoryBlockHeader::SIZE)
        return std::nullopt;
    return BlockHeaderFields{allocatedSize, nextBlockOffset};
}

MemoryBlockHeader* MemoryBlockHeader::deserialize(const std::vector<std::uint8_t>& bytes) {
    const auto fields = readBlockHeader(bytes);
    if (!fields)
        return nullptr;
    return new (std::nothrow) MemoryBlockHeader(fields->allocatedSize, fields->nextBlockOffset);
}

std::vector<std::uint8_t> MemoryBlockHeader::serialize() const {
    BigEndianWriter out(SIZE);
    out.writeU32(allocatedSize);
    out.writeU32(nextBlockOffset);
    out.writeU16(checksum(out.written()));
    return out.take();
}

std::uint32_t MemoryBlockHeader::getAllocatedSize() const { return allocatedSize; }
std::uint32_t MemoryBlockHeader::getNextBlockOffset() const { return nextBlockOffset; }
std::uint32_t MemoryBlockHeader::getBlockOffset() const { return blockOffset; }
void MemoryBlockHeader::setAllocatedSize(std::uint32_t size) { allocatedSize = size; }
void MemoryBlockHeader::setNextBlockOffset(std::uint32_t address) { nextBlockOffset = address; }
void MemoryBlockHeader::setBlockOffset(std::uint32_t address) { blockOffset = address; }

} // namespace Zentara::ROM
