#include <cstdlib>
#include <string>
#include <vector>

#include <zentara/utils/files.h>

#include "support/program.h"
#include "tools/tool_fixture.h"
#include "tools/zentara/exit_code.h"
#include "tools/zentara/streams/recording_reader.h"
#include "tools/zentara/streams/recording_writer.h"

namespace Zentara::Tool {
namespace {

using testing::HasSubstr;

StreamDescription describe(NodeType type, std::array<std::int32_t, 4> mode) {
    StreamDescription stream;
    stream.node.nodeType = type;
    stream.node.path = std::string("bus:7/") + nodeTypeName(type);
    stream.node.parentPath = "bus:7";
    stream.node.name = "Camera";
    stream.node.serialNumber = "S-7";
    stream.node.vendorId = 0x1234;
    stream.node.productId = 0x5678;
    stream.node.interfaceNumber = 2;
    stream.mode.fields = mode;
    return stream;
}

/// A recording of a depth stream with three frames and an audio stream with one, and the bytes of its file.
class Recording : public ToolTest {
protected:
    Recording() {
        RecordingWriter writer(path("r"), streams);
        append(writer, 0, {1, 2, 3}, 1000);
        append(writer, 1, {7}, 1500);
        append(writer, 0, {}, 2000);
        append(writer, 0, {4, 5}, -3000);
        writer.commit();
        whole = Utils::readFile(path("r"));
    }

    static void append(RecordingWriter& writer, std::uint16_t stream, const std::vector<std::uint8_t>& bytes,
                       std::int64_t micros) {
        writer.append(stream, bytes.data(), bytes.size(), micros);
    }

    /// Reads these bytes: what came, one word a frame, then "end" or the failure.
    std::vector<std::string> read(const std::string& bytes) {
        Utils::writeFile(path("c"), bytes);
        std::vector<std::string> seen;
        try {
            RecordingReader reader(path("c"));
            EXPECT_EQ(reader.streams().size(), streams.size());
            RecordedFrame frame;
            while (reader.next(frame))
                seen.push_back(std::to_string(frame.stream) + ":" + std::to_string(frame.micros) + ":" +
                               std::to_string(frame.bytes.size()));
            seen.emplace_back("end");
        } catch (const Failure& failure) {
            seen.emplace_back(failure.what());
        }
        return seen;
    }

