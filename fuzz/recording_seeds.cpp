// Writes the first inputs of the recordings' fuzz target with the library's own writer: recording_seeds DIRECTORY
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <zentara/host/recording.h>

namespace {

using namespace Zentara::Host;

StreamInfo stream(Kind kind, const std::string& camera, std::uint32_t width, std::uint32_t height) {
    StreamInfo info;
    info.camera.serial = info.camera.path = camera;
    info.camera.name = "N";
    info.camera.kinds = {kind};
    info.mode.kind = kind;
    info.mode.name = "M";
    info.mode.width = width;
    info.mode.height = height;
    info.mode.rate = kind == Kind::Audio ? 48000 : 60;
    info.mode.channels = kind == Kind::Audio ? 2 : 0;
    info.mode.bitsPerSample = kind == Kind::Audio ? 16 : 0;
    return info;
}

/// With everything that a depth stream may have.
StreamInfo measuring() {
    StreamInfo info = stream(Kind::Depth, "A", 4, 2);
    info.depthAlong = DepthAlong::Ray;
    info.millimetresPerPhaseStep = 0.1F;
    info.lens = {4, 2, 3, 3, 1.5F, 0.5F, -0.1F, 0.01F, 0, 0.001F, 0.001F};
    info.pose = {1, 0, 0, 0, 1, 0, 0, 0, 1, 25, 0, 0};
    for (ModeCorrections& mode : info.corrections.modes) {
        mode.temperature = ModeCorrections::Temperature::Linear;
        mode.temperatureParameters = {0.5F};
        mode.temperatureSensors = {0};
        mode.calibratedAt.values = {{0, 25}};
        mode.cyclicAlgorithm = 1;
        mode.cyclicParameters = {1, 2, 3};
    }
    info.corrections.phaseDelay = 5;
    info.lensSource = info.poseSource = info.correctionsSource = Source::Camera;
    return info;
}

/// Each stream gets frames of so many bytes, by turns.
void write(const std::string& path, const std::vector<StreamInfo>& streams, unsigned rounds,
           std::size_t bytes) {
    Recorder recorder(path, streams);
    const std::vector<std::byte> content(bytes, std::byte{0x5A});
    for (unsigned round = 0; round < rounds; ++round) {
        for (std::size_t index = 0; index < streams.size(); ++index)
            recorder.add(index, Frame(std::make_shared<StreamInfo>(streams[index]), content, 0,
                                      round * std::int64_t{16'667}));
    }
    recorder.commit();
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2)
        return 2;
    const std::string directory = std::string(argv[1]) + "/recording/";
    const StreamInfo depth = stream(Kind::Depth, "A", 160, 120);
    const StreamInfo color = stream(Kind::Color, "A", 4, 2);
    const StreamInfo audio = stream(Kind::Audio, "B", 0, 0);
    write(directory + "described", {measuring()}, 2, 48);
    write(directory + "short_frames", {depth}, 3, 12);
    write(directory + "two", {color, audio}, 2, 16);
    write(directory + "no_frames_2", {color, audio}, 0, 0);
    write(directory + "empty_frames_2", {audio, color}, 2, 0);
    return 0;
}
