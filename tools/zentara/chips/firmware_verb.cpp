#include <memory>
#include <string>

#include <CLI/CLI.hpp>

#include <zentara/host/chip_memory.h>
#include <zentara/host/output_file.h>
#include <zentara/utils/crc.h>
#include <zentara/utils/format.h>

#include "tools/zentara/arguments.h"
#include "tools/zentara/chips/chip_session.h"
#include "tools/zentara/progress.h"
#include "tools/zentara/supervisor.h"

namespace Zentara::Tool {
namespace {

using Utils::Format;

constexpr unsigned memoryBytes = IO::CameraChip::memoryBytes;

struct FirmwareOptions : ChipOptions {
    bool force = false;
    std::string file;
    std::string area = "firmware";
    unsigned start = 0;
    unsigned length = 0; ///< 0: to the end of the memory
};

ExitCode runDump(FirmwareOptions options, Console& console) {
    if (options.length == 0)
        options.length = memoryBytes - options.start;
    if (options.length > memoryBytes - options.start)
        throw Failure(Failure::Usage, Format("--length % is out of range from %: 1 to %") % options.length %
                                          hexText(options.start) % (memoryBytes - options.start));
    const Progress progress = shownProgress("read", console);
    // Reading takes minutes on a real camera: what cannot be written is told before.
    OutputFile file(options.file, forced(options.force));
    const Rescue nothingLeft([&file] { file.discard(); });
    ChipSession session(options, console);
    const Bytes bytes = readMemory(
        session.camera(), options.area == "firmware" ? ChipMemory::Firmware : ChipMemory::Configuration,
        options.start, options.length, progress);
    file.write({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    file.commit();
    const unsigned crc = Utils::Crc32::compute(bytes.data(), options.length, 0);
    session.finish({{"area", options.area},
                    {"start", options.start},
                    {"length", options.length},
                    {"crc32", crc},
                    {"file", options.file}},
                   Format("% bytes of %, CRC-32 0x%{:X8}: %") % options.length % options.area % crc %
                       printable(options.file));
    return Failure::None;
}

} // namespace

Verb addFirmwareVerb(CLI::App& program) {
    auto options = std::make_shared<FirmwareOptions>();
    CLI::App* command =
        program.add_subcommand("firmware", "Reads the memory of a camera's controller")->group("Verbs");
    command->require_subcommand(1);
    CLI::App* dump = command->add_subcommand("dump", "Writes it to a file, which appears once it is whole");
    dump->add_option("FILE", options->file, "The file")->required();
    dump->add_option("--area", options->area, "firmware or configuration")
        ->capture_default_str()
        ->check(CLI::IsMember({"firmware", "configuration"}));
    dump->add_option("--start", options->start, "First byte")
        ->capture_default_str()
        ->check(CLI::Range(0U, 0xFFFFU));
    dump->add_option("--length", options->length, "How many bytes; to the end of the 64 KiB unless set")
        ->check(CLI::Range(1U, memoryBytes));
    dump->add_flag("--force", options->force, "Replace a file that is there already");
    addChipOptions(*dump, *options);
    return {command, [options](Console& console) { return runDump(*options, console); }};
}

} // namespace Zentara::Tool
