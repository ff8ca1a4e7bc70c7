#include <algorithm>
#include <atomic>
#include <filesystem>
#include <future>
#include <set>
#include <string_view>
#include <thread>

#include <gmock/gmock.h>

#include <zentara/host/host.h>
#include <zentara/utils/files.h>
#include <zentara/utils/shared_memory_manager.h>

#include "host/streams/shared_ring.h"
#include "support/camera_bus.h"
#include "support/failure.h"
#include "support/program.h"
#include "support/stride.h"

namespace Zentara::Host {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;

constexpr auto beforeLong = 20s;

TEST(SharedRing, NeverDeliversATornFrame) {
    constexpr std::size_t words = 512;
    const std::uint64_t most = 200'000 / TestSupport::stride;
    const SharedRing given(Utils::SharedMemoryManager::getUniqueID(), 3, words * 8);
    const SharedRing read(given.id(), given.slots(), given.room());
    std::thread giver([&] {
        for (std::uint64_t number = 0; number < most; ++number) {
            const std::vector<std::uint64_t> frame(words, number);
            given.give(number, {static_cast<std::int64_t>(number), 8 * (1 + number % words), {{{7, 1.5F}}}},
                       reinterpret_cast<const std::byte*>(frame.data()));
        }
    });
    std::vector<std::uint64_t> place(words);
    SharedFrame frame;
    std::uint64_t torn = 0;
    for (std::uint64_t number = 0; number < most;) { // the last one stays
        if (read.take(number, frame, std::as_writable_bytes(std::span(place))) != SharedRing::Found::Frame)
            continue;
        const auto end = place.begin() + static_cast<std::ptrdiff_t>(1 + number % words);
        torn += static_cast<std::uint64_t>(std::count(place.begin(), end, number) != end - place.begin());
        torn += frame.micros != static_cast<std::int64_t>(number) ||
                frame.length != 8 * (1 + number % words) ||
                frame.temperatures.values.at(0) != SensorValue{7, 1.5F};
        ++number;
    }
    giver.join();
    EXPECT_EQ(torn, 0U);
}

TEST(SharedBoard, KnowsWhoLivesAndWhereTheFramesAre) {
    const auto board = std::make_shared<SharedBoard>("hardware of a test");
    EXPECT_TRUE(board->claim(4711));
    board->post({4711, 9, 2, 8, "B"}); // and then it was killed
    EXPECT_FALSE(board->look());
    const auto giver = FrameGiver::make(board, "B", 2, 8);
    ASSERT_TRUE(giver) << "its place is free";
    EXPECT_EQ(FrameGiver::make(board, "B", 2, 8), nullptr);
    EXPECT_EQ(FrameReader::make(board, "A"), nullptr) << "another mode";
    const auto reader = FrameReader::make(board, "B");
    std::array<std::byte, 64> place{};
    std::uint64_t missed = 0;
    SharedFrame frame;
    for (const std::size_t length : {8U, 64U}) { // the second one takes more room
        giver->give({5, length, {}}, place.data());
        ASSERT_TRUE(reader->goesOn());
    }
    EXPECT_EQ(reader->take(frame, {}, missed), SharedRing::Found::TooSmall);
    EXPECT_EQ(reader->take(frame, place, missed), SharedRing::Found::Frame);
    EXPECT_EQ(frame.length, 64U);
}

class SharedStream : public testing::Test, protected TestSupport::CameraBus {};

TEST_F(SharedStream, IsReadByOthersWhomTheFirstDoesNotWaitFor) {
    plug(R"({"model": "ZS570", "serialNumber": "LEFT"})");
    Cameras cameras;
    Cameras others;
    const Camera camera = cameras.open("LEFT");
    Stream first = camera.stream(Kind::Depth, {.queue = 100, .shared = true});
    Stream slow = others.open("LEFT").stream(Kind::Depth, {.queue = 1, .keepsAll = true, .shared = true});
    EXPECT_THAT(slow.sharing(), HasSubstr("the frames of process"));
    const Frame early = slow.next(beforeLong).value();
    EXPECT_FALSE(early.temperatures().empty());

    const auto sumOf = [](const auto& bytes) {
        return std::hash<std::string_view>()({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    };
    std::set<std::size_t> all;
    std::atomic<bool> done{false};
    auto taking = std::async(std::launch::async, [&] {
        while (const auto frame = done ? first.poll() : first.next(beforeLong))
            all.insert(sumOf(frame->bytes()));
    });
    // Not in the folder of the test: Windows is handed commands in a code page that lacks letters of its name.
    const std::string file = (Tests::programDirectory() / "host_tests_shared.raw").string();
    EXPECT_EQ(Tests::runProgram("zentara", "stream --share --frames 20 --raw \"" + file + "\""), 0);
    done = true;
    taking.wait();
    const std::string read = Utils::readFile(file);
    std::filesystem::remove(file);
    for (std::size_t frame = 0; frame < 20; ++frame)
        EXPECT_EQ(all.count(sumOf(read.substr(read.size() / 20 * frame, read.size() / 20))), 1U) << frame;

    std::uint64_t gone = 0;
    for (int frame = 0; frame < 4; ++frame) // two that were fetched before it was late
        gone += slow.next(beforeLong).value().droppedBefore();
    EXPECT_GT(slow.counts().missed, 0U);
    EXPECT_GE(gone, slow.counts().missed) << "and what the device itself dropped";

    first.stop();
    const auto drain = [&] {
        while (slow.next(beforeLong)) {
        }
    };
    EXPECT_THAT(TestSupport::messageOf<Failure>(drain), HasSubstr("which gave them, has ended its stream"));
    EXPECT_EQ(slow.state(), Stream::State::Unplugged);
    EXPECT_THAT(camera.stream(Kind::Depth, {.shared = true}).sharing(),
                HasSubstr("which it gives to others"));
}

} // namespace
} // namespace Zentara::Host
