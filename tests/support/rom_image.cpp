#include "support/rom_image.h"

#include <algorithm>

#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/rom/section.h>

namespace Zentara::TestSupport {

Bytes ImageFlash::read(std::uint32_t address, std::uint32_t length) {
    const std::size_t begin = std::min<std::size_t>(address, image.size());
    const std::size_t end = std::min<std::size_t>(begin + length, image.size());
    return {image.begin() + static_cast<std::ptrdiff_t>(begin),
            image.begin() + static_cast<std::ptrdiff_t>(end)};
}

void ImageFlash::write(std::uint32_t address, const Bytes& bytes) {
    for (std::size_t i = 0; i < bytes.size() && address + i < image.size(); ++i)
        image[address + i] = bytes[i];
}

void apply(ROM::Container& container, const Change& change) {
    if (change.erases)
        container.erase(change.uid);
    else
        container.set(change.uid, ROM::ContainerSectionType::Diagnostic, ROM::Section::FLAG_WRITABLE,
                      change.data);
}

void apply(Model& model, const Change& change) {
    if (change.erases)
        model.erase(change.uid);
    else
        model[change.uid] = change.data;
}

bool holds(ROM::Container& container, const Model& model) {
    if (!container.romInitialized() || container.getSectionUIDs().size() != model.size())
        return false;
    return std::all_of(model.begin(), model.end(), [&](const auto& wanted) {
        const ROM::Section* section = container.getSection(wanted.first);
        return section && section->getSerializedData() == wanted.second;
    });
}

bool rehearse(const Bytes& image, const Area& area, const Model& model, const Change& change) {
    Bytes copy = image;
    ImageFlash flash(copy);
    Storage storage(flash, area);
    storage.container.initialize();
    try {
        apply(storage.container, change);
    } catch (const Plugin::PluginException&) {
        return false;
    }
    Model after = model;
    apply(after, change);
    storage.container.initialize();
    return holds(storage.container, after);
}

} // namespace Zentara::TestSupport
