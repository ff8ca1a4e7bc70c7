#include <zentara/rom/chunked_memory_manager.h>

#include <limits>
#include <new>
#include <optional>
#include <set>
#include <utility>

#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/rom/accessor.h>
#include <zentara/rom/chunked_memory_management_header.h>
#include <zentara/utils/format.h>

#include "rom/block_header_fields.h"
#include "utils/log_warning.h"

namespace Zentara::ROM {

namespace {

using Header = ChunkedMemoryManagementHeader;
using Block = MemoryBlockHeader;
using Bytes = std::vector<std::uint8_t>;

constexpr std::uint32_t MAX_SIZE = std::numeric_limits<std::uint32_t>::max();
constexpr std::uint8_t UNREADABLE_VERSION = 2; ///< headers that ask for this or more are not for this reader
/// Blocks may overlap, but where they claim the area more often than this, reading them all would cost the
/// square of its size in time and memory.
constexpr std::uint64_t MOST_CLAIMS = 16;

std::uint64_t divideUp(std::uint64_t value, std::uint64_t unit) { return (value + unit - 1) / unit; }

} // namespace

struct ChunkedMemoryManager::Impl {
    /// Where a new block goes, and the block that it will point at.
    struct Place {
        std::uint32_t address;
        std::uint32_t next;
    };

    using Blocks = std::map<std::uint32_t, std::unique_ptr<Block>>;
    using Handles = std::set<const Block*>;

    /// What the tables need to take a further block, got before anything is written for it.
    struct Entry {
        Blocks::node_type block;
        Handles::node_type handle;
    };

    Accessor* accessor;                      ///< not owned
    const std::uint32_t start;               ///< the area's first address
    const std::uint32_t size;                ///< the area's bytes, header included
    const std::uint32_t configuredChunkSize; ///< to format with; the header's counts otherwise
    const bool headerAtStart;

    std::unique_ptr<Header> header; ///< null while not initialized
    Blocks blocks;                  ///< as verified on flash, by address
    Handles known;                  ///< the values of `blocks`
    std::unique_ptr<Block> pending; ///< placed, but not written yet
    /// No longer known, but kept: a handle to one must never come to mean a block made later.
    std::vector<std::unique_ptr<Block>> overwritten;

    Impl(Accessor* flash, std::uint32_t areaStart, std::uint32_t areaSize, std::uint32_t chunkSize,
         bool atStart)
        : accessor(flash), start(areaStart), size(areaSize), configuredChunkSize(chunkSize),
          headerAtStart(atStart) {}

    // Flash

    Accessor& flash() const;
    void writeAndCheck(std::uint32_t address, const Bytes& bytes) const;
    Bytes readBack(std::uint32_t address, Bytes room) const;
    bool inArea(std::uint32_t address, std::uint64_t length) const;
    std::uint32_t headerAddress() const { return headerAtStart ? start : start + size - Header::SIZE; }
    void writeHeader(std::uint32_t firstBlock);
    void writeLink(Block& block, std::uint32_t next) const;

    // Loading

    void clear();
    void load();
    void loadChain();
    /// Null where no block header stands. Lack of memory is no end of a chain: it throws.
    std::unique_ptr<Block> loadBlock(std::uint32_t address) const;

    // Blocks

    void check(const Block* block) const;
    void checkVersion(const char* message) const;
    Block* find(std::uint32_t address) const;
    std::uint16_t chunksOf(const Block& block) const;
    void link(std::uint32_t address);
    void unlink(const Block& block);
    Entry entryForPending();
    void adoptPending(std::uint32_t allocatedSize, Entry entry) noexcept;

    // Placing a new block

