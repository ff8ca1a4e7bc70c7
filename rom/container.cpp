#include <zentara/rom/container.h>

#include <limits>
#include <map>
#include <new>
#include <unordered_set>
#include <utility>

#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/rom/container_header.h>
#include <zentara/rom/memory_manager.h>
#include <zentara/rom/section.h>
#include <zentara/utils/format.h>

#include "utils/log_warning.h"

namespace Zentara::ROM {

namespace {

constexpr std::uint8_t UNREADABLE_VERSION = 2; ///< headers that ask for this or more are not for this reader
/// Bytes set aside for what is small in a write: block, table entries, headers.
constexpr std::size_t SPARE_ROOM = 1024;
constexpr std::size_t MAX_DATA_SIZE =
    std::numeric_limits<std::uint32_t>::max() - Section::MIN_SIZE - MemoryBlockHeader::SIZE;

std::string about(const char* message, int number) { return Utils::Format(message) % number; }

bool isWritable(const Section& section) { return (section.getFlags() & Section::FLAG_WRITABLE) != 0; }

} // namespace

struct Container::Impl {
    struct Entry {
        std::unique_ptr<Section> section;
        const MemoryBlockHeader* block = nullptr; ///< the manager's
    };
    using Sections = std::map<std::uint16_t, Entry>;

    MemoryManager* const definedManager;     ///< not owned; may be null
    std::unique_ptr<ContainerHeader> header; ///< null while not initialized
    Sections sections;                       ///< as verified on flash, by uid

    explicit Impl(MemoryManager* memory) : definedManager(memory) {}

    MemoryManager& manager() const {
        if (!definedManager)
            throw Plugin::InvalidOperationPluginException("Memory manager is not defined");
        return *definedManager;
    }

    void clear() {
        header.reset();
        sections.clear();
    }

    /// Where a read throws, nothing counts as loaded.
    void load(MemoryManager& memory) {
        const MemoryBlockHeader* block = memory.getNext(nullptr);
        if (!block)
            return;
        std::unique_ptr<ContainerHeader> loaded(ContainerHeader::deserialize(memory.read(block)));
        if (!loaded || loaded->getMinReadoutVersion() >= UNREADABLE_VERSION)
            return;
        sections = readSections(memory, block);
        header = std::move(loaded); // last: by it everybody sees that the sections are there
    }

    /// The chain may lead back into itself; it ends at the first block seen before.
    static Sections readSections(MemoryManager& memory, const MemoryBlockHeader* block) {
        Sections found;
        std::unordered_set<const MemoryBlockHeader*> seen{block};
        while ((block = memory.getNext(block)) && seen.insert(block).second) {
            std::unique_ptr<Section> section(Section::deserialize(memory.read(block)));
            if (!section)
                continue;
            const std::uint16_t uid = section->getUID();
            found[uid] = {std::move(section), block};
        }
        return found;
    }

    const Section& section(std::uint16_t uid, const char* message) const {
        const auto found = sections.find(uid);
        if (found == sections.end())
            throw Plugin::ArgumentPluginException(about(message, uid));
        return *found->second.section;
    }

    void checkVersion(const char* message) const {
        if (header->getVersion() != HEADER_VERSION)
            throw Plugin::InvalidOperationPluginException(about(message, HEADER_VERSION));
    }

