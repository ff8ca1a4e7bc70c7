// A recording of any bytes. Whatever they are, the reader ends them or fails with a message, and frames cope with what
// the file says of them. A stream that is read alone gives the frames that it has among all.
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include <zentara/host/failure.h>
#include <zentara/host/frame.h>
#include <zentara/host/point_cloud.h>

#include "host/recordings/recording_reader.h"

namespace {

using namespace Zentara::Host;

constexpr std::size_t mostPixels = 4096; // of a picture that is worked on: a table of rays takes its time

void expect(bool holds) {
    if (!holds)
        std::abort();
}

struct Unit {
    FrameHead head;
    std::vector<std::byte> bytes;
};

struct Content {
    std::vector<Unit> frames;
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

/// \param only the one stream whose bytes are read; less than 0: all
Content readAll(RecordingReader& reader, std::size_t most, int only) {
    Content content;
    try {
        while (const auto head = reader.next()) {
            expect(head->stream < reader.streams().size() && head->length <= most);
            if (only >= 0 && head->stream != only)
                continue;
            std::vector<std::byte> bytes(head->length);
            reader.read(bytes.data());
            content.frames.push_back({*head, std::move(bytes)});
        }
        content.whole = true;
    } catch (const Failure& failure) {
        expect(std::string(failure.what()).find("byte ") != std::string::npos);
        const std::string told = failure.what();
        try {
            static_cast<void>(reader.next());
        } catch (const Failure& again) {
            expect(again.what() == told);
        }
    }
    return content;
}

void use(const Frame& frame) {
    const Mode& mode = frame.info().mode;
    if (std::uint64_t{mode.width} * mode.height > mostPixels)
        return;
    try {
        if (mode.kind == Kind::Color)
            static_cast<void>(frame.rgb());
        if (mode.kind == Kind::Audio)
            static_cast<void>(frame.samples());
        if (mode.kind != Kind::Depth)
            return;
        static_cast<void>(frame.corrected().metres());
        std::ostringstream ply;
        frame.lens().pointsOf(frame).writePly(ply);
    } catch (const Failure&) {
        // A frame that is none of its mode, or no lens.
    }
}

/// Alone a stream may come further: what is wrong with the bytes of the others is not looked at.
void readAlone(const std::string& bytes, int index, const Content& all) {
    const auto reader = open(bytes);
    expect(reader != nullptr);
    const Content alone = readAll(*reader, bytes.size(), index);
    std::size_t at = 0;
    for (const Unit& frame : all.frames) {
        if (frame.head.stream != index)
            continue;
        expect(at < alone.frames.size() && alone.frames[at].head.micros == frame.head.micros &&
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
    const Content content = readAll(*reader, size, -1);
    std::vector<std::shared_ptr<StreamInfo>> infos;
    for (const StreamInfo& info : reader->streams())
        infos.push_back(std::make_shared<StreamInfo>(info));
    for (std::size_t i = 0; i < content.frames.size() && i < 4; ++i)
        use({infos[content.frames[i].head.stream], content.frames[i].bytes, i,
             content.frames[i].head.micros});
    for (int index = 0; index < static_cast<int>(infos.size()) && index < 4; ++index)
        readAlone(bytes, index, content);
    return 0;
}
