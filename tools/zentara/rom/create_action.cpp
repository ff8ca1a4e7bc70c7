#include <memory>

#include <CLI/CLI.hpp>

#include <zentara/rom/chunked_memory_management_header.h>
#include <zentara/utils/format.h>

#include "host/files/paths.h"
#include "tools/zentara/rom/rom_verbs.h"
#include "tools/zentara/rom/rom_write.h"

namespace Zentara::Tool {
namespace {

using Utils::Format;

constexpr std::uint64_t usualFileSize = 0x10000;

/// Every section that stands anywhere in the file or the camera, wherever its header is: whatever the new area is, the
/// old header is not found any more.
FlashContent contentThatGoes(WriteOptions options, bool isNewFile, const FlashImage& before,
                             Console& console) {
    FlashContent content = loadContentIfAny(before);
    if (isNewFile)
        return content;
    const auto addAll = [&content](const FlashImage& image) {
        content.merge(loadContentIfAny(image));
        FlashArea mirrored = image.area();
        mirrored.headerAtStart = !mirrored.headerAtStart;
        content.merge(loadContentIfAny(FlashImage(mirrored, image.bytes())));
    };
    addAll(before);
    if (!isCamera(options) && (options.size != 0 || options.hasStart)) {
        options.size = 0;
        options.start = 0;
        options.hasStart = false;
        options.header = "auto";
        addAll(RomTarget::open(options, console)->load());
    }
    return content;
}

ExitCode runCreate(WriteOptions options, Console& console) {
    const bool isNewFile = !isCamera(options) && !isThere(options.image);
    if (options.size == 0 && isNewFile)
        options.size = usualFileSize;
    if (options.header == "auto")
        options.header = "start";
    const auto target = isNewFile ? RomTarget::create(options, options.dryRun, console)
                                  : RomTarget::openToWrite(options, options.dryRun, console);
    const FlashImage before = target->load();
    FlashArea area = before.area();
    area.chunkSize = options.chunkSize;
    if (area.size < ROM::ChunkedMemoryManagementHeader::SIZE)
        throw Failure(Failure::Usage, Format("an area of % bytes has no room for a storage") % area.size);
    const Rehearsal rehearsal = rehearse(FlashImage(area), {}, true);
    if (!rehearsal.isGood())
        throw Failure(Failure::Usage,
                      Format("an area of % bytes has no room for a storage in chunks of % bytes") %
                          area.size % area.chunkSize);
    PlannedWrite plan{{Format("% is formatted: % bytes in chunks of %, header at the %") % target->name() %
                       area.size % area.chunkSize % (area.headerAtStart ? "start" : "end")},
                      false,
                      false,
                      differences(before, rehearsal.image),
                      rehearsal.image};
    const FlashImage erased(before.area());
    plan.takesAway = before.bytes() != erased.bytes();
    for (const auto& [uid, section] : contentThatGoes(options, isNewFile, before, console)) {
        plan.changes.push_back(sectionText(uid, section) + " is erased");
        plan.takesAway = true;
    }
    RomWriter writer(options, *target, console);
    return writer.write(before, plan);
}

} // namespace

Verb addRomCreate(CLI::App& rom) {
    auto options = std::make_shared<WriteOptions>();
    CLI::App* command = rom.add_subcommand(
        "create", "Formats a new image file (64 KiB unless --size says), or a camera's flash");
    addWriteOptions(*command, *options);
    return {command, [options](Console& console) { return runCreate(*options, console); }};
}

} // namespace Zentara::Tool
