#include "ratio_reporter.h"

#include <zentara/core/guids.h>
#include <zentara/io/video_device_proxy.h>
#include <zentara/region_of_interest_internal.h>
#include <zentara/utils/signal.h>

#include <benchmark/benchmark.h>

#include <atomic>
#include <thread>

namespace {

using namespace Zentara;

const Bench::Aim aim{"round_trip", "bare_hand_off", 1.5};

// Goes to the worker and back and, being a region of interest, no further: what is measured is the way alone.
void roundTripOurs(benchmark::State& state) {
    IO::VideoDeviceProxy camera(Core::Guids::MOCKVIDEODEVICE_IMPL, true);
    RegionOfInterestInternal region{};
    for (auto _ : state)
        camera.setRegionOfInterest(region);
}
BENCHMARK(roundTripOurs)->Name("round_trip/ours")->UseRealTime();

void roundTripBare(benchmark::State& state) {
    Utils::Threading::Signal there;
    Utils::Threading::Signal back;
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
BENCHMARK(roundTripBare)->Name("round_trip/bare_hand_off")->UseRealTime();

} // namespace

int main(int argc, char** argv) { return Bench::runAll(argc, argv); }
