#include "tools/zentara/rom/correction_text.h"

#include <chrono>
#include <iomanip>
#include <sstream>
#include <utility>

#include <zentara/utils/format.h>

#include "utils/visible_text.h"

namespace Zentara::Tool {
namespace {

using Utils::Format;

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

/// "12.25"
std::string decimalText(double value) {
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text << std::fixed << std::setprecision(2) << value;
    return text.str();
}

} // namespace

Json correctionsJson(const std::vector<CorrectionSection>& corrections) {
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
    return json;
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

} // namespace Zentara::Tool
