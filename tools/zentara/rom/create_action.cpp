#include <memory>

#include <CLI/CLI.hpp>

#include <zentara/rom/chunked_memory_management_header.h>
#include <zentara/utils/format.h>

#include "tools/zentara/paths.h"
#include "tools/zentara/rom/rom_verbs.h"
#include "tools/zentara/rom/rom_write.h"

namespace Zentara::Tool {
namespace {

using Utils::Format;

constexpr std::uint64_t usualFileSize = 0x10000;

ExitCode runCreate(WriteOptions options, Console& console) {
    const bool isNewFile = !isCamera(options) && !isThere(options.image);
    if (options.size == 0 && isNewFile)
        options.size = usualFileSize;
    if (options.header == "auto")
        options.header = "start";
    const auto target = isNewFile ? RomTarget::create(options, console)
                                  : RomTarget::openToWrite(options, options.dryRun, console);
    const FlashImage before = target->load();
    FlashArea area = before.area();
    area.chunkSize = options.chunkSize;
    if (area.size < ROM::ChunkedMemoryManagementHeader::SIZE)
        throw ToolFailure(ExitCode_USAGE, Format("an area of % bytes has no room for a storage") % area.size);
    const Rehearsal rehearsal = rehearse(FlashImage(area), {}, true);
    if (!rehearsal.isGood())
        throw ToolFailure(ExitCode_USAGE,
                          Format("an area of % bytes has no room for a storage in chunks of % bytes") %
                              area.size % area.chunkSize);
    PlannedWrite plan{{Format("% is formatted: % bytes in chunks of %, header at the %") % target->name() %
                       area.size % area.chunkSize % (area.headerAtStart ? "start" : "end")},
                      false,
                      differences(before, rehearsal.image),
                      rehearsal.image};
    const FlashImage erased(before.area());
    plan.takesAway = before.bytes() != erased.bytes();
    for (const auto& [uid, section] : loadContentIfAny(before))
        plan.changes.push_back(sectionText(uid, section) + " is erased");
    RomWriter writer("create", options, *target, console);
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
