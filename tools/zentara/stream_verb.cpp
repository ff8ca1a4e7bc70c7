#include <iomanip>
#include <memory>
#include <set>
#include <string>

#include <zentara/utils/format.h>

#include "tools/zentara/json_output.h"
#include "tools/zentara/stream_session.h"
#include "tools/zentara/verb.h"

namespace Zentara::Tool {
namespace {

using Utils::Format;

constexpr std::uint64_t mostFrames = 100'000'000; // 19 days

/// Two files of one name would overwrite each other.
void checkPaths(const StreamOptions& options) {
    std::set<std::string> paths;
    for (const std::string* path : {&options.png, &options.raw, &options.wav}) {
        if (!path->empty() && !paths.insert(*path).second)
            throw ToolFailure(ExitCode_USAGE, Format("'%' is named for two files") % *path);
    }
}

std::string fixed(double value, int digits) {
    std::ostringstream text;
    text << std::fixed << std::setprecision(digits) << value;
    return text.str();
}

const char* modeText(const StreamOptions& options) { return options.direct ? "direct" : "proxified"; }

void printText(std::ostream& out, const StreamOptions& options, const StreamSession& session) {
    const DepthRecorder& depth = session.depth();
    out << "device   " << session.videoName() << ", " << modeText(options) << '\n';
    out << "frames   " << depth.frames() << " of " << options.frames << ", " << depth.dropped()
        << " dropped, " << fixed(depth.rate(), 1) << " frames/s\n";
    if (session.hasPicture())
        out << "depth    " << depth.range().nearest << " to " << depth.range().farthest << " mm, "
            << fixed(100.0 * depth.blind(), 1) << " % of the pixels without\n";
    if (const AudioRecorder* audio = session.audio())
        out << "sound    " << session.audioName() << ", " << audio->samples() << " samples of "
            << audio->channels() << " channels at " << audio->sampleRate() << " Hz\n";
    if (!options.png.empty() && session.hasPicture())
        out << "picture  " << options.png << '\n';
    if (!options.raw.empty())
        out << "raw      " << options.raw << '\n';
    if (!options.wav.empty())
        out << "wav      " << options.wav << '\n';
}

Json filesOf(const StreamOptions& options, const StreamSession& session) {
    Json files = Json::object();
    if (!options.png.empty() && session.hasPicture())
        files["png"] = options.png;
    if (!options.raw.empty())
        files["raw"] = options.raw;
    if (!options.wav.empty())
        files["wav"] = options.wav;
    return files;
}

void printJson(std::ostream& out, const StreamOptions& options, const StreamSession& session) {
    const DepthRecorder& depth = session.depth();
    Json json = beginJson("stream");
    json["device"] = session.videoName();
    json["proxified"] = !options.direct;
    json["interrupted"] = session.interrupted();
    json["frames"] = {{"wanted", options.frames}, {"received", depth.frames()}, {"dropped", depth.dropped()}};
    json["seconds"] = depth.seconds();
    json["framesPerSecond"] = depth.rate();
    json["depth"] = {{"nearestMillimetres", depth.range().nearest},
                     {"farthestMillimetres", depth.range().farthest},
                     {"withoutDepth", depth.blind()}};
    if (const AudioRecorder* audio = session.audio())
        json["audio"] = {{"device", session.audioName()},
                         {"samples", audio->samples()},
                         {"sampleRate", audio->sampleRate()},
                         {"channels", audio->channels()}};
    json["files"] = filesOf(options, session);
    print(out, json);
}

ExitCode runStream(const StreamOptions& options, Console& console) {
    checkPaths(options);
    StreamSession session(options, console);
    session.run();
    if (options.json)
        printJson(console.out, options, session);
    else
        printText(console.out, options, session);
    if (!session.interrupted())
        return ExitCode_DONE;
    console.err << "zentara stream: interrupted after " << session.depth().frames() << " of "
                << options.frames << " frames\n";
    return ExitCode_INTERRUPTED;
}

} // namespace

Verb addStreamVerb(CLI::App& program) {
    auto options = std::make_shared<StreamOptions>();
    CLI::App* command =
        program.add_subcommand("stream", "Streams depth from a camera, and sound if a WAV is wanted")
            ->group("Verbs");
    command->footer(
        "Prints frame rate, dropped frames and the range of depths. In the picture red is near, blue is far\n"
        "and black is no depth. Raw frames are written as they came: for each, 320 x 240 16-bit values of\n"
        "depth in millimetres, then as many of confidence. Ctrl-C ends the stream; the files then hold what\n"
        "had come.");
    command->add_option("--frames", options->frames, "How many frames to take")
        ->type_name("N")
        ->capture_default_str()
        ->check(CLI::Range(std::uint64_t{1}, mostFrames).description(""));
    command->add_option("--png", options->png, "Write the last frame as a picture in colours")
        ->type_name("FILE");
    command->add_option("--raw", options->raw, "Write all frames as they came")->type_name("FILE");
    command->add_option("--wav", options->wav, "Also take sound, as long as the frames last, and write it")
        ->type_name("FILE");
    command->add_flag("--direct", options->direct,
                      "Call the device directly instead of through the worker thread");
    command->add_flag("--json", options->json, "Print JSON");
    return {command, [options](Console& console) { return runStream(*options, console); }};
}

} // namespace Zentara::Tool
