#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include <zentara/rom/chunked_memory_manager.h>
#include <zentara/rom/container.h>
#include <zentara/rom/memory_block_header.h>

#include "support/failure.h"
#include "support/rom_image.h"
#include "support/simulated_flash.h"

namespace Zentara::TestSupport {

// What most of these tests name.
using Plugin::ArgumentPluginException;
using Plugin::InvalidOperationPluginException;
using Plugin::IOPluginException;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// Bytes from their hexadecimal text; blanks do not count.
Bytes hex(const std::string& text);

/// `length` bytes that differ from seed to seed.
Bytes pattern(std::size_t length, unsigned seed = 1);

/// Formats the storage and gives it sections 1 to `count`, of `least` bytes and `more` for each number.
Model fill(Storage& storage, std::uint16_t count, std::size_t least, std::size_t more);

/// Opens the operations of block headers that are the manager's alone.
struct BlockProbe : ROM::MemoryBlockHeader {
    explicit BlockProbe(const ROM::MemoryBlockHeader& block) : MemoryBlockHeader(block) {}
    BlockProbe(std::uint32_t size, std::uint32_t next) : MemoryBlockHeader(size, next) {}
    using MemoryBlockHeader::deserialize;
    using MemoryBlockHeader::getAllocatedSize;
    using MemoryBlockHeader::getBlockOffset;
    using MemoryBlockHeader::serialize;
};

/// A storage on simulated flash, and the verbs of its tests.
class RomTest : public testing::Test {
protected:
    RomTest() { use(Area{}); }

    /// Starts over on erased flash.
    void use(const Area& newArea);

    // On the manager alone
    void formatMemory() { manager->initializeRom(); }
    void mountMemory() { manager->initialize(); }
    std::uint32_t writeBlock(const Bytes& bytes); ///< allocates and writes; returns the address
    std::vector<std::uint32_t> chain();           ///< addresses as getNext() leads
    const ROM::MemoryBlockHeader* block(std::uint32_t address) { return manager->getBlockMap().at(address); }
    std::uint32_t allocatedSize(std::uint32_t address) {
        return BlockProbe(*block(address)).getAllocatedSize();
    }

    // On the container
    void format() { container->initialize(), container->initializeRom(); }
    void mount() { container->initialize(); }
    void write(std::uint16_t uid, const Bytes& data, std::uint8_t flags = 1);
    /// "uid:length" of each section whose content is what write() gave it, else "uid:!".
    std::string readable();

    // On the flash
    void put(std::uint32_t address, const Bytes& bytes);
    void putHeader(std::uint32_t firstBlock, std::uint32_t chunkSize, std::uint32_t available,
                   std::uint8_t version = 1, std::uint8_t minReadoutVersion = 1);
    void putBlock(std::uint32_t address, std::uint32_t size, std::uint32_t next, const Bytes& content = {});

    Area area;
    std::unique_ptr<SimulatedFlash> flash;
    std::unique_ptr<ROM::ChunkedMemoryManager> manager;
    std::unique_ptr<ROM::Container> container;
    std::map<std::uint16_t, Bytes> written; ///< what write() stored last
};

} // namespace Zentara::TestSupport
