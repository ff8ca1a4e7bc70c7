#include <algorithm>
#include <memory>
#include <vector>

#include <CLI/CLI.hpp>

#include "tools/zentara/rom/rom_verbs.h"

namespace Zentara::Tool {
namespace {

constexpr const char* footer =
    R"(IMAGE is a file with the flash's bytes, or camera:NAME; without it the camera is meant.

Nothing is written before it was tried on a copy in memory and the copy was verified whole. A change
that the format would let damage something else is refused with exit code 8; --rebuild writes the whole
content into a freshly formatted image instead. The bytes of before are kept in a file next to the image,
or in this directory for a camera.)";

} // namespace

Verb addRomVerb(CLI::App& program) {
    CLI::App* command =
        program
            .add_subcommand("rom",
                            "Looks into a camera's flash storage, and changes it without losing any of it")
            ->group("Verbs");
    command->require_subcommand(1);
    command->footer(footer);
    const auto actions = std::make_shared<std::vector<Verb>>(std::vector<Verb>{
        addRomCreate(*command), addRomInfo(*command), addRomList(*command), addRomVerify(*command),
        addRomGet(*command), addRomSet(*command), addRomErase(*command), addRomExport(*command),
        addRomImport(*command), addRomDiff(*command), addRomBackup(*command), addRomRestore(*command),
        addRomSalvage(*command), addRomMap(*command), addRomDraw(*command)});
    return {command, [actions](Console& console) {
                const auto chosen = std::find_if(actions->begin(), actions->end(),
                                                 [](const Verb& action) { return action.command->parsed(); });
                return chosen->run(console);
            }};
}

} // namespace Zentara::Tool
