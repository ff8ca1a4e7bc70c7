// A recording of any bytes. Whatever they are, the reader ends them or fails with a message, and whoever takes their
// frames copes with what they say of themselves. A stream that is read alone gives the frames that it has among all.
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "tools/zentara/exit_code.h"
#include "tools/zentara/streams/audio_recorder.h"
#include "tools/zentara/streams/color_recorder.h"
#include "tools/zentara/streams/depth_recorder.h"
#include "tools/zentara/streams/recording_reader.h"

namespace {

using namespace Zentara;
using namespace Zentara::Tool;

void expect(bool holds) {
    if (!holds)
        std::abort();
}

struct Content {
    std::vector<RecordedFrame> frames;
    bool whole = false;
};

std::unique_ptr<RecordingReader> open(const std::string& bytes) {
    try {
        return std::make_unique<RecordingReader>(std::make_unique<std::istringstream>(bytes), "input");
    } catch (const Failure& failure) {
        expect(std::string(failure.what()).find("input") != std::string::npos);
        return nullptr;
    }
}

Content readAll(RecordingReader& reader, std::size_t most) {
    Content content;
    try {
        RecordedFrame frame;
        while (reader.next(frame)) {
            expect(frame.stream < reader.streams().size() && frame.bytes.size() <= most);
            content.frames.push_back(frame);
        }
        content.whole = true;
    } catch (const Failure& failure) {
        expect(std::string(failure.what()).find("byte ") != std::string::npos);
    }
    return content;
}

std::unique_ptr<StreamSink> sinkFor(const StreamDescription& stream) {
    switch (stream.node.nodeType) {
    case NodeType_DEPTH:
        return std::make_unique<DepthRecorder>(stream, 0, "", "");
    case NodeType_COLOR:
        return std::make_unique<ColorRecorder>(stream, 0, "");
    default:
        return std::make_unique<AudioRecorder>(stream, 0, "");
    }
}

void deliver(const StreamDescription& stream, std::uint16_t index, const Content& content) {
    expect(!stream.modeName().empty() && !stream.modeSize().empty());
    try {
        const std::unique_ptr<StreamSink> sink = sinkFor(stream);
        for (const RecordedFrame& frame : content.frames) {
            if (frame.stream == index)
                sink->take(frame.bytes.data(), frame.bytes.size(), frame.micros);
        }
        std::ostringstream text;
        sink->print(text);
        Json json;
        sink->fill(json);
    } catch (const Failure&) {
        // A frame that is none of its mode.
    }
}

/// Alone a stream may come further: what is wrong with the bytes of the others is not looked at.
void readAlone(const std::string& bytes, std::uint16_t index, const Content& all) {
    const auto reader = open(bytes);
    expect(reader != nullptr);
    reader->select(index);
    const Content alone = readAll(*reader, bytes.size());
    std::size_t at = 0;
    for (const RecordedFrame& frame : all.frames) {
        if (frame.stream != index)
            continue;
        expect(at < alone.frames.size() && alone.frames[at].micros == frame.micros &&
               alone.frames[at].bytes == frame.bytes);
        ++at;
    }
    expect(!all.whole || (alone.whole && at == alone.frames.size()));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    const auto reader = open(bytes);
    if (!reader)
        return 0;
    const Content content = readAll(*reader, size);
    for (std::uint16_t index = 0; index < reader->streams().size() && index < 4; ++index) {
        deliver(reader->streams()[index], index, content);
        readAlone(bytes, index, content);
    }
    return 0;
}
