#include <gmock/gmock.h>

#include "host/streams/fake_source.h"
#include "support/failing_allocation.h"

namespace Zentara::Host {
namespace {

// The bytes that the source writes are those of the frame, and neither thread asks for memory once the stream runs.
TEST(StreamMemory, CopiesNothingAndNeedsNoMemoryOnceItRuns) {
    constexpr int begun = 20;
    constexpr int frames = 100;
    const auto camera = std::make_shared<FakeCamera>();
    Stream stream = camera->stream();
    std::optional<TestSupport::FailingAllocation> there; // the reading thread's
    bool asks = false;
    const void* written = nullptr;
    std::size_t taken = 0;
    std::vector<Frame> held; // so that there is memory for all that may be under way at once
    for (int number = 0; number < frames; ++number) {
        camera->then([&, number](void* buffer, int, std::int64_t* micros, int* length) {
            if (number == begun)
                there.emplace(0);
            if (number == frames - 1) {
                asks = asks || there->hit();
                there.reset();
            }
            *micros = 10'000 * number;
            *length = 4;
            written = buffer;
            return ReadBufferStatus_OK;
        });
        std::optional<Frame> frame;
        {
            const TestSupport::FailingAllocation here(0);
            frame = stream.next(std::chrono::seconds(20));
            asks = asks || here.hit();
        }
        ASSERT_TRUE(frame);
        EXPECT_EQ(frame->bytes().data(), written);
        if (number == begun)
            taken = frameMemoryTaken();
        if (number < begun)
            held.push_back(*frame);
        if (number == begun - 1)
            held.clear();
    }
    EXPECT_FALSE(asks);
    EXPECT_EQ(frameMemoryTaken(), taken);
}

} // namespace
} // namespace Zentara::Host
