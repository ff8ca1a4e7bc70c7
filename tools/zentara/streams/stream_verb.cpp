#include <cctype>
#include <memory>
#include <set>
#include <string>

#include <CLI/CLI.hpp>

#include <zentara/utils/files.h>
#include <zentara/utils/format.h>
#include <zentara/utils/text.h>

#include "tools/zentara/arguments.h"
#include "tools/zentara/json_output.h"
#include "tools/zentara/streams/stream_session.h"
#include "tools/zentara/verb.h"
#include "utils/platform/program.h"

namespace Zentara::Tool {
namespace {

using Utils::Format;

constexpr std::uint64_t mostFrames = 100'000'000; // 19 days
constexpr double longestWait = 86'400;

/// Two files of one name would overwrite each other.
void checkPaths(const StreamWishes& wishes) {
    std::set<std::string> paths;
    for (const std::string* path : {&wishes.png, &wishes.raw, &wishes.ply, &wishes.cloudPng, &wishes.colorPng,
                                    &wishes.wav, &wishes.record, &wishes.play}) {
        if (!path->empty() && !paths.insert(Utils::canonicalPath(*path)).second)
            throw Failure(Failure::Usage, Format("'%' is named for two files") % *path);
    }
}

/// Each word is a mode's name, which says by its beginning for which kind it is, or one size for depth and colour alike.
/// For a kind that has both the name counts.
void readModes(const std::vector<std::string>& words, StreamWishes& wishes) {
    std::string size;
    for (const std::string& given : words) {
        const std::string word = Utils::toLower(given);
        const bool isSize = std::isdigit(static_cast<unsigned char>(word.front())) != 0;
        const Kind kind = word.rfind("co", 0) == 0   ? Kind::Color
                          : word.rfind("au", 0) == 0 ? Kind::Audio
                                                     : Kind::Depth;
        std::string& wish = isSize ? size : wishes.modes[kind];
        if (!wish.empty())
            throw Failure(Failure::Usage, Format("--mode: % and % are for the same streams") % wish % word);
        wish = word;
    }
    for (const auto& [kind, word] : wishes.modes) {
        if (!wishes.wants(kind))
            throw Failure(Failure::Usage, Format("--mode names one for %, which is not streamed: say --%") %
                                              kindName(kind) % kindName(kind));
    }
    if (!size.empty()) {
        wishes.modes.try_emplace(Kind::Depth, size);
        wishes.modes.try_emplace(Kind::Color, size);
    }
}

/// Ends the process where it stands: a thread that sits inside a device could not be ended otherwise.
[[noreturn]] void endProcess(Console& console, ExitCode code) {
    console.out.flush();
    console.err.flush();
    Utils::Platform::endProcess(code);
}

ExitCode runStream(StreamWishes wishes, const std::vector<std::string>& modes, Console& console) {
    checkPaths(wishes);
    wishes.color = wishes.color || !wishes.colorPng.empty();
    wishes.audio = wishes.audio || !wishes.wav.empty();
    readModes(modes, wishes);
    StreamSession session(wishes, console);
    try {
        session.run();
    } catch (const Failure& failure) {
        if (!session.isStuck())
            throw;
        tellFailure(console, failure);
        endProcess(console, failure.code());
    }
    if (wishes.json)
        print(console.out, session.json());
    else
        session.print(console.out);
    if (session.isStuck())
        endProcess(console, session.result());
    session.close();
    if (session.result() == Failure::Interrupted)
        note(console, "interrupted after " + std::to_string(session.progress()) + " frames");
    return session.result();
}

} // namespace

Verb addStreamVerb(CLI::App& program) {
    auto options = std::make_shared<StreamWishes>();
    auto modes = std::make_shared<std::vector<std::string>>();
    CLI::App* command =
        program.add_subcommand("stream", "Streams depth, colour and sound from one camera or several")
            ->group("Verbs");
    command->footer(
        "Prints, for each stream, frame rate, dropped frames and the range of depths. In the picture red is\n"
        "near, blue is far and black is no depth. Raw frames are written as they came: for each, 16-bit "
        "depth\n"
        "in millimetres, then whatever the camera adds. With several cameras each has files of its own, its\n"
        "serial number put before the ending: depth.SERIAL.png.\n"
        "\n"
        "A camera that fails does not stop the others. One that is pulled out goes on when it is back while\n"
        "others stream, or within --wait. Ctrl-C ends the streams; the files then hold what had come.\n"
        "A file that is there already is replaced.");
    command
        ->add_option("--frames", options->frames,
                     "How many frames to take: 60 unless given, of a recording all")
        ->type_name("N")
        ->check(CLI::Range(std::uint64_t{1}, mostFrames).description(""));
    CLI::Option* cameras = addList(*command, "--camera", options->cameras,
                                   "Which cameras, with commas between: a serial number, or a part of "
                                   "the name, the product's or the controller's; the first one unless "
                                   "given")
                               ->type_name("NAME");
    CLI::Option* all = command->add_flag("--all", options->all, "All cameras")->excludes(cameras);
    CLI::Option* color = command->add_flag("--color", options->color, "Also stream colour");
    CLI::Option* audio =
        command->add_flag("--audio", options->audio, "Also stream sound, as long as the frames last");
    CLI::Option* mode =
        addList(*command, "--mode", *modes,
                "In which mode: WIDTHxHEIGHT, WIDTHxHEIGHT@RATE or a name that 'zentara info' lists; "
                "with commas one for depth, one for colour, one for sound. A node's first one unless "
                "given")
            ->type_name("MODE");
    command->add_flag(
        "--corrected", options->corrected,
        "Correct depth for temperature, cyclic error and phase delay, in all but --raw and --record, "
        "which hold the frames as they came");
    const auto addFile = [command](const char* name, std::string& path, const char* what) {
        return command->add_option(name, path, what)->type_name("FILE");
    };
    addFile("--png", options->png, "Write the last depth frame as a picture in colours");
    addFile("--raw", options->raw, "Write all depth frames as they came");
    addFile("--ply", options->ply,
            "Write the last depth frame as a point cloud in metres, x right, y down, z forward; with colour, "
            "where a frame of it was taken at the same time");
    addFile("--cloud-png", options->cloudPng, "Draw that cloud, seen from the right and above");
    CLI::Option* colorPng =
        addFile("--color-png", options->colorPng, "Write the last colour frame; implies --color");
    addFile("--wav", options->wav, "Write the sound; implies --audio");
    addFile("--record", options->record, "Record all streams into one file");
    CLI::Option* play =
        addFile("--play", options->play, "Stream from a recording, at its own pace, in place of cameras")
            ->excludes(all)
            ->excludes(color)
            ->excludes(audio)
            ->excludes(mode);
    command
        ->add_option("--wait", options->waitSeconds,
                     "Wait so long for a camera that was pulled out, also when no other one streams")
        ->type_name("SECONDS")
        ->check(secondsBetween(0.0, longestWait))
        ->excludes(play);
    CLI::Option* share = command
                             ->add_flag("--share", options->share,
                                        "Share frames with other programs that say so: the first one has the "
                                        "camera, the others read its frames in the same mode")
                             ->excludes(play);
    CLI::Option* direct =
        command
            ->add_flag(
                "--direct", options->direct,
                "Stream from the bare device plug-ins: without descriptions, nodes and the worker thread, "
                "for a plug-in that has no camera around it yet")
            ->excludes(cameras)
            ->excludes(all)
            ->excludes(color)
            ->excludes(colorPng)
            ->excludes(mode)
            ->excludes(share)
            ->excludes(play);
    addPluginName(*command, options->plugins)->needs(direct);
    command->add_flag("--json", options->json, "Print JSON");
    return {command, [options, modes](Console& console) { return runStream(*options, *modes, console); }};
}

} // namespace Zentara::Tool
