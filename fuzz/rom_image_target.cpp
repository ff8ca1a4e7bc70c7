// Any bytes as a flash image: it is mounted, walked, every object is read and written again, and the storage
// is changed. The first byte says where the header stands and where the area begins, the rest is the flash.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/rom/object.h>
#include <zentara/rom/rom.h>
#include <zentara/rom/section.h>

#include "support/rom_image.h"

namespace Zentara::TestSupport {
namespace {

void require(bool holds) {
    if (!holds)
        std::abort();
}

struct ObjectReader : ROM::Object {
    using Object::deserialize;
};

Bytes rewritten(ROM::ContainerSectionType type, const Bytes& data) {
    const std::unique_ptr<ROM::Object> object(ObjectReader::deserialize(type, data));
    require(object != nullptr);
    return object->serialize();
}

/// What was read and written twice reads and writes the same for ever. Once is not enough: a configuration
/// without its second phase offset is written with two of the first.
void checkObject(ROM::ContainerSectionType type, const Bytes& data) {
    const std::unique_ptr<ROM::Object> object(ObjectReader::deserialize(type, data));
    const auto number = static_cast<unsigned>(type);
    require((object != nullptr) == (number >= 1 && number <= 5));
    if (!object)
        return;
    try {
        const Bytes settled = rewritten(type, object->serialize());
        require(rewritten(type, settled) == settled);
    } catch (const Plugin::ArgumentPluginException&) {
        // A serial id longer than a writer may store.
    }
}

void walk(Storage& storage) {
    for (const auto& [address, block] : storage.manager.getBlockMap()) {
        storage.manager.read(block);
        storage.manager.getMaximumUsableSize(block);
        storage.manager.getNext(block);
    }
    for (const std::uint16_t uid : storage.container.getSectionUIDs()) {
        require(storage.container.getSection(uid)->getUID() == uid);
        const Bytes data = storage.container.get(uid);
        checkObject(storage.container.getType(uid), data);
        checkObject(static_cast<ROM::ContainerSectionType>(1 + uid % 5), data);
    }
}

template<class Action>
bool succeeds(Action action) {
    try {
        action();
        return true;
    } catch (const Plugin::PluginException&) {
        return false;
    }
}

/// What is told to have succeeded is so.
void change(Storage& storage) {
    const auto uids = storage.container.getSectionUIDs();
    if (!uids.empty() && succeeds([&] { storage.container.erase(uids.front()); }))
        require(storage.container.getSection(uids.front()) == nullptr);
    for (const std::uint16_t uid : {uids.empty() ? std::uint16_t{1} : uids.back(), std::uint16_t{77}}) {
        const Bytes data(uid % 64, 0x5A);
        if (succeeds([&] { storage.container.set(uid, ROM::ContainerSectionType::Diagnostic, 1, data); }))
            require(storage.container.get(uid) == data);
    }
    if (succeeds([&] { storage.container.initializeRom(); }))
        require(storage.container.romInitialized());
}

} // namespace
} // namespace Zentara::TestSupport

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace Zentara::TestSupport;
    if (size == 0)
        return 0;
    Bytes image(data + 1, data + size);
    Area area;
    area.headerAtStart = (data[0] & 1) != 0;
    area.start = std::min<std::uint32_t>((data[0] >> 1 & 3u) * 64, static_cast<std::uint32_t>(image.size()));
    area.size = static_cast<std::uint32_t>(image.size()) - area.start;
    area.chunkSize = 64;
    ImageFlash flash(image);
    Storage storage(flash, area);
    storage.container.initialize();
    walk(storage);
    change(storage);
    storage.container.initialize();
    walk(storage);
    return 0;
}
