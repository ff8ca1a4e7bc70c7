#include <cstdlib>
#include <cstring>
#include <filesystem>

#include <gtest/gtest.h>

#include <zentara/host/failure.h>
#include <zentara/host/recording.h>

#include "host/streams/frame_draft.h"
#include "support/temporary_directory.h"

namespace Zentara::Host {
namespace {

// Great frames until none fits any more, then small ones: what did not fit has taken nothing with it.
TEST(FullDisk, DISABLED_IsFilled) {
    const TestSupport::TemporaryDirectory directory;
    StreamInfo info;
    info.mode = {.kind = Kind::Depth, .name = "SMALL", .width = 2, .height = 1, .rate = 100};
    Recorder recorder(directory.path("r"), {info});
    std::vector<float> taken; // the reading of each frame
    const auto add = [&](std::size_t size, float warmth) {
        FrameDraft draft(std::make_shared<const StreamContext>(info), size, "make a frame");
        std::memset(draft.bytes(), 0, size);
        draft.fields().temperatures[0] = {0, warmth};
        draft.fields().temperatureCount = 1;
        try {
            recorder.add(0, std::move(draft).finish(size));
            taken.push_back(warmth);
            return true;
        } catch (const Failure&) {
            return false;
        }
    };
    float warmth = 20;
    while (add(1000, warmth))
        ++warmth;
    const std::size_t great = taken.size();
    while (add(1, warmth)) {
    }
    recorder.commit();
    Recording recording(directory.path("r"));
    std::size_t count = 0;
    for (; const auto frame = recording.next(0); ++count)
        EXPECT_EQ(frame->temperatures()[0].value, taken.at(count)) << count;
    EXPECT_EQ(count, recorder.frames());
    EXPECT_TRUE(great < count && count < taken.size()) << "the last ones make room for the end";
}

// A limit for the size of files is to a writer what a full disk is. Only the shells of POSIX systems set one.
TEST(FullDisk, KeepsTheWholeFramesAndTheirReadings) {
    if (std::filesystem::path::preferred_separator == '\\')
        GTEST_SKIP();
    const std::string program = std::filesystem::absolute(testing::internal::GetArgvs().at(0)).string();
    const std::string command = "trap '' XFSZ; ulimit -f 16; '" + program +
                                "' --gtest_also_run_disabled_tests --gtest_filter=FullDisk.DISABLED_IsFilled "
                                "> /dev/null";
    EXPECT_EQ(std::system(command.c_str()), 0);
}

} // namespace
} // namespace Zentara::Host
