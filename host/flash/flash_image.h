#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <zentara/rom/accessor.h>
#include <zentara/rom/chunked_memory_manager.h>
#include <zentara/rom/container.h>

#include "host/hex_bytes.h"

namespace Zentara::Host {

/// Where a storage lies on a flash. Its end is at most 2^32.
struct FlashArea {
    std::uint32_t start = 0;
    std::uint32_t size = 0;
    std::uint32_t chunkSize = 256; ///< to format with
    bool headerAtStart = true;

    /// Of an area that has room for a header.
    [[nodiscard]] std::uint32_t headerAddress() const;
    [[nodiscard]] std::uint64_t end() const { return std::uint64_t{start} + size; }
    [[nodiscard]] bool holds(std::uint64_t address, std::uint64_t length) const {
        return address >= start && length <= size && address - start <= size - length;
    }
};

/// Bytes to be written to a place.
struct FlashWrite {
    std::uint32_t address;
    Bytes bytes;
};

/// One area of flash in memory, by absolute address. Keeps what is written to it, in order.
class FlashImage : public ROM::Accessor {
public:
    /// Erased flash.
    explicit FlashImage(const FlashArea& where);
    /// \param content  as many bytes as the area has.
    FlashImage(const FlashArea& where, Bytes content);

    /// Both throw IOPluginException for a byte outside the area.
    Bytes read(std::uint32_t address, std::uint32_t length) override;
    void write(std::uint32_t address, const Bytes& written) override;

    [[nodiscard]] const FlashArea& area() const { return place; }
    [[nodiscard]] const Bytes& bytes() const { return content; }
    [[nodiscard]] const std::vector<FlashWrite>& writes() const { return history; }

private:
    void check(const char* verb, std::uint32_t address, std::size_t length) const;

    FlashArea place;
    Bytes content;
    std::vector<FlashWrite> history;
};

/// What turns one image into another of the same area: the changed ranges in ascending order, but the
/// management header's last, so that what it leads to stands before.
[[nodiscard]] std::vector<FlashWrite> differences(const FlashImage& before, const FlashImage& after);

/// The library's storage over any flash.
struct Storage {
    Storage(ROM::Accessor& flash, const FlashArea& area)
        : manager(&flash, area.start, area.size, area.chunkSize, area.headerAtStart), container(&manager) {}

    ROM::ChunkedMemoryManager manager;
    ROM::Container container;
};

} // namespace Zentara::Host
