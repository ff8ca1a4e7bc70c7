#pragma once

#include <zentara/host/flash_content.h>
#include <zentara/rom/chunked_memory_manager.h>
#include <zentara/rom/container.h>

namespace Zentara::Host {

/// The library's storage over any flash, which must outlive it.
struct Storage {
    Storage(ROM::Accessor& flash, const FlashArea& area)
        : manager(&flash, area.start, area.size, area.chunkSize, area.headerAtStart), container(&manager) {}

    ROM::ChunkedMemoryManager manager;
    ROM::Container container;
};

/// What a container has loaded.
[[nodiscard]] FlashContent contentOf(ROM::Container& container);

} // namespace Zentara::Host
