#include "tools/zentara/rom/rom_target.h"

#include <limits>
#include <map>
#include <memory>

#include <CLI/CLI.hpp>

#include <zentara/utils/format.h>

#include "tools/zentara/cameras/camera_json.h"
#include "tools/zentara/cameras/camera_session.h"
#include "tools/zentara/progress.h"

namespace Zentara::Tool {
namespace {

using Utils::Format;

constexpr const char* cameraPrefix = "camera:";

/// `camera:NAME` and `--camera NAME` say the same: both may stand there as long as they agree.
Flash openCamera(ChipOptions wanted, const TargetOptions& options, Flash::Access access, Console& console) {
    if (!options.image.empty()) {
        const std::string named = options.image.substr(std::string(cameraPrefix).size());
        if (named.empty())
            throw Failure(Failure::Usage, "the name of the camera is empty");
        if (!options.camera.empty() && named != options.camera)
            throw Failure(Failure::Usage, Format("--camera % stands beside %: name one camera") %
                                              options.camera % options.image);
        wanted.camera = named;
    }
    Cameras cameras(patiently(console));
    // A trace goes to the error stream, beside whatever is printed.
    return Flash::camera(openChip(wanted, cameras, shownTrace(options.trace, console)), options.area, access);
}

Flash open(const TargetOptions& options, bool toWrite, Flash::Access access, Console& console) {
    if (!isCamera(options))
        return Flash::image(options.image, options.area, access);
    ChipOptions wanted = options;
    wanted.writes = toWrite;
    return openCamera(wanted, options, access, console);
}

} // namespace

bool isCamera(const TargetOptions& options) {
    if (options.image.empty() || options.image.rfind(cameraPrefix, 0) == 0)
        return true;
    if (!options.camera.empty())
        throw Failure(Failure::Usage, Format("--camera % stands beside the image '%': name one of them") %
                                          options.camera % options.image);
    return false;
}

void addTargetOptions(CLI::App& command, TargetOptions& options) {
    using Header = FlashOptions::Header;
    static const std::map<std::string, Header> headers{
        {"auto", Header::Auto}, {"end", Header::End}, {"start", Header::Start}};
    command.add_option(
        "IMAGE", options.image,
        "An image file, or camera:NAME with a name as --camera takes it; the camera unless named");
    command.add_option("--start", options.area.start, "Where the storage begins on the flash");
    command.add_option("--size", options.area.size,
                       "Its bytes; the rest of the file, or the camera's own, unless set");
    command.add_option("--chunk", options.area.chunkSize, "Chunk size to format with")
        ->capture_default_str()
        ->check(CLI::Range(1U, std::numeric_limits<std::uint32_t>::max()));
    command
        .add_option_function<std::string>(
            "--header", [&options](const std::string& word) { options.area.header = headers.at(word); },
            "Where the management header stands")
        ->default_str("auto")
        ->check(CLI::IsMember({"start", "end", "auto"}));
    addChipOptions(command, options);
}

void addForceOption(CLI::App& command, bool& force) {
    command.add_flag("--force", force, "Replace a file that is there already");
}

Flash openFlash(const TargetOptions& options, Console& console) {
    return open(options, false, Flash::Access::Read, console);
}

Flash openFlashToWrite(const TargetOptions& options, bool dryRun, Console& console) {
    return open(options, true, dryRun ? Flash::Access::Read : Flash::Access::Write, console);
}

FlashImage loadFlash(Flash& flash, Console& console) { return flash.load(shownProgress("read", console)); }

/// What cannot be read is not passed over: the failure leads to the verb that names all that is wrong.
FlashContent contentOfFlash(const Flash& flash, const FlashImage& image) try {
    return flash.content(image);
} catch (const Failure& failure) {
    throw Failure(failure.code(), failure.message() + "; 'zentara rom verify' tells why", failure.cause());
}

FlashContent loadContent(Flash& flash, Console& console) {
    return contentOfFlash(flash, loadFlash(flash, console));
}

Json beginJson(const Flash& flash, const Console& console) {
    Json json = Tool::beginJson(console);
    json["target"] = flash.name();
    json["camera"] = flash.owner() ? cameraJson(*flash.owner()) : Json();
    return json;
}

void finish(const Flash& flash, const TargetOptions& options, Console& console, const Json& result,
            const std::vector<std::string>& lines) {
    if (options.json) {
        Json json = beginJson(flash, console);
        json.update(result);
        return print(console.out, json);
    }
    for (const std::string& line : lines)
        printLine(console.out, line);
}

void printLine(std::ostream& out, const std::string& text) { out << printable(text) << '\n'; }

} // namespace Zentara::Tool
