// Random operations on a storage beside a std::map that says what it must hold. Where the two part, the
// reason must be one of the rules by which the format gives away bytes that are not free.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <optional>

#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/rom/memory_block_header.h>

#include "support/rom_image.h"
#include "support/simulated_flash.h"

namespace Zentara::TestSupport {
namespace {

void require(bool holds) {
    if (!holds)
        std::abort();
}

/// Opens the operations of block headers that are the manager's alone.
struct BlockView : ROM::MemoryBlockHeader {
    explicit BlockView(const ROM::MemoryBlockHeader& block) : MemoryBlockHeader(block) {}
    using MemoryBlockHeader::getAllocatedSize;
};

class Input {
public:
    Input(const std::uint8_t* data, std::size_t size) : at(data), end(data + size) {}
    bool empty() const { return at == end; }
    std::uint8_t byte() { return empty() ? 0 : *at++; }

private:
    const std::uint8_t* at;
    const std::uint8_t* end;
};

constexpr std::uint32_t CHUNK_SIZES[] = {1, 16, 32, 64, 100, 256, 300, 5000};
constexpr int MOST_STEPS =
    32; ///< each is checked by loading all anew: more would cost runs rather than find more
constexpr std::uint32_t SECTION_OVERHEAD = 13 + 10; // section and block header

class Run {
public:
    explicit Run(Input& source)
        : input(source), area(readArea(source)), flash(area.size), storage(flash, area) {
        storage.container.initialize();
    }

    void all() {
        if (!format())
            return;
        for (int steps = 0; steps < MOST_STEPS && !input.empty(); ++steps)
            if (!step())
                return;
    }

private:
    static Area readArea(Input& source) {
        const std::uint8_t kind = source.byte();
        return {0, 64 + 16u * source.byte(), CHUNK_SIZES[kind >> 1 & 7], (kind & 1) != 0};
    }

    bool format() {
        try {
            storage.container.initializeRom();
            return true;
        } catch (const Plugin::IOPluginException&) {
            return false; // the area has no room for the first block
        }
    }

    /// False when a rule of the format has just cost a section: what follows is not foretold.
    bool step() {
        const std::uint8_t what = input.byte();
        const auto uid = static_cast<std::uint16_t>(1 + (what >> 3) % 12);
        switch (what & 7) {
        case 0:
            return erase(uid);
        case 1:
            return remount();
        case 2:
            storage.container.initializeRom(); // keeps what there is
            require(holds(storage.container, model));
            return true;
        case 3:
            return faulty({uid, false, readData()});
        default:
            return set(uid, readData());
        }
    }

    Bytes readData() {
        const std::uint8_t length = input.byte();
        const std::uint8_t seed = input.byte();
        Bytes data(length * (seed % 4 == 0 ? 3u : 1u));
        for (std::size_t i = 0; i < data.size(); ++i)
            data[i] = static_cast<std::uint8_t>(seed + i * 7);
        return data;
    }

    bool erase(std::uint16_t uid) {
        const bool known = model.count(uid) != 0;
        bool told = true;
        try {
            storage.container.erase(uid);
        } catch (const Plugin::ArgumentPluginException&) {
            told = false;
        }
        require(told == known);
        model.erase(uid);
        return remount();
    }

    bool set(std::uint16_t uid, const Bytes& data) {
        const bool mayHarm = harmIsForetold(uid, data);
        const bool gaveUpOld = movesAway(uid, data);
        const bool fits = mayHarm || roomIsForetold(uid, data);
        try {
            storage.container.set(uid, ROM::ContainerSectionType::Configuration, 1, data);
            model[uid] = data;
            require(fits);
        } catch (const Plugin::IOPluginException&) {
            require(!fits || mayHarm);
            if (gaveUpOld)
                model.erase(uid);
        }
        require(holds(storage.container, model));
        storage.container.initialize();
        const bool unharmed = holds(storage.container, model);
        require(unharmed || mayHarm);
        return unharmed && !blocksOverlap();
    }

