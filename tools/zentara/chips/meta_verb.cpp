#include <memory>

#include <CLI/CLI.hpp>

#include <zentara/utils/format.h>

#include "tools/zentara/arguments.h"
#include "tools/zentara/chips/chip_session.h"

namespace Zentara::Tool {
namespace {

using Utils::Format;

struct MetaOptions : ChipOptions {
    std::uint32_t code = 0;
    std::uint32_t value = 0;
};

ExitCode runMeta(MetaOptions options, Console& console) {
    options.writes = true;
    ChipSession session(options, console);
    attempt(Format("run meta command %") % options.code,
            [&] { session.chip().command(IO::UVC_TOF_CONTROLLER_REGISTER, options.code, options.value); });
    session.finish({{"code", options.code}, {"value", options.value}},
                   Format("meta % := %") % options.code % hexText(options.value));
    return Failure::None;
}

} // namespace

Verb addMetaVerb(CLI::App& program) {
    auto options = std::make_shared<MetaOptions>();
    CLI::App* command =
        program.add_subcommand("meta", "Runs a meta command of a camera's controller")->group("Verbs");
    command->footer("A code that the controller does not know is refused, except by an OV0570, which writes\n"
                    "register 0 twice.");
    command->add_option("CODE", options->code, "The command, 1000 or more")
        ->required()
        ->check(CLI::Range(IO::CameraChip::firstMetaCode, 0xFFFFFFFFU));
    command->add_option("VALUE", options->value, "Its 32-bit value")->required()->check(any32Bits());
    addChipOptions(*command, *options);
    return {command, [options](Console& console) { return runMeta(*options, console); }};
}

} // namespace Zentara::Tool
