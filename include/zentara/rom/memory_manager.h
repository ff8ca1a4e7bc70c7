#pragma once

#include <cstdint>
#include <vector>

#include <zentara/export.h>
#include <zentara/rom/memory_block_header.h>

namespace Zentara::ROM {

/// What a container needs from the memory under it: blocks in a chain. Blocks are lent: they stay the
/// manager's and are valid until erased, disposed of or replaced by an initialize().
/// Separate.
class ZENTARA_API MemoryManager {
public:
    virtual ~MemoryManager();

    /// Forgets what was loaded before and loads what the memory holds. Memory that was never formatted is no
    /// error: romInitialized() tells.
    virtual void initialize() = 0;
    /// Forgets everything that was loaded. The memory itself is not touched.
    virtual void dispose() = 0;
    /// The first block for null, otherwise the one after `block`; null at the end.
    virtual const MemoryBlockHeader* getNext(const MemoryBlockHeader* block) = 0;
    /// Takes the block out of the chain and returns the one that followed it, or null. The handle is dead
    /// afterwards.
    virtual const MemoryBlockHeader* erase(const MemoryBlockHeader* block) = 0;
    /// Stores the bytes as the whole content of the block.
    virtual void write(const MemoryBlockHeader* block, const std::vector<std::uint8_t>& bytes) = 0;
    /// The content of the block.
    virtual std::vector<std::uint8_t> read(const MemoryBlockHeader* block) = 0;
    /// Most content bytes that write() may be given for this block.
    virtual std::uint32_t getMaximumUsableSize(const MemoryBlockHeader* block) = 0;
    /// Reserves room for `size` content bytes: a block to be given to write(), or null when nothing fits.
    virtual const MemoryBlockHeader* allocate(std::uint32_t size) = 0;
    /// Whether formatted memory is loaded.
    virtual bool romInitialized() = 0;
    /// Formats the memory: an empty chain.
    virtual void initializeRom() = 0;
};

} // namespace Zentara::ROM
