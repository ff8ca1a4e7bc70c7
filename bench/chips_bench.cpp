// What the library itself costs per register write: a chip over a wire that answers at once, beside a bare
// virtual call with the same packet. The chip's lock, the packet's making and the cached settings are the
// difference.
#include "ratio_reporter.h"

#include <zentara/io/chip_clock.h>
#include <zentara/io/ov0570_impl.h>
#include <zentara/io/vc0258_impl.h>
#include <zentara/io/vc0345_impl.h>

#include <benchmark/benchmark.h>

#include <array>
#include <chrono>
#include <cstdint>
#include <cstring>

namespace {

using namespace Zentara::IO;

class NoClock final : public ChipClock {
public:
    void wait(std::chrono::milliseconds) override {}
};
NoClock noClock;

/// Takes every packet and answers at once, a control information with one time-of-flight controller included.
template<typename Chip>
class InstantChip final : public Chip {
public:
    InstantChip() : Chip(noClock) {}
    void setup(const ::GUID&) override {}
    void send(unsigned, unsigned long, unsigned long length, void* data) override {
        std::memcpy(last.data(), data, length < last.size() ? length : last.size());
        benchmark::DoNotOptimize(last);
    }
    void recv(unsigned, unsigned long selector, unsigned long, void* data, bool) override {
        if (selector == 1) {
            auto* reply = static_cast<std::uint8_t*>(data);
            reply[15] = 1;
            reply[16] = 0x10;
            reply[18] = 0x21;
        }
    }

private:
    std::array<std::uint8_t, 64> last{};
};

/// The packet of the chip's register write, made beforehand and sent by one virtual call.
void bareSend(benchmark::State& state, XUInterface& wire, unsigned unit, unsigned long control,
              unsigned long length) {
    std::array<std::uint8_t, 9> packet{0x11, 0x05, 0x00, 0x34, 0x12};
    XUInterface* target = &wire;
    benchmark::DoNotOptimize(target); // else the compiler knows the class and makes no call at all
    for (auto _ : state) {
        benchmark::DoNotOptimize(packet);
        target->send(unit, control, length, packet.data());
    }
}

template<typename Chip>
void registerWrite(benchmark::State& state) {
    InstantChip<Chip> chip;
    unsigned value = 0;
    for (auto _ : state) {
        chip.setTOFControllerRegisterLocked(5, ++value);
    }
}

void ov0570Bare(benchmark::State& state) {
    InstantChip<OV0570Impl> chip;
    bareSend(state, chip, 6, 2, 7);
}
void vc0258Bare(benchmark::State& state) {
    InstantChip<VC0258Impl> chip;
    bareSend(state, chip, 4, 16, 9);
}
void vc0345Bare(benchmark::State& state) {
    InstantChip<VC0345Impl> chip;
    bareSend(state, chip, 4, 16, 4);
}

BENCHMARK(registerWrite<OV0570Impl>)->Name("ov0570_write/ours");
BENCHMARK(ov0570Bare)->Name("ov0570_write/bare_call");
BENCHMARK(registerWrite<VC0258Impl>)->Name("vc0258_write/ours");
BENCHMARK(vc0258Bare)->Name("vc0258_write/bare_call");
BENCHMARK(registerWrite<VC0345Impl>)->Name("vc0345_write/ours");
BENCHMARK(vc0345Bare)->Name("vc0345_write/bare_call");

} // namespace

int main(int argc, char** argv) { return Bench::runAll(argc, argv); }
