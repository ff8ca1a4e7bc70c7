#include "tools/zentara/rom/rom_target.h"

#include <limits>
#include <map>
#include <memory>

#include <CLI/CLI.hpp>

#include <zentara/utils/format.h>

#include "tools/zentara/interrupt.h"
#include "utils/visible_text.h"

namespace Zentara::Tool {
namespace {

using Utils::Format;

constexpr const char* cameraPrefix = "camera:";

std::string textOf(const Json& json) { return json.is_string() ? json.get<std::string>() : std::string(); }

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
    wanted.json = false; // a trace goes to the error stream, beside whatever is printed
    const auto session = std::make_shared<ChipSession>(wanted, console);
    const Json identity = session->identity();
    CameraInfo who;
    who.serial = session->info().serial;
    who.name = textOf(identity["name"]);
    who.product = session->info().product;
    who.path = session->info().path;
    if (options.area.size == 0 && !session->storage())
        throw Failure(Failure::Usage, "no description says where the camera's storage lies", {},
                      "--start and --size say it");
    return Flash::camera({session, &session->chip()}, who, session->storage(), options.area, access);
}

Flash open(const TargetOptions& options, bool toWrite, Flash::Access access, Console& console) {
    if (isCamera(options)) {
        ChipOptions wanted = options;
        wanted.writes = toWrite;
        return openCamera(wanted, options, access, console);
    }
    return Flash::image(options.image, options.area, access);
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

Progress shownProgress(const char* verb, Console& console) {
    constexpr std::uint64_t briefly = 0x400; ///< bytes that nobody waits for
    return
        [watch = std::make_shared<InterruptWatch>(), verb, &console](std::uint64_t done, std::uint64_t all) {
            if (console.showProgress && all > briefly && done > 0)
                console.err << '\r' << verb << ' ' << done << " of " << all << " bytes"
                            << (done == all ? "\n" : "") << std::flush;
            return !watch->interrupted();
        };
}

FlashImage loadFlash(Flash& flash, Console& console) { return flash.load(shownProgress("read", console)); }

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
    json["camera"] = Json();
    if (const std::optional<CameraInfo>& who = flash.owner())
        json["camera"] = {{"serial", orNull(who->serial)},
                          {"name", orNull(who->name)},
                          {"path", orNull(who->path)},
                          {"controller", orNull(who->controller)}};
    return json;
}

void printLine(std::ostream& out, const std::string& text) { out << Utils::visibleText(text) << '\n'; }

} // namespace Zentara::Tool
