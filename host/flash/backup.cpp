#include "host/flash/backup.h"

#include <chrono>
#include <string_view>

#include <zentara/host/output_file.h>
#include <zentara/utils/format.h>
#include <zentara/version.h>

#include "host/cameras/camera_json.h"
#include "host/files/paths.h"
#include "host/flash/flash_target.h"
#include "host/json_file.h"
#include "utils/platform/part_name.h"

namespace Zentara::Host {
namespace {

using Utils::Format;

/// Raised when a key of the file beside a backup is renamed, removed or changes its meaning.
constexpr int noteSchema = 3;

/// What is added to a name, at most; the last is that of the file beside it.
constexpr std::string_view longestEnding = ".20261121-091500-9999.bak.json";

/// "20261121-091500", in UTC.
std::string timeText() {
    using namespace std::chrono;
    const auto now = floor<seconds>(system_clock::now());
    const auto day = floor<days>(now);
    const year_month_day date(day);
    const hh_mm_ss time(now - day);
    return Format("%{:04}%{:02}%{:02}-%{:02}%{:02}%{:02}") % int{date.year()} % unsigned{date.month()} %
           unsigned{date.day()} % static_cast<int>(time.hours().count()) %
           static_cast<int>(time.minutes().count()) % static_cast<int>(time.seconds().count());
}

} // namespace

std::string sdkVersion() {
    return Format("%.%.%") % ZENTARA_SDK_VERSION_MAJOR % ZENTARA_SDK_VERSION_MINOR %
           ZENTARA_SDK_VERSION_PATCH;
}

// The system limits the length of a name: the stem is cut, never the ending, by which the file is known.
std::string freeBackupName(const std::string& stem) {
    namespace Name = Utils::Platform::PartName;
    const std::string_view name = Name::stemOf(stem, Name::longestName - longestEnding.size());
    const std::string base = stem.substr(0, Name::nameBegin(stem)).append(name) + "." + timeText();
    return unusedPath(base, "bak");
}

std::string backupNote(const CameraInfo& owner, const FlashArea& area) {
    const Json json{{"schema", noteSchema}, {"kind", "flash backup"}, {"camera", cameraJson(owner)},
                    {"sdk", sdkVersion()},  {"start", area.start},    {"size", area.size}};
    return printed(json);
}

std::string serialOfBackup(const std::string& path) {
    const std::string beside = backupNoteOf(path);
    if (!isThere(beside))
        return {};
    try {
        const Json json = parseJson(readFlashFile(beside));
        return JsonPlace(json).at("camera").at("serial").text();
    } catch (const JsonError& failure) {
        throw Failure(Failure::Failed, "'" + beside + "' does not say whose backup it is: " + failure.what());
    }
}

} // namespace Zentara::Host
