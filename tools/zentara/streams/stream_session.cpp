#include "tools/zentara/streams/stream_session.h"

#include <algorithm>
#include <cctype>

#include <zentara/compression_type.h>
#include <zentara/host/picture.h>
#include <zentara/utils/files.h>
#include <zentara/utils/format.h>

#include "tools/zentara/cameras/camera_session.h"
#include "tools/zentara/supervisor.h"

namespace Zentara::Tool {

using Utils::Format;
using State = StreamedCamera::State;

namespace {

constexpr unsigned long lookMilliseconds = 50;     ///< how late an absence, or Ctrl-C, is seen
constexpr std::uint64_t usualFrames = 60;          ///< where nobody says how many
constexpr std::uint64_t usualFramesPerSecond = 60; // where there are no frames
constexpr std::size_t queuedFrames =
    120; // of two seconds: while a disk, or the end of another camera, takes its time
constexpr Kind allKinds[]{Kind::Depth, Kind::Color, Kind::Audio};

std::string withSerialNumber(const std::string& path, const CameraInfo& camera) {
    std::string serial = camera.serial.empty() ? camera.path : camera.serial;
    std::replace_if(
        serial.begin(), serial.end(),
        [](unsigned char letter) { return std::isalnum(letter) == 0 && letter != '-' && letter != '_'; },
        '_');
    const std::string stem = Utils::removeExtension(path);
    return stem + "." + serial + path.substr(stem.size());
}

} // namespace

/// All cameras are opened and all files begun before the first frame: what is wrong with what was asked for is said
/// before anything is streamed, and no camera loses frames while another one is being opened.
void StreamSession::run() {
    const Rescue rescued([this] { rescue(); });
    openAll();
    checkKinds();
    startRecording();
    checkInterrupt();
    for (const auto& camera : cameras) {
        if (camera->state() == State::Streaming)
            camera->start();
    }
    supervise();
    finish();
}

void StreamSession::openAll() {
    if (!wishes.play.empty()) {
        const Recording recording(wishes.play);
        const auto chosen = wishes.cameras.empty() ? recording.cameras() : recording.choose(wishes.cameras);
        return openCameras(chosen, [&recording](const CameraInfo& who) { return recording.camera(who); });
    }
    bus.emplace(patiently(console));
    if (wishes.direct) {
        const Camera device = bus->openDevice({wishes.plugins, {}});
        return openCameras({device.info()}, [&device](const CameraInfo&) { return device; });
    }
    const std::vector<CameraInfo> chosen = bus->choose(wishes.cameras); // which says why there is none
    openCameras(wishes.all ? bus->list() : chosen, [this](const CameraInfo& who) { return bus->open(who); });
}

void StreamSession::openCameras(const std::vector<CameraInfo>& chosen, const Opener& open) {
    several = chosen.size() > 1;
    for (const CameraInfo& who : chosen)
        openCamera(who, open);
}

/// A camera that cannot be opened is a failure of its own when there are others.
void StreamSession::openCamera(const CameraInfo& who, const Opener& open) {
    checkInterrupt();
    StreamedCamera& camera =
        *cameras.emplace_back(std::make_unique<StreamedCamera>(who, !wishes.play.empty()));
    std::vector<Kind> wanted;
    for (const Kind kind : allKinds) {
        const bool isThere = std::find(who.kinds.begin(), who.kinds.end(), kind) != who.kinds.end();
        if (isThere && (wishes.wants(kind) || !wishes.play.empty()))
            wanted.push_back(kind);
        else if (!isThere && wishes.wants(kind) && wishes.play.empty())
            note(console, "camera " + who.shortLabel() + " has no " + kindName(kind) + " stream");
    }
    kinds.insert(wanted.begin(), wanted.end());
    // a cloud is of one camera: the streams of the next one begin another
    cloud.reset();
    try {
        if (wanted.empty())
            throw Failure(Failure::Failed, "the camera has no node of the kinds that are wanted");
        const Camera opened = open(who);
        camera.hold(opened);
        for (const Kind kind : wanted)
            addStream(camera, opened.stream(kind, howToStream(kind)));
    } catch (const Failure& failure) {
        if (!several)
            throw;
        camera.fail(failure);
    }
}

StreamOptions StreamSession::howToStream(Kind kind) const {
    const auto mode = wishes.modes.find(kind);
    return {.mode = mode == wishes.modes.end() ? std::string() : mode->second,
            .queue = queuedFrames,
            .awaitReturn = wishes.play.empty(),
            .started = false,
            .keepsAll = true,
            .shared = wishes.share};
}

/// There is as much sound as the camera's frames take time.
void StreamSession::addStream(StreamedCamera& camera, Stream opened) {
    std::uint64_t framesPerSecond = usualFramesPerSecond;
    for (const auto& task : camera.streams()) {
        if (task->info().mode.kind != Kind::Audio)
            framesPerSecond = std::max<std::uint64_t>(1, task->info().mode.rate);
    }
    std::uint64_t most = framesWanted();
    if (opened.info().mode.kind == Kind::Audio && most != 0)
        most = std::max<std::uint64_t>(1, most * opened.info().mode.rate / framesPerSecond);
    const CaptureRules rules{.most = most, .mayEnd = !wishes.play.empty(), .corrects = wishes.corrected};
    opened.wake(wake);
    addFiles(camera.add(std::move(opened), rules), most);
}

void StreamSession::addFiles(StreamTask& task, std::uint64_t most) {
    const StreamInfo& info = task.info();
    const auto add = [&](const char* word, const char* key, const std::string& path, const auto& make) {
        if (!path.empty())
            task.writeTo(word, key, make(fileFor(info.camera, path)));
    };
    const auto picture = [](const std::string& path) {
        return std::make_unique<LastFrameFile>(path,
                                               [](const Frame& frame) { return pictureOf(frame).png(); });
    };
    switch (info.mode.kind) {
    case Kind::Depth:
        add("picture", "png", wishes.png, picture);
        add("raw", "raw", wishes.raw,
            [](const std::string& path) { return std::make_unique<RawFile>(path); });
        if (wishes.wantsCloud())
            expectCloud(task);
        add("cloud", "ply", wishes.ply, [this](const std::string& path) {
            return std::make_unique<LastFrameFile>(path, [of = cloud](const Frame&) { return of->ply(); });
        });
        add("drawing", "cloudPng", wishes.cloudPng, [this](const std::string& path) {
            return std::make_unique<LastFrameFile>(path, [of = cloud](const Frame&) { return of->png(); });
        });
        break;
    case Kind::Color:
        if (!wishes.colorPng.empty() && info.mode.compression != CompressionType_NONE)
            throw Failure(Failure::Failed,
                          Format("no picture can be made of frames in mode %") % info.mode.name);
        add("picture", "png", wishes.colorPng, picture);
        if (cloud) {
            cloud->expectColor();
            task.makeCloud(cloud);
        }
        break;
    case Kind::Audio:
        add("wav", "wav", wishes.wav,
            [&](const std::string& path) { return std::make_unique<WavFile>(path, info.mode, most); });
        break;
    }
}

/// Known before a frame has come: without a lens none becomes a cloud.
void StreamSession::expectCloud(StreamTask& task) {
    if (!task.info().lens)
        throw Failure(Failure::Failed,
                      "cannot make a point cloud of " + task.info().camera.label(Kind::Depth),
                      "no lens model is known");
    cloud = std::make_shared<CloudMaker>();
    task.makeCloud(cloud);
}

/// With several cameras each has a file of its own: "depth.png" becomes "depth.SERIAL.png".
std::string StreamSession::fileFor(const CameraInfo& camera, const std::string& path) {
    const std::string file = several ? withSerialNumber(path, camera) : path;
    if (!places.insert(Utils::canonicalPath(file)).second)
        throw Failure(Failure::Failed, Format("two streams would be written into '%'") % file);
    return file;
}

/// A stream that was asked for, be it by a file, and that nobody has is a failure.
void StreamSession::checkKinds() const {
    for (const Kind kind : allKinds) {
        if ((kind == Kind::Depth ? wishes.wantsDepthFile() : wishes.wants(kind)) && kinds.count(kind) == 0)
            throw Failure(Failure::Failed, Format("there is no % stream") % kindName(kind));
    }
}

void StreamSession::checkInterrupt() const {
    if (interrupt.interrupted())
        throw Failure(Failure::Interrupted, "interrupted before anything was streamed");
}

void StreamSession::startRecording() {
    std::vector<StreamInfo> infos;
    for (const auto& camera : cameras) {
        for (const auto& task : camera->streams())
            infos.push_back(task->info());
    }
    if (wishes.record.empty() || infos.empty())
        return;
    recording = std::make_unique<Recorder>(wishes.record, infos);
    std::size_t number = 0;
    for (const auto& camera : cameras) {
        for (const auto& task : camera->streams())
            task->recordTo(recording.get(), number++);
    }
}

/// Returns when no camera streams and none that is away is waited for any longer, or Ctrl-C was pressed.
void StreamSession::supervise() {
    while (anythingToWaitFor() && !isStopped) {
        wake->timedWait(lookMilliseconds);
        showProgress(false);
        for (const auto& camera : cameras)
            look(*camera);
        isStopped = interrupt.interrupted();
    }
    showProgress(true);
}

/// Tells when a camera goes and when it is back.
void StreamSession::look(StreamedCamera& camera) {
    const State before = camera.state();
    camera.look();
    const char* lineStart = console.showProgress ? "\r\033[K" : "";
    if (camera.state() == State::Away && before != State::Away)
        tellLine(console.err << lineStart, camera.failure().what());
    else if (before == State::Away && camera.state() == State::Streaming)
        tellLine(console.err << lineStart, camera.streams().front()->stream().label() + " is back");
}

bool StreamSession::anythingToWaitFor() const {
    return std::any_of(cameras.begin(), cameras.end(), [this](const auto& camera) {
        return camera->state() == State::Streaming ||
               (camera->state() == State::Away && camera->awaySeconds() < wishes.waitSeconds);
    });
}

/// Ends the streams, and then the files. The recording stays when a camera has ended well, or when it was the disk
/// that failed: what is in it is whole. With nothing but failures it goes, and the first camera's is thrown; where
/// others ended well, failures are notes, and the exit code tells.
void StreamSession::finish() {
    for (const auto& camera : cameras) {
        camera->end();
        camera->finish();
    }
    const auto failed = [](const auto& camera) { return camera->state() == State::Failed; };
    const bool allFailed = std::all_of(cameras.begin(), cameras.end(), failed);
    const bool keep = std::any_of(cameras.begin(), cameras.end(), [&](const auto& camera) {
        return !failed(camera) || camera->isUnwritable();
    });
    if (recording && keep) {
        recording->commit();
        if (allFailed)
            note(console, "'" + recording->path() + "' is finished and holds " +
                              std::to_string(recording->frames()) + " frames");
    } else if (recording)
        recording->discard();
    for (const auto& camera : cameras) {
        if (failed(camera) && !(allFailed && camera == cameras.front()))
            note(console, camera->failure().what());
    }
    if (!allFailed)
        return;
    const Failure& failure = cameras.front()->failure();
    if (isStopped)
        throw Failure(Failure::Interrupted, std::string("interrupted; ") + failure.what());
    throw Failure(failure);
}

/// On another thread, while this session's own hangs in a device: what had come stays, as after Ctrl-C.
void StreamSession::rescue() {
    for (const auto& camera : cameras)
        camera->rescue();
    if (recording && recording->frames() != 0)
        recording->commit();
    else if (recording)
        recording->discard();
}

ExitCode StreamSession::result() const {
    if (isStopped)
        return Failure::Interrupted;
    for (const auto& camera : cameras) {
        if (camera->state() == State::Failed)
            return camera->failure().code();
    }
    return Failure::None;
}

bool StreamSession::isStuck() const {
    return std::any_of(cameras.begin(), cameras.end(), [](const auto& camera) { return camera->isStuck(); });
}

std::uint64_t StreamSession::progress() const {
    return cameras.empty() || cameras.front()->streams().empty()
               ? 0
               : cameras.front()->streams().front()->units();
}

std::uint64_t StreamSession::framesWanted() const {
    return wishes.frames == 0 && wishes.play.empty() ? usualFrames : wishes.frames;
}

void StreamSession::showProgress(bool last) {
    if (!console.showProgress || cameras.empty())
        return;
    console.err << '\r' << progress();
    if (framesWanted() != 0)
        console.err << " of " << framesWanted();
    console.err << " frames" << (last ? "\r\033[K" : "") << std::flush;
}

void StreamSession::print(std::ostream& out) const {
    for (const auto& camera : cameras)
        camera->print(out);
    if (recording)
        out << "record   " << printable(recording->path()) << '\n';
}

void StreamSession::close() {
    try {
        if (bus)
            bus->close();
    } catch (const Failure& failure) {
        note(console, failure.what());
    }
}

Json StreamSession::json() const {
    Json json = beginJson(console);
    json["proxified"] = !wishes.direct;
    json["interrupted"] = isStopped;
    json["streams"] = Json::array();
    for (const auto& camera : cameras)
        camera->fill(json["streams"]);
    if (recording)
        json["record"] = recording->path();
    return json;
}

} // namespace Zentara::Tool