    /// One write goes wrong. Memory keeps what was verified; flash holds for each section an old or the new
    /// version.
    bool faulty(const Change& change) {
        if (harmIsForetold(change.uid, change.data))
            return true;
        const std::uint8_t which = input.byte();
        flash.failWrite(which & 3, static_cast<FlashFault>(which >> 2 & 3));
        Model after = model;
        after[change.uid] = change.data;
        try {
            storage.container.set(change.uid, ROM::ContainerSectionType::Configuration, 1, change.data);
        } catch (const Plugin::IOPluginException&) {
        }
        flash.heal();
        for (const auto& [uid, data] : model)
            require(uid == change.uid || storage.container.get(uid) == data);
        storage.container.initialize();
        for (const std::uint16_t uid : storage.container.getSectionUIDs()) {
            const Bytes data = storage.container.get(uid);
            require((model.count(uid) != 0 && model[uid] == data) || after[uid] == data);
        }
        return false;
    }

    bool remount() {
        storage.container.initialize();
        require(holds(storage.container, model));
        return true;
    }

    // What the rules of allocation say, worked out anew from the table of blocks.

    std::uint32_t chunks(std::uint32_t bytes) const { return (bytes + area.chunkSize - 1) / area.chunkSize; }

    std::uint32_t allocatedSize(std::uint16_t uid) const {
        return static_cast<std::uint32_t>(model.at(uid).size()) + SECTION_OVERHEAD;
    }

    bool isExactMultiple(std::uint16_t uid) const { return allocatedSize(uid) % area.chunkSize == 0; }

    bool movesAway(std::uint16_t uid, const Bytes& data) const {
        if (model.count(uid) == 0)
            return false;
        const std::uint32_t credited = allocatedSize(uid) / area.chunkSize + 1;
        return data.size() + SECTION_OVERHEAD > std::size_t{credited} * area.chunkSize;
    }

    /// Growing an exact multiple in place, or a header at the end with a lowest block of other length than
    /// the first.
    bool harmIsForetold(std::uint16_t uid, const Bytes& data) {
        const bool exists = model.count(uid) != 0;
        const bool moves = movesAway(uid, data);
        if (exists && !moves)
            return isExactMultiple(uid) && data.size() + SECTION_OVERHEAD > allocatedSize(uid);
        return !area.headerAtStart && !lowestBlockLooksLikeTheFirst();
    }

    bool lowestBlockLooksLikeTheFirst() {
        for (const auto& [address, block] : storage.manager.getBlockMap())
            if (chunks(BlockView(*block).getAllocatedSize()) != 1 || area.chunkSize < 14)
                return false;
        return true;
    }

    /// Harm may be done without a trace at first: bytes of a neighbour overwritten with what they were.
    bool blocksOverlap() {
        std::uint32_t free = 0;
        for (const auto& [address, block] : storage.manager.getBlockMap()) {
            if (address < free)
                return true;
            free = address + BlockView(*block).getAllocatedSize();
        }
        return false;
    }

    bool roomIsForetold(std::uint16_t uid, const Bytes& data) {
        if (model.count(uid) != 0 && !movesAway(uid, data))
            return true;
        const std::uint32_t room =
            chunks(static_cast<std::uint32_t>(data.size()) + SECTION_OVERHEAD) * area.chunkSize;
        auto blocks = storage.manager.getBlockMap();
        if (model.count(uid) != 0)
            removeBlockOf(uid, blocks);
        std::uint32_t free = area.headerAtStart ? 17 : 0;
        for (const auto& [address, block] : blocks) {
            if (address >= free && address - free >= room)
                return true;
            free = address + chunks(BlockView(*block).getAllocatedSize()) * area.chunkSize;
        }
        const std::uint32_t end = area.headerAtStart ? area.size : area.size - 17;
        return end >= free && end - free >= room;
    }

    /// The block that holds the section, found by what stands in it.
    void removeBlockOf(std::uint16_t uid, std::map<std::uint32_t, const ROM::MemoryBlockHeader*>& blocks) {
        for (auto at = blocks.begin(); at != blocks.end(); ++at) {
            const Bytes content = storage.manager.read(at->second);
            if (content.size() >= 13 && content[7] == uid >> 8 && content[8] == (uid & 0xFF)) {
                blocks.erase(at);
                return;
            }
        }
    }

    Input& input;
    const Area area;
    SimulatedFlash flash;
    Storage storage;
    Model model;
};

} // namespace
} // namespace Zentara::TestSupport

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Zentara::TestSupport::Input input(data, size);
    Zentara::TestSupport::Run(input).all();
    return 0;
}
