#include "counted_allocations.h"
#include "ratio_reporter.h"

#include <benchmark/benchmark.h>

#include <atomic>
#include <chrono>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <zentara/core/depth_node_interface.h>
#include <zentara/depth_base_configuration.h>
#include <zentara/host/host.h>
#include <zentara/utils/clock.h>
#include <zentara/utils/environment_variable.h>

#include "host/cameras/camera_bus.h"
#include "host/cameras/open_node.h"
#include "host/streams/stream_source.h"

namespace {

using namespace Zentara;
using namespace Zentara::Host;
using namespace std::chrono_literals;

const Bench::Aim frameAim{"frame_to_host", "read_buffer", 1.1,
                          "from when a frame falls due to the host's hands; the peer calls the node"};
const Bench::Aim nextAims[] = {{"stream_next", "read_and_10_us", 1.0,
                                "a frame of a stream; the peer copies it as well and has 10 microseconds"},
                               {"stream_next_640x480", "read_and_10_us", 1.0, "the same of 1.8 MB"}};
const Bench::Aim openAim{"open_first_camera", "plugin_calls", 1.2,
                         "finding and opening the first camera; the peer calls the plug-ins"};

constexpr int framesTimed = 60; // one second of the camera's

double secondsSince(std::int64_t micros) {
    return static_cast<double>(Utils::Clock::nowMicros() - micros) / 1e6;
}

// From when a frame fell due in the simulated device until the host has it. Both sides copy the same: the node makes its
// frame of the device's, the stream has it do so in the memory of the frame.

void frameToHost(benchmark::State& state) {
    Cameras cameras;
    Stream stream = cameras.open().stream(Kind::Depth, {.queue = 1});
    for (auto _ : state) {
        const auto frame = stream.next(2s);
        state.SetIterationTime(secondsSince(frame->deviceMicros()));
    }
}
BENCHMARK(frameToHost)->Name("frame_to_host/ours")->UseManualTime()->Iterations(framesTimed);

void frameToNode(benchmark::State& state) {
    Cameras cameras;
    const auto times = std::make_shared<std::vector<double>>();
    cameras.open().withDepthNode("read", [times](Core::DepthNodeInterface& node) {
        node.enableStreaming(node.getConfigurations().front());
        std::vector<char> buffer(std::size_t{1} << 20);
        while (times->size() < framesTimed) {
            std::int64_t micros = 0;
            int length = 0;
            if (node.readBuffer(buffer.data(), static_cast<int>(buffer.size()), &micros, &length) ==
                ReadBufferStatus_OK)
                times->push_back(secondsSince(micros));
        }
        node.disableStreaming();
    });
    auto time = times->begin();
    for (auto _ : state)
        state.SetIterationTime(*time++);
}
BENCHMARK(frameToNode)->Name("frame_to_host/read_buffer")->UseManualTime()->Iterations(framesTimed);

/// A node with a frame at any time, but never more of them than a stream's queue has places: what is left of the
/// time is what the stream adds to it.
class ReadySource final : public StreamSource {
public:
    static constexpr std::uint64_t places = 4;

    ReadySource(std::uint32_t width, std::uint32_t height) : frame(std::size_t{3} * 2 * width * height) {
        about.mode = {.kind = Kind::Depth, .name = "READY", .width = width, .height = height, .rate = 60};
    }