    const std::vector<StreamDescription> streams{
        describe(NodeType_DEPTH, {FrameFormat_QVGA, 60, DepthNode::CameraMode_1, 1}),
        describe(NodeType_AUDIO, {2, 16, 48000, 0})};
    const std::vector<std::string> frames{"0:1000:3", "1:1500:1", "0:2000:0", "0:-3000:2"};
    std::string whole;
};

TEST_F(Recording, GivesBackWhatWasRecorded) {
    RecordingReader reader(path("r"));
    ASSERT_EQ(reader.streams().size(), 2U);
    for (std::size_t index = 0; index < 2; ++index) {
        EXPECT_EQ(reader.streams()[index].node, streams[index].node);
        EXPECT_EQ(reader.streams()[index].mode, streams[index].mode);
    }
    EXPECT_EQ(reader.streams()[0].modeName(), "DEFF2FR60CM1S1");
    EXPECT_EQ(reader.streams()[1].modeName(), "AUCH2BPS16SR48000");
    reader.select(1);
    RecordedFrame frame;
    ASSERT_TRUE(reader.next(frame));
    EXPECT_EQ(frame.bytes, std::vector<std::uint8_t>{7});
    EXPECT_FALSE(reader.next(frame));
    EXPECT_EQ(reader.frames(), 4U);
}

TEST_F(Recording, HasTheDocumentedBytes) {
    const std::string head("ZTREC\r\n\x1A\x01\0\x02\0", 12);
    EXPECT_EQ(whole.substr(0, 12), head);
    const std::size_t frame = whole.find("FRAM");
    const std::string chunk("FRAM\0\0\0\0\xE8\x03\0\0\0\0\0\0\x03\0\0\0", 20);
    EXPECT_EQ(whole.substr(frame, 20), chunk);
    EXPECT_EQ(whole.substr(frame + 24, 3), "\x01\x02\x03");
    // CRC-32 of 1, 2, 3 started at all ones, without the final inversion: 0x55BC801D inverted.
    EXPECT_EQ(whole.substr(frame + 27, 4), std::string("\xE2\x7F\x43\xAA", 4));
    EXPECT_EQ(whole.substr(whole.size() - 4 - 16 - 24, 4), "END ");
}

TEST_F(Recording, EveryCutDeliversTheWholeFramesBeforeItAndThenFails) {
    std::vector<std::size_t> ends; // of each frame's chunk
    for (std::size_t at = whole.find("FRAM"); at != std::string::npos; at = whole.find("FRAM", at + 1))
        ends.push_back(at + 24 +
                       (ends.size() == 0   ? 3
                        : ends.size() == 1 ? 1
                        : ends.size() == 2 ? 0
                                           : 2) +
                       4);
    ASSERT_EQ(ends.size(), 4U);
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const auto seen = read(whole.substr(0, length));
        std::size_t complete = 0;
        while (complete < ends.size() && ends[complete] <= length)
            ++complete;
        ASSERT_EQ(seen.size(), complete + 1) << "cut at " << length << ": " << seen.back();
        EXPECT_TRUE(std::equal(seen.begin(), seen.end() - 1, frames.begin())) << length;
        EXPECT_THAT(seen.back(), testing::AnyOf(HasSubstr("cut short"), HasSubstr("it is no recording")))
            << length;
    }
    EXPECT_EQ(read(whole).back(), "end");
}

TEST_F(Recording, EveryWrongByteIsNoticed) {
    for (std::size_t at = 0; at < whole.size(); ++at) {
        std::string bytes = whole;
        bytes[at] = static_cast<char>(bytes[at] ^ 0x41);
        const auto seen = read(bytes);
        EXPECT_THAT(seen.back(), HasSubstr("recording '")) << "byte " << at;
        EXPECT_TRUE(std::equal(seen.begin(), seen.end() - 1, frames.begin())) << "byte " << at;
    }
    EXPECT_THAT(read(whole + "x").back(), HasSubstr("1 bytes follow the end"));
}

TEST_F(Recording, AFrameThatWasCutOutIsMissed) {
    const std::size_t second = whole.find("FRAM", whole.find("FRAM") + 1);
    const std::string bytes = whole.substr(0, whole.find("FRAM")) + whole.substr(second);
    EXPECT_THAT(read(bytes).back(), HasSubstr("stream 0 was recorded with 3 frames and has 2"));
}

TEST_F(Recording, RefusesWhatNoStreamCanBe) {
    const struct {
        NodeType type;
        std::array<std::int32_t, 4> mode;
    } cases[]{
        {NodeType_NONE, {2, 60, 0, 0}},       {static_cast<NodeType>(9), {2, 60, 0, 0}},
        {NodeType_DEPTH, {0, 60, 0, 0}},      {NodeType_COLOR, {77, 60, 0, 0}},
        {NodeType_DEPTH, {2, 0, 0, 0}},       {NodeType_AUDIO, {0, 16, 48000, 0}},
        {NodeType_AUDIO, {2, 0, 48000, 0}},   {NodeType_AUDIO, {2, 16, 0, 0}},
        {NodeType_AUDIO, {70, 16, 48000, 0}},
    };
    for (const auto& row : cases) {
        RecordingWriter writer(path("r"), {describe(row.type, row.mode)});
        writer.commit();
        EXPECT_THROW(RecordingReader reader(path("r")), Failure) << row.type;
    }
    {
        RecordingWriter writer(path("r"), {streams[0], streams[1], streams[0]});
        writer.commit();
    }
    try {
        RecordingReader reader(path("r"));
        FAIL() << "one node has one stream";
    } catch (const Failure& failure) {
        EXPECT_THAT(failure.what(), HasSubstr("streams 0 and 2 are of the same node"));
    }
    for (const char* name : {"none", ""})
        EXPECT_THROW(RecordingReader reader(path(name)), Failure) << name;
    EXPECT_THROW(RecordingWriter writer(path("r"), {}), Failure);
}

/// A limit for the size of files is to a writer what a full disk is. Only the shell of POSIX systems sets one.
TEST_F(Recording, KeepsWhatIsWholeWhenTheDiskIsFull) {
    if (Utils::nativePath("a/b") != "a/b")
        GTEST_SKIP();
    const auto streamInto = [this](const std::string& blocks, const std::string& files) {
        const std::string command = "ulimit -f " + blocks + "; '" +
                                    (Tests::programDirectory() / "zentara").string() + "' stream " + files +
                                    " > '" + path("out") + "' 2> '" + path("err") + "'";
        EXPECT_NE(std::system(command.c_str()), 0);
        EXPECT_THAT(
            Utils::readFile(path("err")),
            testing::AllOf(HasSubstr("cannot write '"), HasSubstr("what came whole before it is kept")));
    };
    streamInto("1000", "--record '" + path("full") + "' --raw '" + path("raw") + "'");
    RecordingReader reader(path("full"));
    RecordedFrame frame;
    while (reader.next(frame)) {
    }
    EXPECT_GE(reader.frames(), 1U);
    ASSERT_FALSE(frame.bytes.empty());
    EXPECT_EQ(Utils::readFile(path("raw")).size() % frame.bytes.size(), 0U) << "whole frames";
    streamInto("50", "--wav '" + path("wav") + "'");
    const std::string wav = Utils::readFile(path("wav"));
    ASSERT_GT(wav.size(), 20000U);
    const auto sizeAt = [&wav](std::size_t place) {
        return static_cast<unsigned char>(wav[place]) + 256U * static_cast<unsigned char>(wav[place + 1]);
    };
    EXPECT_EQ(sizeAt(4), wav.size() - 8);
    EXPECT_EQ(sizeAt(40), wav.size() - 44);
    EXPECT_EQ(filesLeft().size(), 6U) << "no parts";
}

TEST_F(Recording, WithoutCommitNoFileIsLeft) {
    { RecordingWriter writer(path("gone"), streams); }
    EXPECT_EQ(filesLeft(), std::vector<std::string>{path("r")});
}

} // namespace
} // namespace Zentara::Tool
