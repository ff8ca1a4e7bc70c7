#include "rom/rom_fixture.h"

#include <algorithm>
#include <cctype>

namespace Zentara::TestSupport {

Bytes hex(const std::string& text) {
    std::string digits;
    std::copy_if(text.begin(), text.end(), std::back_inserter(digits),
                 [](unsigned char c) { return std::isxdigit(c); });
    Bytes bytes;
    for (std::size_t i = 0; i + 1 < digits.size(); i += 2)
        bytes.push_back(static_cast<std::uint8_t>(std::stoi(digits.substr(i, 2), nullptr, 16)));
    return bytes;
}

Bytes pattern(std::size_t length, unsigned seed) {
    Bytes bytes(length);
    std::uint32_t state = seed * 2654435761u + 12345;
    for (auto& byte : bytes) {
        state = state * 1664525 + 1013904223;
        byte = static_cast<std::uint8_t>(state >> 24);
    }
    return bytes;
}

Model fill(Storage& storage, std::uint16_t count, std::size_t least, std::size_t more) {
    storage.container.initialize();
    storage.container.initializeRom();
    Model model;
    for (std::uint16_t uid = 1; uid <= count; ++uid) {
        const Change change{uid, false, pattern(least + more * uid, uid)};
        apply(storage.container, change);
        apply(model, change);
    }
    return model;
}

void RomTest::use(const Area& newArea) {
    area = newArea;
    container.reset();
    manager.reset();
    flash = std::make_unique<SimulatedFlash>(area.start + area.size);
    manager = std::make_unique<ROM::ChunkedMemoryManager>(flash.get(), area.start, area.size, area.chunkSize,
                                                          area.headerAtStart);
    container = std::make_unique<ROM::Container>(manager.get());
    written.clear();
}

std::uint32_t RomTest::writeBlock(const Bytes& bytes) {
    const ROM::MemoryBlockHeader* fresh = manager->allocate(static_cast<std::uint32_t>(bytes.size()));
    if (!fresh)
        return 0;
    manager->write(fresh, bytes);
    return BlockProbe(*fresh).getBlockOffset();
}

std::vector<std::uint32_t> RomTest::chain() {
    std::vector<std::uint32_t> addresses;
    for (const auto* at = manager->getNext(nullptr); at && addresses.size() < 100; at = manager->getNext(at))
        addresses.push_back(BlockProbe(*at).getBlockOffset());
    return addresses;
}

void RomTest::write(std::uint16_t uid, const Bytes& data, std::uint8_t flags) {
    container->set(uid, ROM::ContainerSectionType::Diagnostic, flags, data);
    written[uid] = data;
}

std::string RomTest::readable() {
    std::string text;
    for (const std::uint16_t uid : container->getSectionUIDs()) {
        const Bytes data = container->get(uid);
        const bool same = written.count(uid) != 0 && written[uid] == data;
        text += (text.empty() ? "" : " ") + std::to_string(uid) + ":" +
                (same ? std::to_string(data.size()) : "!");
    }
    return text;
}

void RomTest::put(std::uint32_t address, const Bytes& bytes) {
    ASSERT_LE(address + bytes.size(), flash->image.size());
    std::copy(bytes.begin(), bytes.end(), flash->image.begin() + address);
}

void RomTest::putHeader(std::uint32_t firstBlock, std::uint32_t chunkSize, std::uint32_t available,
                        std::uint8_t version, std::uint8_t minReadoutVersion) {
    put(area.headerAddress(),
        ROM::ChunkedMemoryManagementHeader(version, minReadoutVersion, chunkSize, available, firstBlock)
            .serialize());
}

void RomTest::putBlock(std::uint32_t address, std::uint32_t size, std::uint32_t next, const Bytes& content) {
    put(address, BlockProbe(size, next).serialize());
    put(address + ROM::MemoryBlockHeader::SIZE, content);
}

} // namespace Zentara::TestSupport