    [[nodiscard]] const StreamInfo& info() const override { return about; }
    [[nodiscard]] std::string label() const override { return "ready"; }
    [[nodiscard]] std::size_t usualBytes() const override { return frame.size(); }
    void start() override {}
    ReadBufferStatus read(void* buffer, int, std::int64_t* micros, int* length) override {
        while (given - fetched >= places && !ended)
            std::this_thread::yield();
        std::memcpy(buffer, frame.data(), frame.size());
        *micros = static_cast<std::int64_t>(16'667 * given++);
        *length = static_cast<int>(frame.size());
        return ended ? ReadBufferStatus_NOT_STREAMING : ReadBufferStatus_OK;
    }
    void stop() override { ended = true; }
    void close() override {}

    std::atomic<std::uint64_t> fetched{0};

private:
    StreamInfo about;
    const std::vector<char> frame;
    std::atomic<bool> ended{false};
    std::uint64_t given = 0;
};

void streamNext(benchmark::State& state, std::uint32_t width, std::uint32_t height) {
    const auto source = std::make_shared<ReadySource>(width, height);
    Stream stream = openStream({[source] { return source; }, "open a ready source", nullptr, {}}, {});
    for (auto _ : state) {
        benchmark::DoNotOptimize(stream.next(2s));
        ++source->fetched;
    }
}
BENCHMARK_CAPTURE(streamNext, small, 8, 4)->Name("stream_next/ours")->UseRealTime();
BENCHMARK_CAPTURE(streamNext, large, 640, 480)->Name("stream_next_640x480/ours")->UseRealTime();

/// What a frame may cost: the node's own copy, into as many buffers as a stream has, and 10 microseconds.
void readAndTen(benchmark::State& state, std::uint32_t width, std::uint32_t height) {
    ReadySource source(width, height);
    std::vector<std::vector<char>> buffers(ReadySource::places, std::vector<char>(source.usualBytes()));
    for (auto _ : state) {
        std::vector<char>& buffer = buffers[source.fetched % buffers.size()];
        std::int64_t micros = 0;
        int length = 0;
        source.read(buffer.data(), static_cast<int>(buffer.size()), &micros, &length);
        benchmark::DoNotOptimize(buffer.data());
        ++source.fetched;
        const auto end = std::chrono::steady_clock::now() + 10us;
        while (std::chrono::steady_clock::now() < end) {
        }
    }
}
BENCHMARK_CAPTURE(readAndTen, small, 8, 4)->Name("stream_next/read_and_10_us")->UseRealTime();
BENCHMARK_CAPTURE(readAndTen, large, 640, 480)->Name("stream_next_640x480/read_and_10_us")->UseRealTime();

const Bench::Growth streamGrowth{"cameras", 1.2,
                                 "the processor's time for 30 frames of each of 1 to 16 cameras"};

double processorSeconds() { return static_cast<double>(std::clock()) / CLOCKS_PER_SEC; }

void manyCameras(benchmark::State& state) {
    const std::string bus = (std::filesystem::temp_directory_path() / "zentara-bench-bus.json").string();
    std::string plugged;
    for (std::int64_t i = 0; i < state.range(0); ++i)
        plugged += std::string(i == 0 ? "" : ", ") + R"({"model": "ZS570", "serialNumber": "N)" +
                   std::to_string(i) + "\"}";
    std::ofstream(bus) << R"({"format": 1, "cameras": [)" << plugged << "]}";
    Utils::EnvironmentVariable variable("ZENTARA_SIMULATED_CAMERAS");
    variable.setValue(bus.c_str());
    {
        Cameras cameras;
        std::vector<Stream> streams;
        for (std::int64_t i = 0; i < state.range(0); ++i)
            streams.push_back(cameras.open("N" + std::to_string(i)).stream(Kind::Depth));
        for (auto _ : state) {
            const double begin = processorSeconds();
            for (int frame = 0; frame < 30; ++frame)
                for (Stream& stream : streams)
                    benchmark::DoNotOptimize(stream.next(2s));
            state.SetIterationTime(processorSeconds() - begin);
        }
    }
    variable.setValue("");
    std::filesystem::remove(bus);
}
const Bench::Count allocations{"stream_next", 0,
                               "memory taken by a caller of `Stream::next` for 30 frames, after a second"};

void countAllocations(benchmark::State& state) {
    Cameras cameras;
    Stream stream = cameras.open().stream(Kind::Depth);
    const auto take = [&stream] {
        for (int frame = 0; frame < 30; ++frame)
            benchmark::DoNotOptimize(stream.next(2s));
    };
    const auto begin = std::chrono::steady_clock::now();
    while (std::chrono::steady_clock::now() - begin < 1s)
        take();
    for (auto _ : state) {
        const std::size_t before = Bench::allocationsOfThisThread();
        take();
        state.counters["count"] = static_cast<double>(Bench::allocationsOfThisThread() - before);
    }
}
BENCHMARK(countAllocations)->Name("stream_next/counted")->Iterations(1)->UseRealTime();

BENCHMARK(manyCameras)->Name("cameras/at")->RangeMultiplier(4)->Range(1, 16)->UseManualTime()->Iterations(1);

void openFirst(benchmark::State& state) {
    for (auto _ : state) {
        Cameras cameras;
        const Camera camera = cameras.open();
        camera.withDepthNode("open", [](Core::DepthNodeInterface&) {});
        camera.close();
        cameras.close();
    }
}
BENCHMARK(openFirst)->Name("open_first_camera/ours")->UseRealTime()->Unit(benchmark::kMillisecond);

/// The enumerators, the stores and the node, called one after the other.
void callPlugins(benchmark::State& state) {
    for (auto _ : state) {
        CameraBus bus({});
        const CameraEntry camera = bus.someCameras().front();
        OpenNode<Core::DepthNodeInterface> node(*camera.find(NodeType_DEPTH), {});
        node.dispose();
    }
}
BENCHMARK(callPlugins)->Name("open_first_camera/plugin_calls")->UseRealTime()->Unit(benchmark::kMillisecond);

} // namespace