    void checkSet(std::uint16_t uid, std::size_t dataSize) const;
    const MemoryBlockHeader* store(std::uint16_t uid, const std::vector<std::uint8_t>& bytes);
    const MemoryBlockHeader* storeAnew(const std::vector<std::uint8_t>& bytes) const;
    const MemoryBlockHeader* allocate(std::size_t size) const;
    void eraseAllSections();
    const MemoryBlockHeader* blockForHeader();
};

void Container::Impl::checkSet(std::uint16_t uid, std::size_t dataSize) const {
    if (uid == 0)
        throw Plugin::ArgumentPluginException(
            about("Cannot write section - % is not a valid section uid", uid));
    if (!header)
        throw Plugin::InvalidOperationPluginException("Cannot write section - Rom is not initialized");
    checkVersion("Cannot write section - Rom version is not %");
    const auto found = sections.find(uid);
    if (found != sections.end() && !isWritable(*found->second.section))
        throw Plugin::UnauthorizedAccessPluginException("Cannot update section - section is read only");
    if (dataSize > MAX_DATA_SIZE)
        throw Plugin::ArgumentPluginException("Cannot write section - content is too long");
}

/// Writes the section to its own block if that is credited with enough room, else to a new one, for which the
/// old one is given up first.
const MemoryBlockHeader* Container::Impl::store(std::uint16_t uid, const std::vector<std::uint8_t>& bytes) {
    const auto found = sections.find(uid);
    if (found == sections.end())
        return storeAnew(bytes);
    const MemoryBlockHeader* own = found->second.block;
    if (bytes.size() <= manager().getMaximumUsableSize(own)) {
        manager().write(own, bytes);
        return own;
    }
    std::vector<std::uint8_t> room(2 * bytes.size() + SPARE_ROOM);
    const std::string loss = about("section % was erased to be replaced and is gone", uid);
    // The format's own order, which gives the old block's room to the new one. A write that fails from here on has cost
    // the section.
    manager().erase(own);
    sections.erase(found);
    try {
        try {
            return storeAnew(bytes);
        } catch (const std::bad_alloc&) {
            // Taken before the old section went, so that the new one need not fail for want of it.
            room = std::vector<std::uint8_t>(); // an empty list would leave the room where it is
            return storeAnew(bytes);
        }
    } catch (...) {
        Utils::logWarning(Utils::LogArea_ROM, loss);
        throw;
    }
}

const MemoryBlockHeader* Container::Impl::storeAnew(const std::vector<std::uint8_t>& bytes) const {
    const MemoryBlockHeader* block = allocate(bytes.size());
    manager().write(block, bytes);
    return block;
}

const MemoryBlockHeader* Container::Impl::allocate(std::size_t size) const {
    const MemoryBlockHeader* block = manager().allocate(static_cast<std::uint32_t>(size));
    if (!block)
        throw Plugin::IOPluginException("failed to allocate space on the device");
    return block;
}

// One by one, each forgotten as soon as it is unlinked: a failure leaves those that are still there.
void Container::Impl::eraseAllSections() {
    while (!sections.empty()) {
        manager().erase(sections.begin()->second.block);
        sections.erase(sections.begin());
    }
}

const MemoryBlockHeader* Container::Impl::blockForHeader() {
    // Of another version: its block stays the first one, with another header in it.
    if (header) {
        eraseAllSections();
        return manager().getNext(nullptr);
    }
    if (!manager().romInitialized())
        manager().initializeRom();
    return allocate(ContainerHeader::SIZE);
}

Container::Container(MemoryManager* manager) : impl(std::make_unique<Impl>(manager)) {}
Container::~Container() = default;

void Container::initialize() {
    impl->clear();
    impl->manager().initialize();
    impl->load(impl->manager());
}

void Container::dispose() { impl->clear(); }
bool Container::romInitialized() { return impl->header != nullptr; }
const ContainerHeader* Container::getContainerHeader() { return impl->header.get(); }

std::vector<std::uint16_t> Container::getSectionUIDs() {
    std::vector<std::uint16_t> uids;
    for (const auto& [uid, entry] : impl->sections)
        uids.push_back(uid);
    return uids;
}

std::vector<std::uint8_t> Container::get(std::uint16_t uid) {
    return impl->section(uid, "Section % is not defined").getSerializedData();
}

ContainerSectionType Container::getType(std::uint16_t uid) {
    return impl->section(uid, "Section % is not defined").getSectionType();
}

bool Container::sectionIsWritable(std::uint16_t uid) {
    return isWritable(impl->section(uid, "invalid uid - % is not defined"));
}

const Section* Container::getSection(std::uint16_t uid) {
    const auto found = impl->sections.find(uid);
    return found == impl->sections.end() ? nullptr : found->second.section.get();
}

void Container::set(std::uint16_t uid, ContainerSectionType type, std::uint8_t flags,
                    const std::vector<std::uint8_t>& data) {
    impl->checkSet(uid, data.size());
    // All that remembers the section is made before anything is written.
    Impl::Sections fresh;
    Impl::Entry& entry = fresh[uid];
    entry.section = std::make_unique<Section>(type, uid, flags, data);
    entry.block = impl->store(uid, entry.section->serialize());
    impl->sections.erase(uid);
    impl->sections.merge(fresh); // moves the entry over: nothing here can fail
}

void Container::erase(std::uint16_t uid) {
    if (!isWritable(impl->section(uid, "Cannot erase section - % is not a valid section uid")))
        throw Plugin::UnauthorizedAccessPluginException("Cannot erase section - section is read only");
    impl->checkVersion("Cannot erase section - Rom version is not %");
    const auto found = impl->sections.find(uid);
    impl->manager().erase(found->second.block);
    impl->sections.erase(found);
}

void Container::initializeRom() {
    const ContainerHeader current(HEADER_VERSION, HEADER_MIN_READOUT_VERSION);
    if (impl->header && *impl->header == current)
        return;
    auto written = std::make_unique<ContainerHeader>(current);
    const std::vector<std::uint8_t> bytes = current.serialize();
    impl->manager().write(impl->blockForHeader(), bytes);
    impl->header = std::move(written);
}

} // namespace Zentara::ROM