    std::optional<Place> place(std::uint32_t room) const;
    std::optional<Place> placeBesideHeader(std::uint32_t room) const;
    std::optional<Place> placeAscending(std::uint32_t room) const;
    std::optional<Place> placeDescending(std::uint32_t room) const;
};

Accessor& ChunkedMemoryManager::Impl::flash() const {
    if (!accessor)
        throw Plugin::InvalidOperationPluginException("Accessor is not defined");
    return *accessor;
}

void ChunkedMemoryManager::Impl::writeAndCheck(std::uint32_t address, const Bytes& bytes) const {
    Bytes room(bytes.size());
    flash().write(address, bytes);
    if (readBack(address, std::move(room)) != bytes)
        throw Plugin::IOPluginException("Failed to write data to ROM");
}

/// What was written stands there already, so lack of memory must not leave the object behind the flash: the
/// room that was set aside before the write is given back, and the bytes are asked for again.
Bytes ChunkedMemoryManager::Impl::readBack(std::uint32_t address, Bytes room) const {
    const auto length = static_cast<std::uint32_t>(room.size());
    try {
        return flash().read(address, length);
    } catch (const std::bad_alloc&) {
        room = Bytes();
        return flash().read(address, length);
    }
}

bool ChunkedMemoryManager::Impl::inArea(std::uint32_t address, std::uint64_t length) const {
    return address >= start && address - start <= size && length <= size - (address - start);
}

/// Rewritten where it stands: the format has no second copy, so the chain hangs on this one write.
void ChunkedMemoryManager::Impl::writeHeader(std::uint32_t firstBlock) {
    auto changed =
        std::make_unique<Header>(HEADER_VERSION, HEADER_MIN_READOUT_VERSION, header->getChunkSize(),
                                 header->getAvailableMemorySize(), firstBlock);
    writeAndCheck(headerAddress(), changed->serialize());
    header = std::move(changed);
}

/// The object follows the flash, never the other way round: after a write that failed it still says what is linked.
void ChunkedMemoryManager::Impl::writeLink(Block& block, std::uint32_t next) const {
    Block changed(block);
    changed.setNextBlockOffset(next);
    writeAndCheck(block.getBlockOffset(), changed.serialize());
    block = changed;
}

void ChunkedMemoryManager::Impl::clear() {
    header.reset();
    pending.reset();
    known.clear();
    blocks.clear();
    overwritten.clear();
}

void ChunkedMemoryManager::Impl::load() {
    clear();
    if (size < Header::SIZE)
        return;
    // A header that manages more than the area has would lead the reader outside it.
    std::unique_ptr<Header> loaded(Header::deserialize(flash().read(headerAddress(), Header::SIZE)));
    if (!loaded || loaded->getMinReadoutVersion() >= UNREADABLE_VERSION || loaded->getChunkSize() == 0 ||
        loaded->getAvailableMemorySize() > size)
        return;
    header = std::move(loaded);
    try {
        loadChain();
    } catch (...) {
        clear(); // writing beside half a chain would overwrite the other half
        throw;
    }
}

void ChunkedMemoryManager::Impl::loadChain() {
    std::uint64_t claimed = 0;
    for (std::uint32_t address = header->getFirstBlockAddress(); address != 0;) {
        std::unique_ptr<Block> block = loadBlock(address);
        if (!block) {
            Utils::logWarning(Utils::LogArea_ROM, "couldn't parse memory block header");
            return;
        }
        if (blocks.count(address) != 0) {
            Utils::logWarning(Utils::LogArea_ROM, "cyclic references detected");
            return;
        }
        // A block that reaches outside counts as none: read() gives nothing of it, so it costs nothing.
        if (inArea(address, block->getAllocatedSize()))
            claimed += block->getAllocatedSize();
        if (claimed > MOST_CLAIMS * size) {
            Utils::logWarning(Utils::LogArea_ROM, "too many overlapping blocks");
            return;
        }
        const std::uint32_t next = block->getNextBlockOffset();
        known.insert(block.get());
        blocks.emplace(address, std::move(block));
        address = next;
    }
}

std::unique_ptr<Block> ChunkedMemoryManager::Impl::loadBlock(std::uint32_t address) const {
    if (!inArea(address, Block::SIZE))
        return nullptr;
    const auto fields = readBlockHeader(flash().read(address, Block::SIZE));
    if (!fields)
        return nullptr;
    auto block = std::make_unique<Block>(fields->allocatedSize, fields->nextBlockOffset);
    block->setBlockOffset(address);
    return block;
}

void ChunkedMemoryManager::Impl::check(const Block* block) const {
    if (known.count(block) == 0)
        throw Plugin::ArgumentPluginException("invalid block");
}

void ChunkedMemoryManager::Impl::checkVersion(const char* message) const {
    if (!header || header->getVersion() != HEADER_VERSION)
        throw Plugin::InvalidOperationPluginException(Utils::Format(message) %
                                                      static_cast<int>(HEADER_VERSION));
}

Block* ChunkedMemoryManager::Impl::find(std::uint32_t address) const {
    const auto found = blocks.find(address);
    return found == blocks.end() ? nullptr : found->second.get();
}

/// Counted in 16 bits: a block of 65,536 chunks or more counts as what is left of them.
std::uint16_t ChunkedMemoryManager::Impl::chunksOf(const Block& block) const {
    return static_cast<std::uint16_t>(divideUp(block.getAllocatedSize(), header->getChunkSize()));
}

/// Makes the chain reach a block that is not in the table yet. What comes after it, its own header says
/// already.
void ChunkedMemoryManager::Impl::link(std::uint32_t address) {
    Block* nearer = nullptr; // the neighbour on the header's side
    if (headerAtStart) {
        const auto above = blocks.lower_bound(address);
        nearer = above == blocks.begin() ? nullptr : std::prev(above)->second.get();
    } else {
        const auto above = blocks.upper_bound(address);
        nearer = above == blocks.end() ? nullptr : above->second.get();
    }
    if (nearer)
        writeLink(*nearer, address);
    else
        writeHeader(address);
}

/// Leads every link to the block past it, which is none for a block that links to itself. There is one such
/// link, save where the chain runs back into itself.
void ChunkedMemoryManager::Impl::unlink(const Block& block) {
    const std::uint32_t address = block.getBlockOffset();
    const std::uint32_t next = block.getNextBlockOffset() == address ? 0 : block.getNextBlockOffset();
    if (header->getFirstBlockAddress() == address)
        writeHeader(next);
    for (const auto& [place, other] : blocks)
        if (place != address && other->getNextBlockOffset() == address)
            writeLink(*other, next);
}

ChunkedMemoryManager::Impl::Entry ChunkedMemoryManager::Impl::entryForPending() {
    Blocks block;
    block.emplace(pending->getBlockOffset(), nullptr);
    Handles handle{pending.get()};
    overwritten.reserve(overwritten.size() + blocks.count(pending->getBlockOffset()));
    return {block.extract(block.begin()), handle.extract(handle.begin())};
}

void ChunkedMemoryManager::Impl::adoptPending(std::uint32_t allocatedSize, Entry entry) noexcept {
    pending->setAllocatedSize(allocatedSize);
    known.insert(std::move(entry.handle));
    std::unique_ptr<Block>& place = blocks.insert(std::move(entry.block)).position->second;
    std::swap(place, pending);
    if (pending) { // another block started there
        known.erase(pending.get());
        overwritten.push_back(std::move(pending));
    }
}

std::optional<ChunkedMemoryManager::Impl::Place> ChunkedMemoryManager::Impl::place(std::uint32_t room) const {
    if (blocks.empty()) {
        // Whether the area has room for its first block is not asked.
        if (headerAtStart)
            return Place{start + Header::SIZE, 0};
        return Place{start + header->getAvailableMemorySize() - Header::SIZE - room, 0};
    }
    if (const auto beside = placeBesideHeader(room))
        return beside;
    return headerAtStart ? placeAscending(room) : placeDescending(room);
}

/// Measured in unsigned 32-bit arithmetic that wraps, so that blocks in unexpected places leave much room
/// rather than none.
std::optional<ChunkedMemoryManager::Impl::Place>
ChunkedMemoryManager::Impl::placeBesideHeader(std::uint32_t room) const {
    const std::uint32_t first = header->getFirstBlockAddress();
    if (headerAtStart) {
        const std::uint32_t begin = start + Header::SIZE;
        return first - begin >= room ? std::optional(Place{begin, first}) : std::nullopt;
    }
    const std::uint32_t end = start + header->getAvailableMemorySize() - Header::SIZE;
    // The lowest block's length, not the first one's, stands for the block next to the header.
    const std::uint32_t occupied = chunksOf(*blocks.begin()->second) * header->getChunkSize();
    return end - (first + occupied) >= room ? std::optional(Place{end - room, first}) : std::nullopt;
}

/// Gaps are held in 64 bits; one that ends before it begins holds nothing.
std::optional<ChunkedMemoryManager::Impl::Place>
ChunkedMemoryManager::Impl::placeAscending(std::uint32_t room) const {
    for (auto at = blocks.begin(); at != blocks.end(); ++at) {
        const Block& block = *at->second;
        const std::uint64_t begin = at->first + std::uint64_t{chunksOf(block)} * header->getChunkSize();
        const auto above = std::next(at);
        // After the last block the area's size stands for the address of its end, wherever the area starts.
        const std::uint64_t end = above == blocks.end() ? header->getAvailableMemorySize() : above->first;
        if (begin + room <= end)
            return Place{static_cast<std::uint32_t>(begin), block.getNextBlockOffset()};
    }
    return std::nullopt;
}

std::optional<ChunkedMemoryManager::Impl::Place>
ChunkedMemoryManager::Impl::placeDescending(std::uint32_t room) const {
    for (auto at = blocks.rbegin(); at != blocks.rend(); ++at) {
        const auto below = std::next(at);
        const std::uint64_t begin =
            below == blocks.rend()
                ? start
                : below->first + std::uint64_t{chunksOf(*below->second)} * header->getChunkSize();
        if (begin + room <= at->first)
            return Place{at->first - room, at->second->getNextBlockOffset()};
    }
    return std::nullopt;
}

ChunkedMemoryManager::ChunkedMemoryManager(Accessor* accessor, std::uint32_t startAddress, std::uint32_t size,
                                           std::uint32_t chunkSize, bool headerAtStart)
    : impl(std::make_unique<Impl>(accessor, startAddress, size, chunkSize, headerAtStart)) {}
ChunkedMemoryManager::~ChunkedMemoryManager() = default;

void ChunkedMemoryManager::initialize() { impl->load(); }
void ChunkedMemoryManager::dispose() { impl->clear(); }
bool ChunkedMemoryManager::romInitialized() { return impl->header != nullptr; }
const ChunkedMemoryManagementHeader* ChunkedMemoryManager::getHeader() { return impl->header.get(); }

std::map<std::uint32_t, const MemoryBlockHeader*> ChunkedMemoryManager::getBlockMap() {
    std::map<std::uint32_t, const MemoryBlockHeader*> copy;
    for (const auto& [address, block] : impl->blocks)
        copy.emplace_hint(copy.end(), address, block.get());
    return copy;
}

const MemoryBlockHeader* ChunkedMemoryManager::getNext(const MemoryBlockHeader* block) {
    if (impl->blocks.empty())
        return nullptr;
    if (!block)
        return (impl->headerAtStart ? impl->blocks.begin()->second : impl->blocks.rbegin()->second).get();
    impl->check(block);
    return block->getNextBlockOffset() == 0 ? nullptr : impl->find(block->getNextBlockOffset());
}

std::vector<std::uint8_t> ChunkedMemoryManager::read(const MemoryBlockHeader* block) {
    impl->check(block);
    if (!impl->inArea(block->getBlockOffset(), block->getAllocatedSize()))
        return {};
    return impl->flash().read(block->getBlockOffset() + Block::SIZE, block->getAllocatedSize() - Block::SIZE);
}

std::uint32_t ChunkedMemoryManager::getMaximumUsableSize(const MemoryBlockHeader* block) {
    impl->check(block);
    const std::uint32_t chunkSize = impl->header->getChunkSize();
    // An exact multiple of the chunk size is credited one chunk more than it occupies.
    return (block->getAllocatedSize() / chunkSize + 1) * chunkSize - Block::SIZE;
}

const MemoryBlockHeader* ChunkedMemoryManager::allocate(std::uint32_t size) {
    impl->checkVersion("Cannot allocate section - Rom version is not %");
    const std::uint64_t total = std::uint64_t{size} + Block::SIZE;
    const std::uint64_t room = divideUp(total, impl->header->getChunkSize()) * impl->header->getChunkSize();
    const auto place = room > MAX_SIZE ? std::nullopt : impl->place(static_cast<std::uint32_t>(room));
    // Where nothing fits, an earlier allocation that was not written is gone all the same.
    std::unique_ptr<Block> fresh;
    if (place) {
        fresh = std::make_unique<Block>(static_cast<std::uint32_t>(total), place->next);
        fresh->setBlockOffset(place->address);
    }
    impl->pending = std::move(fresh);
    return impl->pending.get();
}

void ChunkedMemoryManager::write(const MemoryBlockHeader* block, const std::vector<std::uint8_t>& bytes) {
    const bool fresh = block && block == impl->pending.get();
    if (!fresh)
        impl->check(block);
    impl->checkVersion("Cannot write section - Rom version is not %");
    if (bytes.size() > MAX_SIZE - Block::SIZE)
        throw Plugin::ArgumentPluginException("Cannot write section - content is too long");
    Block written(*block);
    written.setAllocatedSize(static_cast<std::uint32_t>(bytes.size()) + Block::SIZE);
    Bytes stored = written.serialize();
    stored.insert(stored.end(), bytes.begin(), bytes.end());
    Impl::Entry entry = fresh ? impl->entryForPending() : Impl::Entry{};
    // First the block, then the link to it: cut off in between, the chain is as it was.
    impl->writeAndCheck(written.getBlockOffset(), stored);
    if (fresh) {
        impl->link(written.getBlockOffset());
        impl->adoptPending(written.getAllocatedSize(), std::move(entry));
    } else {
        *impl->find(written.getBlockOffset()) = written;
    }
}

const MemoryBlockHeader* ChunkedMemoryManager::erase(const MemoryBlockHeader* block) {
    impl->check(block);
    impl->checkVersion("Cannot erase section - Rom version is not %");
    impl->pending.reset();
    impl->unlink(*block); // the bytes stay: erasing is a matter of links
    const std::uint32_t next = block->getNextBlockOffset();
    impl->known.erase(block);
    impl->blocks.erase(block->getBlockOffset());
    return next == 0 ? nullptr : impl->find(next);
}

void ChunkedMemoryManager::initializeRom() {
    if (impl->configuredChunkSize == 0)
        throw Plugin::ArgumentPluginException("Cannot format - chunk size is 0");
    if (impl->size < Header::SIZE)
        throw Plugin::ArgumentPluginException(
            Utils::Format("Cannot format - an area of % bytes has no room for a header") % impl->size);
    auto formatted = std::make_unique<Header>(HEADER_VERSION, HEADER_MIN_READOUT_VERSION,
                                              impl->configuredChunkSize, impl->size, 0);
    impl->writeAndCheck(impl->headerAddress(), formatted->serialize());
    try {
        impl->load();
    } catch (const std::bad_alloc&) {
        impl->header = std::move(formatted); // it was read back, and no block hangs on it
    }
}

} // namespace Zentara::ROM
