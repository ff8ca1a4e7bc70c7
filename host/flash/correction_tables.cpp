#include <zentara/host/correction_tables.h>

#include <algorithm>
#include <cmath>
#include <memory>

#include <zentara/rom/gradient_distortion_correction.h>
#include <zentara/rom/rom.h>

#include "host/flash/storage.h"

namespace Zentara::Host {
namespace {

using ROM::GradientDistortionCorrection;

constexpr std::uint8_t correctionType =
    static_cast<std::uint8_t>(ROM::ContainerSectionType::GradientDistortionCorrection);

/// Reads one section as an object with the library's own reader.
std::unique_ptr<ROM::Object> objectOf(const FlashSection& section) {
    constexpr std::size_t overhead = 1024; // headers of the area, the blocks and the section
    FlashArea area;
    area.size = static_cast<std::uint32_t>(section.data.size() + overhead);
    area.chunkSize = 64;
    FlashImage flash(area);
    Storage storage(flash, area);
    ROM::ROM rom(&storage.container);
    rom.initialize();
    rom.initializeRom();
    storage.container.set(1, static_cast<ROM::ContainerSectionType>(section.type), section.flags,
                          section.data);
    return std::unique_ptr<ROM::Object>(rom.get(1));
}

CorrectionSection correctionOf(std::uint16_t uid, const GradientDistortionCorrection& object) {
    const ROM::GradientDistortionCorrectionHeader header = object.getGradientDistortionCorrectionHeader();
    CorrectionSection file{uid,
                           header.getVersionNumber(),
                           header.getTimeofLastWrite(),
                           header.getNumberOfSets(),
                           header.getSerialId(),
                           {}};
    for (const auto& data : object.getGradientDistortionCorrectionData())
        file.tables.push_back({data.getModulationFrequency(), data.getValues()});
    return file;
}

} // namespace

CorrectionTable::Statistics CorrectionTable::statistics() const {
    Statistics result;
    if (values.empty())
        return result;
    const auto [least, greatest] = std::minmax_element(values.begin(), values.end());
    double sum = 0;
    for (const std::uint8_t value : values)
        sum += value;
    const auto count = static_cast<double>(values.size());
    result.least = *least;
    result.greatest = *greatest;
    result.mean = sum / count;
    double squares = 0;
    for (const std::uint8_t value : values)
        squares += (value - result.mean) * (value - result.mean);
    result.deviation = std::sqrt(squares / count);
    return result;
}

std::vector<CorrectionSection> correctionsOf(const FlashContent& content) {
    std::vector<CorrectionSection> corrections;
    for (const auto& [uid, section] : content) {
        if (section.type != correctionType)
            continue;
        const auto object = objectOf(section);
        if (const auto* correction = dynamic_cast<const GradientDistortionCorrection*>(object.get()))
            corrections.push_back(correctionOf(uid, *correction));
    }
    return corrections;
}

} // namespace Zentara::Host
