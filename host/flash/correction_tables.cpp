#include <zentara/host/correction_tables.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <memory>
#include <utility>

#include <zentara/rom/gradient_distortion_correction.h>
#include <zentara/rom/rom.h>
#include <zentara/utils/format.h>

#include "host/flash/storage.h"
#include "host/float_text.h"
#include "host/json_file.h"
#include "utils/visible_text.h"

namespace Zentara::Host {
namespace {

using ROM::GradientDistortionCorrection;
using Utils::Format;

constexpr std::uint8_t correctionType =
    static_cast<std::uint8_t>(ROM::ContainerSectionType::GradientDistortionCorrection);

/// Reads one section as an object with the library's own reader.
std::unique_ptr<ROM::Object> objectOf(const FlashSection& section) {
    constexpr std::size_t overhead = 1024; // headers of the area, the blocks and the section
    FlashArea area;
    area.size = static_cast<std::uint32_t>(section.data.size() + overhead);
    area.chunkSize = 64; // small: the overhead has to do for what is rounded up to chunks
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

/// "2026-11-21 09:15:00 UTC (1795252500)", of seconds since 1970.
std::string dateText(std::uint32_t time) {
    using namespace std::chrono;
    const sys_seconds when{seconds(time)};
    const auto day = floor<days>(when);
    const year_month_day date(day);
    const hh_mm_ss clock(when - day);
    return Format("%-%{:02}-%{:02} %{:02}:%{:02}:%{:02} UTC (%)") % int{date.year()} %
           unsigned{date.month()} % unsigned{date.day()} % static_cast<int>(clock.hours().count()) %
           static_cast<int>(clock.minutes().count()) % static_cast<int>(clock.seconds().count()) % time;
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

std::string toJson(const std::vector<CorrectionSection>& corrections) {
    Json json = Json::array();
    for (const CorrectionSection& file : corrections) {
        Json tables = Json::array();
        for (const CorrectionTable& table : file.tables) {
            const auto statistics = table.statistics();
            tables.push_back({{"modulationFrequency", table.megahertz},
                              {"values", table.values.size()},
                              {"least", statistics.least},
                              {"greatest", statistics.greatest},
                              {"mean", statistics.mean},
                              {"deviation", statistics.deviation}});
        }
        json.push_back({{"uid", file.uid},
                        {"version", file.version},
                        {"timeOfLastWrite", file.timeOfLastWrite},
                        {"numberOfSets", file.numberOfSets},
                        {"serialId", file.serialId},
                        {"tables", std::move(tables)}});
    }
    return printed(json);
}

std::string correctionText(const CorrectionSection& correction) {
    std::string text =
        Format("section %: distortion correction, version %, written %, % sets, serial id \"%\"\n") %
        correction.uid % correction.version % dateText(correction.timeOfLastWrite) % correction.numberOfSets %
        Utils::visibleText(correction.serialId);
    for (std::size_t i = 0; i < correction.tables.size(); ++i) {
        const CorrectionTable& table = correction.tables[i];
        const auto statistics = table.statistics();
        text += Format("  table %: frequency % MHz, % values of 8 bits from % to %, mean %, deviation %\n") %
                static_cast<unsigned>(i) % table.megahertz %
                static_cast<unsigned long long>(table.values.size()) % statistics.least %
                statistics.greatest % decimalText(statistics.mean) % decimalText(statistics.deviation);
    }
    return text;
}

} // namespace Zentara::Host
