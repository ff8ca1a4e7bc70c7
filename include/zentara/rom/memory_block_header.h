#pragma once

#include <cstdint>
#include <vector>

#include <zentara/export.h>

namespace Zentara::ROM {

/// The ten bytes in front of every allocated block of flash, through which the blocks form a chain.
///
///     offset  size  field, big-endian
///     0       4     allocated size: bytes of the block, this header included; 10 or more
///     4       4     next block offset: absolute address of the next header in the chain, 0 at its end
///     8       2     CRC-16 of bytes 0 to 7
///
/// In memory it also knows its own address. The memory manager owns and changes these; to everyone else a
/// block is an opaque handle.
class ZENTARA_API MemoryBlockHeader {
public:
    static constexpr std::uint32_t SIZE = 4 + 4 + 2;

    MemoryBlockHeader(std::uint32_t allocatedSize, std::uint32_t nextBlockOffset);
    MemoryBlockHeader(const MemoryBlockHeader& other);
    MemoryBlockHeader& operator=(const MemoryBlockHeader& other);
    virtual ~MemoryBlockHeader();

protected:
    friend class ChunkedMemoryManager;

    /// A new header with block offset 0, owned by the caller; null for fewer than ten bytes, a wrong CRC or
    /// an allocated size below ten, and for lack of memory. Surplus bytes are ignored.
    static MemoryBlockHeader* deserialize(const std::vector<std::uint8_t>& bytes);

    virtual std::vector<std::uint8_t> serialize() const;
    virtual std::uint32_t getAllocatedSize() const;
    virtual std::uint32_t getNextBlockOffset() const;
    /// Absolute flash address at which this header stands. Never stored.
    virtual std::uint32_t getBlockOffset() const;
    virtual void setAllocatedSize(std::uint32_t size);
    virtual void setNextBlockOffset(std::uint32_t address);
    virtual void setBlockOffset(std::uint32_t address);

private:
    std::uint32_t allocatedSize;   ///< bytes, this header included, not rounded to chunks
    std::uint32_t nextBlockOffset; ///< absolute, in spite of the name; 0 at the end of the chain
    std::uint32_t blockOffset = 0; ///< absolute; where this header stands
};

} // namespace Zentara::ROM
