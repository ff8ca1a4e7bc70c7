#include "tools/zentara/pages/examples.h"

#include <CLI/CLI.hpp>

#include <zentara/utils/format.h>

namespace Zentara::Tool {
namespace {

/// Command lines that do what they say with the simulated cameras, too.
struct Example {
    const char* verb;
    const char* words; ///< after "zentara VERB "
    const char* what;
};

constexpr Example examples[] = {
    {"plugins", "--all", "why a plug-in is not found"},
    {"plugins", "--check my_camera.so", "how a plug-in of yours behaves"},
    {"devices", "--watch --seconds 1", "what comes and goes"},
    {"info", "--camera SIM0570", "its modes, versions and temperatures"},
    {"stream", "--frames 30 --png depth.png", "a picture of depth"},
    {"stream", "--frames 30 --color --ply cloud.ply", "a point cloud in colour"},
    {"stream", "--all --frames 30 --record all.ztrec", "everything into one file"},
    {"view", "--snapshot view.png --cloud", "what the window shows, without a window"},
    {"view", "--play all.ztrec --snapshot played.png", "of a recording"},
    {"params", "list --camera SIM0570", "names, values and ranges"},
    {"params", "set \"exposure time=0.5\" --camera SIM0570", "in the unit that 'params list' shows"},
    {"sensors", "--watch --seconds 1 --png warm.png", "temperatures, plotted"},
    {"calibration", "export camera.json --camera SIM0570", "to compare with another day's"},
    {"xu", "list", "what the extension unit can"},
    {"reg", "read tof 0x20-0x27 --camera VC0345", "eight registers"},
    {"reg", "watch tof 0x21 --seconds 1 --camera VC0345", "a line whenever it changes"},
    {"i2c", "scan --camera SIM0570", "which addresses answer"},
    {"firmware", "dump firmware.bin --camera SIM0570", "the controller's program"},
    {"meta", "1001 1 --camera VC0258 --trace", "a command of the controller, and its transfers"},
    {"modfreq", "30 --camera VC0258", "in MHz"},
    {"rom", "verify camera:SIM0570", "is the flash whole?"},
    {"rom", "export camera:SIM0570 > flash.json", "its content, to read and edit"},
    {"doctor", "", "what may keep a program from its cameras"},
    {"completion", "bash", "for ~/.local/share/bash-completion/completions/zentara"},
};

} // namespace

void addExamples(CLI::App& program) {
    for (CLI::App* verb : program.get_subcommands([](const CLI::App*) { return true; })) {
        std::string text;
        for (const Example& example : examples) {
            if (verb->get_name() == example.verb)
                text += Utils::Format("  zentara % %    # %\n") % example.verb % example.words % example.what;
        }
        if (!text.empty()) {
            text.pop_back();
            const std::string before = verb->get_footer();
            verb->footer((before.empty() ? "Examples:\n" : before + "\n\nExamples:\n") + text);
        }
    }
}

} // namespace Zentara::Tool
