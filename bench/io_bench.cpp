#include "bare_futex.h"
#include "ratio_reporter.h"

#include <zentara/core/guids.h>
#include <zentara/io/video_device_proxy.h>
#include <zentara/region_of_interest_internal.h>
#include <zentara/utils/signal.h>

#include <benchmark/benchmark.h>

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

namespace {

using namespace Zentara;

const Bench::Aim aims[] = {{"round_trip", "bare_hand_off", 1.5,
                            "a request to the worker and back; the peer wakes a thread and waits"},
                           {"round_trip", "futex", 1.15, "the same; the peer does so by two bare words"}};
const Bench::Growth growth{"callers", 1.2, "a request of each of 1 to 64 callers"};

// Goes to the worker and back and, being a region of interest, no further: what is measured is the way alone.
void roundTripOurs(benchmark::State& state) {
    IO::VideoDeviceProxy camera(Core::Guids::MOCKVIDEODEVICE_IMPL, true);
    RegionOfInterestInternal region{};
    for (auto _ : state)
        camera.setRegionOfInterest(region);
}
BENCHMARK(roundTripOurs)->Name("round_trip/ours")->UseRealTime();

void manyCallers(benchmark::State& state) {
    constexpr int requests = 100;
    IO::VideoDeviceProxy camera(Core::Guids::MOCKVIDEODEVICE_IMPL, true);
    for (auto _ : state) {
        std::vector<std::thread> callers;
        const auto begin = std::chrono::steady_clock::now();
        for (std::int64_t i = 0; i < state.range(0); ++i)
            callers.emplace_back([&camera] {
                for (int n = 0; n < requests; ++n)
                    camera.setRegionOfInterest({});
            });
        for (std::thread& caller : callers)
            caller.join();
        const std::chrono::duration<double> time = std::chrono::steady_clock::now() - begin;
        state.SetIterationTime(time.count() / requests);
    }
}
BENCHMARK(manyCallers)->Name("callers/at")->RangeMultiplier(4)->Range(1, 64)->UseManualTime()->Iterations(20);

template<class Event>
void roundTripBare(benchmark::State& state) {
    Event there;
    Event back;
    std::atomic<bool> ending{false};
    std::thread worker([&] {
        for (;;) {
            there.wait();
            if (ending)
                return;
            back.set();
        }
    });
    for (auto _ : state) {
        there.set();
        back.wait();
    }
    ending = true;
    there.set();
    worker.join();
}
BENCHMARK(roundTripBare<Utils::Threading::Signal>)->Name("round_trip/bare_hand_off")->UseRealTime();
BENCHMARK(roundTripBare<Bench::BareFutex>)->Name("round_trip/futex")->UseRealTime();

} // namespace

int main(int argc, char** argv) { return Bench::runAll(argc, argv); }
