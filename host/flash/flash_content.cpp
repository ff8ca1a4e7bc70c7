#include <zentara/host/flash_content.h>

#include <array>

#include <zentara/rom/section.h>
#include <zentara/utils/format.h>

#include "host/flash/storage.h"

namespace Zentara::Host {
namespace {

/// By the number that stands on the flash, where 0 is no type.
constexpr std::array<const char*, 6> typeNames{nullptr,         "systemInfo", "systemCalibration",
                                               "configuration", "diagnostic", "gradientDistortionCorrection"};

} // namespace

bool FlashSection::isWritable() const noexcept { return (flags & ROM::Section::FLAG_WRITABLE) != 0; }

void FlashSection::setWritable(bool writable) noexcept {
    flags = static_cast<std::uint8_t>(writable ? flags | ROM::Section::FLAG_WRITABLE
                                               : flags & ~ROM::Section::FLAG_WRITABLE);
}

FlashContent contentOf(ROM::Container& container) {
    FlashContent content;
    for (const std::uint16_t uid : container.getSectionUIDs()) {
        const ROM::Section& section = *container.getSection(uid);
        content[uid] = {static_cast<std::uint8_t>(section.getSectionType()), section.getFlags(),
                        section.getSerializedData()};
    }
    return content;
}

// A copy: the storage takes what it can write to, too.
FlashContent contentOf(const FlashImage& image) {
    FlashImage copy = image;
    Storage storage(copy, copy.area());
    storage.container.initialize();
    return contentOf(storage.container);
}

bool holdsStorage(const FlashImage& image) {
    FlashImage copy = image;
    Storage storage(copy, copy.area());
    storage.container.initialize();
    return storage.container.romInitialized();
}

std::vector<std::uint16_t> readOnlyConflicts(const FlashContent& before, const FlashContent& wanted) {
    std::vector<std::uint16_t> uids;
    for (const auto& [uid, section] : before) {
        const auto place = wanted.find(uid);
        const bool stays = place != wanted.end() && place->second == section;
        if (!stays && !section.isWritable())
            uids.push_back(uid);
    }
    return uids;
}

const char* sectionTypeName(std::uint8_t type) noexcept {
    return type < typeNames.size() ? typeNames[type] : nullptr;
}

std::optional<std::uint8_t> sectionTypeFromName(const std::string& name) {
    for (std::uint8_t type = 1; type < typeNames.size(); ++type)
        if (name == typeNames[type])
            return type;
    return std::nullopt;
}

std::string sectionTypeText(std::uint8_t type) {
    const char* name = sectionTypeName(type);
    return name ? name : "type " + std::to_string(type);
}

std::string sectionText(std::uint16_t uid, const FlashSection& section) {
    return Utils::Format("section % (%, % bytes)") % uid % sectionTypeText(section.type) %
           static_cast<unsigned long long>(section.data.size());
}

} // namespace Zentara::Host
