#include <algorithm>
#include <memory>
#include <vector>

#include <CLI/CLI.hpp>

#include <zentara/utils/format.h>

#include "tools/zentara/chips/chip_session.h"

namespace Zentara::Tool {
namespace {

using Utils::Format;

std::string listOf(const std::vector<unsigned>& values) {
    std::string text;
    for (const unsigned value : values)
        text += (text.empty() ? "" : ", ") + std::to_string(value);
    return text;
}

struct ModfreqOptions : ChipOptions {
    unsigned megahertz = 0;
};

ExitCode runModfreq(ModfreqOptions options, Console& console) {
    options.writes = true;
    ChipSession session(options, console);
    const char* chip = session.chip().name();
    const std::vector<unsigned> known = session.chip().modulationFrequencies();
    if (known.empty())
        throw Failure(Failure::Failed, Format("the % has no command for the modulation frequency") % chip);
    if (std::find(known.begin(), known.end(), options.megahertz) == known.end())
        throw Failure(Failure::Usage, Format("% MHz is no modulation frequency of the %: % MHz") %
                                          options.megahertz % chip % listOf(known));
    attempt(Format("set the modulation frequency to % MHz") % options.megahertz,
            [&] { session.chip().setModulationFrequency(options.megahertz); });
    session.finish(
        {{"megahertz", options.megahertz}, {"code", IO::CameraChip::modulationCode(options.megahertz)}},
        Format("modulation frequency := % MHz") % options.megahertz);
    return Failure::None;
}

} // namespace

Verb addModfreqVerb(CLI::App& program) {
    auto options = std::make_shared<ModfreqOptions>();
    CLI::App* command =
        program.add_subcommand("modfreq", "Sets a camera's modulation frequency")->group("Verbs");
    command
        ->add_option("MHZ", options->megahertz, "An OV0570 knows 10, 12, 20, 30 and 40, a VC0258 10 and 30")
        ->required()
        ->check(CLI::Range(1U, 255U));
    addChipOptions(*command, *options);
    return {command, [options](Console& console) { return runModfreq(*options, console); }};
}

} // namespace Zentara::Tool
