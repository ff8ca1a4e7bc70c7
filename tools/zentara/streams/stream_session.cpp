#include "tools/zentara/streams/stream_session.h"
#include "host/cameras/camera_choice.h"
#include "tools/zentara/cameras/camera_json.h"

#include <algorithm>
#include <cctype>
#include <set>

#include <zentara/host/cameras.h>
#include <zentara/host/recording.h>
#include <zentara/utils/files.h>
#include <zentara/utils/format.h>
#include <zentara/utils/signal.h>

#include "tools/zentara/interrupt.h"
#include "tools/zentara/streams/audio_recorder.h"
#include "tools/zentara/streams/color_recorder.h"
#include "tools/zentara/streams/depth_recorder.h"
#include "tools/zentara/streams/device_source.h"
#include "tools/zentara/streams/node_source.h"
#include "tools/zentara/streams/played_source.h"
#include "tools/zentara/supervisor.h"
#include "utils/visible_text.h"

namespace Zentara::Tool {

using Utils::Format;
using State = StreamedCamera::State;

namespace {

constexpr unsigned long lookMilliseconds = 50;
constexpr std::uint64_t usualFrames = 60;
constexpr int usualFramesPerSecond = 60; // where there are no frames

/// The cameras of a recording.
std::vector<CameraEntry> camerasOf(const std::vector<StreamDescription>& streams) {
    std::vector<CameraEntry> cameras;
    for (const StreamDescription& stream : streams) {
        const auto known = std::find_if(cameras.begin(), cameras.end(), [&](const CameraEntry& camera) {
            return camera.path == stream.node.parentPath;
        });
        CameraEntry& camera = known == cameras.end() ? cameras.emplace_back() : *known;
        camera.path = stream.node.parentPath;
        camera.nodes.push_back(stream.node);
    }
    return cameras;
}

std::string withSerialNumber(const std::string& path, const NodeEvent& node) {
    std::string serial = node.serialNumber.empty() ? node.parentPath : node.serialNumber;
    std::replace_if(
        serial.begin(), serial.end(),
        [](unsigned char letter) { return std::isalnum(letter) == 0 && letter != '-' && letter != '_'; },
        '_');
    const std::string stem = Utils::removeExtension(path);
    return stem + "." + serial + path.substr(stem.size());
}

} // namespace

/// In an order that takes them apart safely: cameras write into the recording and set the signal.
struct StreamSession::Parts {
    InterruptWatch interrupt; ///< to the end, so that no part of a file is left behind
    Utils::Threading::Signal wake;
    std::unique_ptr<CameraBus> bus; ///< null unless the cameras come through nodes
    std::unique_ptr<Recorder> recording;
    std::vector<StreamInfo> known; ///< what belongs to the streams that there can be, where it was asked for
    std::vector<StreamInfo> streams; ///< of all cameras, in order
    std::set<NodeType> kinds;        ///< of all nodes that were to be opened
    std::set<std::string> files;
    std::vector<std::unique_ptr<StreamedCamera>> cameras;
};

StreamSession::StreamSession(const StreamOptions& wanted, Console& target)
    : options(wanted), console(target), parts(std::make_unique<Parts>()) {}

StreamSession::~StreamSession() = default;

void StreamSession::run() {
    const Rescue rescued([this] { rescue(); });
    if (!options.play.empty())
        openRecording();
    else if (options.direct)
        openDevices();
    else
        openCameras();
    checkKinds();
    startRecording();
    checkInterrupt();
    for (const auto& camera : parts->cameras) {
        if (camera->state() == State::Streaming)
            camera->start();
    }
    supervise();
    finish();
}

void StreamSession::openDevices() {
    std::vector<NodeEvent> nodes(options.audio ? 2 : 1);
    nodes.front().nodeType = NodeType_DEPTH;
    if (options.audio)
        nodes.back().nodeType = NodeType_AUDIO;
    openCamera(
        {{}, nodes, {}, {}, {}},
        [this](const NodeEvent& node) {
            return openDeviceStream(node.nodeType, options.plugins, notesTo(console.err));
        },
        false);
}

void StreamSession::openRecording() {
    std::vector<StreamDescription> streams;
    const Recording recording(options.play);
    parts->known = recording.streams();
    for (const StreamInfo& info : parts->known) {
        streams.push_back(playedStream(info));
        streams.back().node.nodeIndex = static_cast<std::uint32_t>(streams.size() - 1); // tells them apart
    }
    const auto open = [this](const NodeEvent& node) {
        return std::make_unique<PlayedSource>(options.play, node.nodeIndex);
    };
    std::vector<CameraEntry> cameras = camerasOf(streams);
    if (!options.cameras.empty())
        cameras = chooseCameras(cameras, options.cameras);
    several = cameras.size() > 1;
    for (const CameraEntry& camera : cameras)
        openCamera(camera, open, true);
}

void StreamSession::openCameras() {
    parts->bus = std::make_unique<CameraBus>(notesTo(console.err));
    std::vector<CameraEntry> cameras = parts->bus->someCameras();
    if (!options.all)
        cameras = chooseCameras(cameras, options.cameras);
    several = cameras.size() > 1;
    for (const CameraEntry& camera : cameras) {
        CameraEntry wanted = camera;
        wanted.nodes.clear();
        for (const NodeType type : {NodeType_DEPTH, NodeType_COLOR, NodeType_AUDIO}) {
            if (wants(type) && camera.find(type) == nullptr)
                missKind(type, camera);
        }
        std::copy_if(camera.nodes.begin(), camera.nodes.end(), std::back_inserter(wanted.nodes),
                     [this](const NodeEvent& node) { return wants(node.nodeType); });
        openCamera(
            wanted,
            [this](const NodeEvent& node) {
                return openNodeStream(node, options.modes, notesTo(console.err));
            },
            false);
    }
    parts->bus->watch();
}

void StreamSession::missKind(NodeType type, const CameraEntry& camera) const {
    note(console, "camera " + camera.serialNumber() + " has no " + nodeTypeName(type) + " stream");
}

/// A stream that was asked for, be it by a file, and that nobody has is a failure.
void StreamSession::checkKinds() const {
    const bool depthFile =
        !options.png.empty() || !options.raw.empty() || !options.ply.empty() || !options.cloudPng.empty();
    for (const NodeType type : {NodeType_DEPTH, NodeType_COLOR, NodeType_AUDIO}) {
        const bool wanted = type == NodeType_DEPTH ? depthFile : wants(type);
        if (wanted && parts->kinds.count(type) == 0)
            throw Failure(Failure::Failed, Format("there is no % stream") % nodeTypeName(type));
    }
}

void StreamSession::checkInterrupt() const {
    if (parts->interrupt.interrupted())
        throw Failure(Failure::Interrupted, "interrupted before anything was streamed");
}

bool StreamSession::wants(NodeType type) const {
    return type == NodeType_DEPTH || (type == NodeType_COLOR && options.color) ||
           (type == NodeType_AUDIO && options.audio);
}

/// A camera that cannot be opened is a failure of its own when there are others.
void StreamSession::openCamera(const CameraEntry& entry, const StreamedCamera::Open& open, bool finite) {
    checkInterrupt();
    for (const NodeEvent& node : entry.nodes)
        parts->kinds.insert(node.nodeType);
    auto& camera = *parts->cameras.emplace_back(
        std::make_unique<StreamedCamera>(cameraJson(entry), open, parts->wake, finite));
    try {
        if (parts->bus)
            askForInfos(entry);
        openStreams(camera, entry.nodes);
    } catch (const Failure& failure) {
        if (!several)
            throw;
        camera.fail(failure);
    }
}

void StreamSession::openStreams(StreamedCamera& camera, const std::vector<NodeEvent>& nodes) {
    if (nodes.empty())
        throw Failure(Failure::Failed, "the camera has no node of the kinds that are wanted");
    const auto first = static_cast<std::uint16_t>(parts->streams.size());
    int framesPerSecond = usualFramesPerSecond;
    for (const NodeEvent& node : nodes) {
        const StreamDescription stream = camera.open(node);
        if (stream.node.nodeType != NodeType_AUDIO)
            framesPerSecond = stream.rate();
        parts->streams.push_back(infoOf(stream));
        camera.deliverTo(makeSink(stream, parts->streams.back(), framesPerSecond));
    }
    camera.record(nullptr, first);
}

std::uint64_t StreamSession::framesWanted() const {
    return options.frames == 0 && options.play.empty() ? usualFrames : options.frames;
}

/// As much sound as the camera's frames take time; 0, as of frames, for all there is.
std::uint64_t StreamSession::samplesWanted(int samplesPerSecond, int framesPerSecond) const {
    const std::uint64_t samples = framesWanted() * static_cast<std::uint64_t>(samplesPerSecond) /
                                  static_cast<std::uint64_t>(framesPerSecond);
    return framesWanted() == 0 ? 0 : std::max<std::uint64_t>(samples, 1);
}

/// Before its nodes are opened, so that the camera has one owner at a time.
void StreamSession::askForInfos(const CameraEntry& entry) {
    if (options.ply.empty() && options.cloudPng.empty() && options.record.empty())
        return;
    CameraInfo identity;
    identity.path = entry.path;
    Cameras cameras;
    const Camera camera = cameras.open(identity);
    for (const Kind kind : {Kind::Depth, Kind::Color, Kind::Audio}) {
        if (!wants(nodeTypeOf(kind)))
            continue;
        for (const Mode& mode : camera.modes(kind))
            parts->known.push_back(camera.streamInfo(kind, mode.name));
    }
    camera.close();
}

StreamInfo StreamSession::infoOf(const StreamDescription& stream) const {
    if (!options.play.empty())
        return parts->known.at(stream.node.nodeIndex);
    const StreamInfo plain = recordedStream(stream);
    const auto found = std::find_if(parts->known.begin(), parts->known.end(), [&](const StreamInfo& info) {
        return info.camera.path == plain.camera.path && info.mode.name == plain.mode.name;
    });
    return found == parts->known.end() ? plain : *found;
}

std::unique_ptr<StreamSink> StreamSession::makeSink(const StreamDescription& stream, const StreamInfo& info,
                                                    int framesPerSecond) {
    switch (stream.node.nodeType) {
    case NodeType_DEPTH:
        return std::make_unique<DepthRecorder>(
            stream, info, framesWanted(),
            DepthFiles{fileFor(stream, options.png), fileFor(stream, options.raw),
                       fileFor(stream, options.ply), fileFor(stream, options.cloudPng)});
    case NodeType_COLOR:
        return std::make_unique<ColorRecorder>(stream, framesWanted(), fileFor(stream, options.colorPng));
    default:
        return std::make_unique<AudioRecorder>(stream, samplesWanted(stream.rate(), framesPerSecond),
                                               fileFor(stream, options.wav));
    }
}

/// With several cameras each has a file of its own: "depth.png" becomes "depth.SERIAL.png".
std::string StreamSession::fileFor(const StreamDescription& stream, const std::string& path) {
    if (path.empty())
        return path;
    const std::string file = several ? withSerialNumber(path, stream.node) : path;
    if (!parts->files.insert(Utils::canonicalPath(file)).second)
        throw Failure(Failure::Failed, Format("two streams would be written into '%'") % file);
    return file;
}

void StreamSession::startRecording() {
    if (options.record.empty() || parts->streams.empty())
        return;
    parts->recording = std::make_unique<Recorder>(options.record, parts->streams);
    std::size_t first = 0;
    for (const auto& camera : parts->cameras) {
        camera->record(parts->recording.get(), static_cast<std::uint16_t>(first));
        first += camera->size();
    }
}

/// Returns when no camera streams and none that is away is waited for any longer, or Ctrl-C was pressed.
void StreamSession::supervise() {
    while (anythingToWaitFor()) {
        parts->wake.timedWait(lookMilliseconds);
        showProgress(false);
        seeToEvents();
        for (const auto& camera : parts->cameras)
            observe(*camera, [&camera] { camera->look(); });
        stopped = parts->interrupt.interrupted();
        if (stopped)
            break;
    }
    showProgress(true);
}

void StreamSession::seeToEvents() {
    ExternalEvent event;
    while (parts->bus && parts->bus->next(event, 0)) {
        for (const auto& camera : parts->cameras) {
            observe(*camera, [&] {
                if (event.type == ExternalEventType_NODE_REMOVED)
                    camera->removed(event.node);
                else if (event.type == ExternalEventType_NODE_ARRIVED)
                    camera->arrived(event.node);
            });
        }
    }
}

/// Tells when a camera goes and when it is back.
void StreamSession::observe(const StreamedCamera& camera, const std::function<void()>& step) {
    const State before = camera.state();
    step();
    if (camera.state() == before)
        return;
    const char* lineStart = console.showProgress ? "\r\033[K" : "";
    if (camera.state() == State::Unplugged)
        tellLine(console.err << lineStart, camera.failure().what());
    else if (before == State::Unplugged && camera.state() == State::Streaming)
        tellLine(console.err << lineStart, camera.label() + " is back");
}

bool StreamSession::anythingToWaitFor() const {
    return std::any_of(parts->cameras.begin(), parts->cameras.end(), [this](const auto& camera) {
        return camera->state() == State::Streaming ||
               (camera->state() == State::Unplugged && camera->awaySeconds() < options.waitSeconds);
    });
}

void StreamSession::finish() {
    for (const auto& camera : parts->cameras) {
        camera->interrupt();
        camera->finish();
    }
    const auto failed = [](const auto& camera) { return camera->state() == State::Failed; };
    const bool allFailed = std::all_of(parts->cameras.begin(), parts->cameras.end(), failed);
    const bool keep = std::any_of(parts->cameras.begin(), parts->cameras.end(), [&](const auto& camera) {
        return !failed(camera) || camera->unwritable();
    });
    if (parts->recording && keep) {
        parts->recording->commit();
        if (allFailed)
            note(console, "'" + parts->recording->path() + "' is finished and holds " +
                              std::to_string(parts->recording->frames()) + " frames");
    } else if (parts->recording)
        parts->recording->discard();
    for (const auto& camera : parts->cameras) {
        if (failed(camera) && !(allFailed && camera == parts->cameras.front()))
            note(console, camera->failure().what());
    }
    if (!allFailed)
        return;
    const Failure& failure = parts->cameras.front()->failure();
    throw Failure(stopped ? Failure::Interrupted : failure.code(),
                  stopped ? std::string("interrupted; ") + failure.what() : failure.what());
}

/// On another thread, while this session's own hangs in a device: what had come stays, as after Ctrl-C.
void StreamSession::rescue() {
    std::uint64_t units = 0;
    for (const auto& camera : parts->cameras)
        units += camera->progress();
    for (const auto& camera : parts->cameras)
        camera->rescue();
    if (parts->recording && units != 0)
        parts->recording->commit();
    else if (parts->recording)
        parts->recording->discard();
}

ExitCode StreamSession::result() const {
    if (stopped)
        return Failure::Interrupted;
    for (const auto& camera : parts->cameras) {
        if (camera->state() == State::Failed)
            return camera->failure().code();
    }
    return Failure::None;
}

bool StreamSession::stuck() const {
    return std::any_of(parts->cameras.begin(), parts->cameras.end(),
                       [](const auto& camera) { return camera->stuck(); });
}

std::uint64_t StreamSession::progress() const {
    return parts->cameras.empty() ? 0 : parts->cameras.front()->progress();
}

void StreamSession::showProgress(bool last) {
    if (!console.showProgress || parts->cameras.empty())
        return;
    console.err << '\r' << progress();
    if (framesWanted() != 0)
        console.err << " of " << framesWanted();
    console.err << " frames" << (last ? "\r\033[K" : "") << std::flush;
}

void StreamSession::print(std::ostream& out) const {
    for (const auto& camera : parts->cameras)
        camera->print(out);
    if (parts->recording)
        out << "record   " << Utils::visibleText(parts->recording->path()) << '\n';
}

Json StreamSession::json() const {
    Json json = beginJson(console);
    json["proxified"] = !options.direct;
    json["interrupted"] = stopped;
    json["streams"] = Json::array();
    for (const auto& camera : parts->cameras)
        camera->fill(json["streams"]);
    if (parts->recording)
        json["record"] = parts->recording->path();
    return json;
}

} // namespace Zentara::Tool
