#include "tools/viewer/view_wishes.h"

#include <CLI/CLI.hpp>

#include <zentara/utils/format.h>
#include <zentara/utils/text.h>

#include "tools/zentara/arguments.h"

namespace Zentara::Viewer {
namespace {

constexpr double mostMillimetres = 100'000;
constexpr double mostPixels = 16'384;
constexpr double longestTime = 86'400;

CLI::Validator numbersBetween(double least, double most) {
    return {[least, most](const std::string& text) -> std::string {
                double value = 0;
                // a NaN is in no range
                if (CLI::detail::lexical_cast(text, value) && value >= least && value <= most)
                    return {};
                return Utils::Format("'%' is no number from % to %") % text % least % most;
            },
            ""};
}

/// Two numbers with that letter between.
std::vector<double> numbersOf(const char* option, const std::string& text, char between, double least,
                              double most) {
    std::vector<double> numbers;
    for (const std::string& word : Utils::split(text, between)) {
        const std::string trouble = numbersBetween(least, most)(word);
        if (!trouble.empty())
            throw CLI::ValidationError(option, trouble);
        numbers.push_back(std::stod(word));
    }
    if (numbers.size() != 2)
        throw CLI::ValidationError(option,
                                   "'" + text + "' is not two numbers with '" + between + "' between");
    return numbers;
}

} // namespace

void addViewOptions(CLI::App& command, ViewWishes& wishes) {
    CLI::Option* cameras = Tool::addList(command, "--camera", wishes.cameras,
                                         "Which cameras, with commas between: a serial number, or a part of "
                                         "the name, the product's or the controller's; the first one unless "
                                         "given")
                               ->type_name("NAME");
    CLI::Option* all =
        command.add_flag("--all", wishes.all, "All cameras, also those that come later")->excludes(cameras);
    CLI::Option* mode =
        command
            .add_option("--mode", wishes.mode, "In which mode depth streams, as 'zentara info' lists them")
            ->type_name("MODE");
    CLI::Option* colorMode =
        command.add_option("--color-mode", wishes.colorMode, "The same of colour")->type_name("MODE");
    CLI::Option* share = command.add_flag("--share", wishes.share,
                                          "Share frames with other programs that say so, as 'zentara stream "
                                          "--share' does");
    command.add_option("--play", wishes.play, "Play a recording, in place of cameras")
        ->type_name("FILE")
        ->excludes(all)
        ->excludes(mode)
        ->excludes(colorMode)
        ->excludes(share);
    command.add_flag("--corrected", wishes.corrected,
                     "Show depth corrected for temperature, cyclic error and phase delay; recordings hold it "
                     "as it came");
    command.add_flag("--cloud", wishes.cloud, "Show the point cloud, too");
    command
        .add_option_function<std::string>(
            "--range",
            [&wishes](const std::string& text) {
                wishes.range = numbersOf("--range", text, ',', 0, mostMillimetres);
                if (wishes.range[0] >= wishes.range[1])
                    throw CLI::ValidationError("--range", "'" + text + "': what is near comes first");
            },
            "The depths that are red and blue, in millimetres: 200,5000 unless given")
        ->type_name("NEAR,FAR");
    command
        .add_option("--scale", wishes.scale,
                    "How large letters are, of their usual size: the desktop's unless given")
        ->type_name("FACTOR")
        ->check(numbersBetween(0.5, 8));
    command
        .add_option_function<std::string>(
            "--size",
            [&wishes](const std::string& text) {
                wishes.size = numbersOf("--size", text, 'x', 1, mostPixels);
            },
            "Of the window, in pixels")
        ->type_name("WIDTHxHEIGHT");
    command.add_flag("--no-panel", wishes.bare, "Begin without the panel at the side");
    command
        .add_option("--output", wishes.output,
                    "Where snapshots and recordings go: the current directory unless given")
        ->type_name("DIRECTORY");
    command
        .add_option("--snapshot", wishes.snapshot,
                    "Write what the window would show with its first pictures, and end: a picture, or the "
                    "point cloud where the name ends in .ply. Needs no display")
        ->type_name("FILE");
    command.add_option("--seconds", wishes.seconds, "Close the window after that time")
        ->type_name("SECONDS")
        ->check(numbersBetween(0.001, longestTime));
}

const char* viewFooter() noexcept {
    return "Depth and colour side by side: red is near, blue is far, black is no reading. Below the picture "
           "of depth\n"
           "stand its scale and, where the pointer is on it, the value there in millimetres with its "
           "confidence.\n"
           "The mouse turns the point cloud, its wheel comes nearer.\n"
           "\n"
           "Keys:\n"
           "  space  pause: the pictures stand, a recording goes on   a  range of the picture, or the fixed "
           "one\n"
           "  r      record what is shown, or end that                c  point cloud\n"
           "  s      snapshot: pictures (PNG) and cloud (PLY)         p  panel: cameras, range, parameters\n"
           "  tab    the next camera's values and parameters          0  the cloud as the camera sees it\n"
           "  home   play the recording again                         h  these keys\n"
           "  q      quit\n"
           "\n"
           "A camera that is pulled out goes on when it is back. What is recorded is written beside the "
           "drawing,\n"
           "which never holds it up.";
}

std::vector<std::string> wordsOf(const CLI::App& command) {
    std::vector<std::string> words;
    for (const CLI::Option* option : command.get_options()) {
        if (option->empty())
            continue;
        const char between = option->get_delimiter() == '\0' ? ',' : option->get_delimiter();
        std::string word = option->get_name();
        if (option->get_items_expected_max() > 0)
            word += "=" + CLI::detail::join(option->results(), std::string(1, between));
        words.push_back(std::move(word));
    }
    return words;
}

} // namespace Zentara::Viewer
