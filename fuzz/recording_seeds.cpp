// Writes the first inputs of the recordings' fuzz target with the tool's own writer: recording_seeds DIRECTORY
#include <cstdint>
#include <string>
#include <vector>

#include "tools/zentara/streams/recording_writer.h"

namespace {

using namespace Zentara;
using namespace Zentara::Tool;

StreamDescription stream(NodeType type, const std::string& camera, std::array<std::int32_t, 4> mode) {
    StreamDescription made;
    made.node.nodeType = type;
    made.node.path = camera + "/" + nodeTypeName(type);
    made.node.parentPath = camera;
    made.node.name = "N";
    made.node.serialNumber = camera;
    made.mode.fields = mode;
    return made;
}

/// Each stream gets frames of so many bytes, by turns.
void write(const std::string& path, const std::vector<StreamDescription>& streams, unsigned rounds,
           std::size_t bytes) {
    RecordingWriter writer(path, streams);
    const std::vector<std::uint8_t> frame(bytes, 0x5A);
    for (unsigned round = 0; round < rounds; ++round) {
        for (std::uint16_t index = 0; index < streams.size(); ++index)
            writer.append(index, frame.data(), frame.size(), round * std::int64_t{16'667});
    }
    writer.commit();
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2)
        return 2;
    const std::string directory = std::string(argv[1]) + "/recording/";
    const StreamDescription depth = stream(NodeType_DEPTH, "A", {FrameFormat_QQVGA, 60, 1, 1});
    const StreamDescription color = stream(NodeType_COLOR, "A", {FrameFormat_HD1080, 30, 50, 0});
    const StreamDescription audio = stream(NodeType_AUDIO, "B", {2, 16, 48000, 0});
    write(directory + "depth", {depth}, 3, 12);
    write(directory + "sound", {audio}, 2, 16);
    write(directory + "three", {depth, color, audio}, 2, 8);
    write(directory + "no_frames", {color, audio}, 0, 0);
    write(directory + "empty_frames", {audio, color}, 2, 0);
    write(directory + "picture", {depth}, 1, 160 * 120 * 2);
    return 0;
}
