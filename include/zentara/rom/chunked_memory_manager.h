#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <vector>

#include <zentara/export.h>
#include <zentara/rom/memory_manager.h>

namespace Zentara::ROM {

class Accessor;
class ChunkedMemoryManagementHeader;

/// One contiguous area of flash as a chain of blocks, each rounded up to whole chunks. A 17-byte management
/// header stands at one end of the area; the blocks follow it in ascending order when it is at the start, in
/// descending order when it is at the end. The first block that fits wins.
///
/// Every write is read back and compared; what this object remembers changes only after that. The blocks of
/// an area written by someone else are taken as they are: unreadable ones end the chain, and nothing outside
/// the area is read.
///
/// Life: initialize(), then any number of operations, then dispose(). initializeRom() may be called at any
/// time. Separate. An accessor's exceptions pass through.
///
///                initialize(): a header that can be read
///     Empty -----------------------------------------------> Loaded
///       ^     initializeRom(): a new one was written           |
///       |                                                      |
///       +------ dispose(); an initialize() without one --------+
///
/// Empty, romInitialized() is false and there are no blocks.
///
/// Lack of memory throws `std::bad_alloc` and is never taken for the end of the chain. What a change needs is
/// got before its first write, the room for what is read back among it; so table and chain stay as they were.
///
/// Some rules of the format give away bytes that are not free; writers who cannot afford it rehearse on a
/// copy:
/// - a block whose allocated size is an exact multiple of the chunk size is credited one chunk more than it
///   occupies;
/// - with the header at the end, the room beside it is measured with the lowest block's chunk count in place
///   of the first block's, in unsigned 32-bit arithmetic that wraps;
/// - the first block of an empty chain is placed without asking whether the area has room for it.
class ZENTARA_API ChunkedMemoryManager : public MemoryManager {
public:
    static constexpr std::uint8_t HEADER_VERSION = 1;
    static constexpr std::uint8_t HEADER_MIN_READOUT_VERSION = 1;

    /// \param accessor       not owned; must outlive this object.
    /// \param startAddress   absolute flash address of the area.
    /// \param size           bytes of the area, header included.
    /// \param chunkSize      granule to format with, in bytes, 1 or more. A formatted area keeps its own.
    /// \param headerAtStart  whether the header stands at the start of the area or in its last 17 bytes.
    ChunkedMemoryManager(Accessor* accessor, std::uint32_t startAddress, std::uint32_t size,
                         std::uint32_t chunkSize, bool headerAtStart);
    ChunkedMemoryManager(const ChunkedMemoryManager&) = delete;
    ChunkedMemoryManager& operator=(const ChunkedMemoryManager&) = delete;
    ~ChunkedMemoryManager() override;

    /// Loads header and chain. Without a readable header whose minimum readout version is below 2, whose
    /// chunk size is not 0 and whose size fits in the area, the memory counts as not initialized. The chain
    /// is cut, with a warning in the log, where a block cannot be parsed or was seen before, and where blocks
    /// overlap so much that together they claim the area more than 16 times. Where the accessor throws, or
    /// memory runs out, nothing is loaded.
    void initialize() override;
    void dispose() override;

    /// For null the block at the lowest address (header at start) or the highest (header at end). Null as
    /// well if the next block was not loaded.
    /// \throws ArgumentPluginException "invalid block" for a block that is not this manager's; so do all
    ///         operations below that take one.
    const MemoryBlockHeader* getNext(const MemoryBlockHeader* block) override;

    /// Unlinks the block; its bytes stay on flash. Discards a pending allocation.
    /// \throws InvalidOperationPluginException if the area has no version 1 header.
    /// \throws IOPluginException "Failed to write data to ROM"; nothing is forgotten then.
    const MemoryBlockHeader* erase(const MemoryBlockHeader* block) override;

    /// Writes header and content, then, for a block fresh from allocate(), the link to it.
    /// \throws InvalidOperationPluginException if the area has no version 1 header.
    /// \throws ArgumentPluginException if the content and its header exceed 32 bits.
    /// \throws IOPluginException "Failed to write data to ROM". A fresh block is then not in the chain; the
    ///         content of one that was is lost, as it is rewritten in place.
    void write(const MemoryBlockHeader* block, const std::vector<std::uint8_t>& bytes) override;

    /// The content of the block; empty if the block reaches past the end of the area.
    std::vector<std::uint8_t> read(const MemoryBlockHeader* block) override;

    /// (allocated size / chunk size + 1) x chunk size - 10, in whole numbers.
    std::uint32_t getMaximumUsableSize(const MemoryBlockHeader* block) override;

    /// Writes nothing yet. The block is pending until written, and gone at the next allocate(), erase(),
    /// dispose() or initialize().
    /// \throws InvalidOperationPluginException if the area has no version 1 header.
    const MemoryBlockHeader* allocate(std::uint32_t size) override;

    bool romInitialized() override;

    /// Writes a management header without blocks, then loads it. Contents are not wiped, only out of reach.
    /// \throws ArgumentPluginException if the chunk size is 0 or the area is smaller than the header.
    /// \throws IOPluginException "Failed to write data to ROM".
    void initializeRom() override;

    /// The management header, lent until the next change; null while the area is not initialized.
    virtual const ChunkedMemoryManagementHeader* getHeader();

    /// A copy of the table of blocks by absolute address. The blocks in it stay the manager's.
    virtual std::map<std::uint32_t, const MemoryBlockHeader*> getBlockMap();

private:
    struct Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace Zentara::ROM
