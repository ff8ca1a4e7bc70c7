#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include <zentara/rom/accessor.h>
#include <zentara/rom/chunked_memory_management_header.h>
#include <zentara/rom/chunked_memory_manager.h>
#include <zentara/rom/container.h>

namespace Zentara::TestSupport {

using Bytes = std::vector<std::uint8_t>;

/// What a storage is to hold: each section's data by uid.
using Model = std::map<std::uint16_t, Bytes>;

/// Where a storage lies on the flash.
struct Area {
    std::uint32_t start = 0;
    std::uint32_t size = 4096;
    std::uint32_t chunkSize = 256;
    bool headerAtStart = true;

    std::uint32_t headerAddress() const {
        return headerAtStart ? start : start + size - ROM::ChunkedMemoryManagementHeader::SIZE;
    }
};

/// Flash over bytes that someone else owns and may change meanwhile. Transfers past their end answer short.
class ImageFlash : public ROM::Accessor {
public:
    explicit ImageFlash(Bytes& bytes) : image(bytes) {}
    Bytes read(std::uint32_t address, std::uint32_t length) override;
    void write(std::uint32_t address, const Bytes& bytes) override;

private:
    Bytes& image;
};

/// A storage stack over any flash.
struct Storage {
    Storage(ROM::Accessor& flash, const Area& area)
        : manager(&flash, area.start, area.size, area.chunkSize, area.headerAtStart), container(&manager) {}

    ROM::ChunkedMemoryManager manager;
    ROM::Container container;
};

/// One change of a storage: an erased section if there is no data, else a written one.
struct Change {
    std::uint16_t uid;
    bool erases;
    Bytes data;
};

void apply(ROM::Container& container, const Change& change);
void apply(Model& model, const Change& change);

/// What the container holds is exactly what the model says.
bool holds(ROM::Container& container, const Model& model);

/// Tries a change on a copy: whether it succeeds and leaves exactly what it should. Some rules of the format
/// cost a neighbour; a careful writer leaves such changes out.
bool rehearse(const Bytes& image, const Area& area, const Model& model, const Change& change);

} // namespace Zentara::TestSupport
