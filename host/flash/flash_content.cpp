#include "host/flash/flash_content.h"

#include <array>

#include <zentara/rom/section.h>
#include <zentara/utils/format.h>

namespace Zentara::Host {
namespace {

constexpr std::array<const char*, 6> typeNames{nullptr,         "systemInfo", "systemCalibration",
                                               "configuration", "diagnostic", "gradientDistortionCorrection"};

} // namespace

FlashContent contentOf(ROM::Container& container) {
    FlashContent content;
    for (const std::uint16_t uid : container.getSectionUIDs()) {
        const ROM::Section& section = *container.getSection(uid);
        content[uid] = {static_cast<std::uint8_t>(section.getSectionType()), section.getFlags(),
                        section.getSerializedData()};
    }
    return content;
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
