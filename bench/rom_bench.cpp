#include "ratio_reporter.h"

#include <zentara/rom/section.h>
#include <zentara/utils/crc.h>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstring>
#include <memory>

#include "slicing_by_8.h"
#include "support/rom_image.h"
#include "support/simulated_flash.h"

namespace {

using namespace Zentara;
using namespace Zentara::TestSupport;

// What must be touched at least: every byte copied once and summed once.
const Bench::Aim loadAims[] = {
    {"rom_load_1_mib", "memcpy_and_crc16", 2.0, "loading a storage of 1 MiB; the peer copies and sums it"},
    {"rom_load_1_mib", "memcpy_and_slicing_by_8", 0.7, "the same; the peer has the usual fast sum"}};
const Bench::Aim rewriteAim{"rom_rewrite", "whole_image", 0.1,
                            "writing a section again; the peer copies and sums the 256 of which it is one"};
const Bench::Growth loadGrowth{"sections", 1.2, "loading a storage of 16 to 4,096 sections"};
// A map of 4,096 is three times as deep as one of 16, and the transfers weigh more than the map.
const Bench::Aim setAims[] = {
    {"rom_set_among_256", "among_16", 1.5, "writing a section among 256; the peer has 16"},
    {"rom_set_among_4096", "among_16", 2.0, "the same among 4,096"}};

constexpr std::size_t OVERHEAD = 13 + 10; // section and block header

/// A storage in memory with that many sections of that many bytes each.
struct Filled {
    Filled(std::uint16_t sections, std::size_t dataSize, std::uint32_t chunkSize)
        : area{0, 17 + (sections + 1u) * chunkSize, chunkSize, true}, data(dataSize, 0x5A),
          image(area.size, 0xFF), flash(image), storage(std::make_unique<Storage>(flash, area)) {
        storage->container.initialize();
        storage->container.initializeRom();
        for (std::uint16_t uid = 1; uid <= sections; ++uid)
            set(uid);
    }

    void set(std::uint16_t uid) {
        storage->container.set(uid, ROM::ContainerSectionType::Diagnostic, ROM::Section::FLAG_WRITABLE, data);
    }

    Area area;
    Bytes data;
    Bytes image;
    ImageFlash flash;
    std::unique_ptr<Storage> storage;
};

void load(benchmark::State& state) {
    Filled filled(256, 4096 - OVERHEAD, 4096);
    for (auto _ : state) {
        filled.storage->container.initialize();
        benchmark::DoNotOptimize(filled.storage->container.getSection(256));
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * filled.image.size()));
}
BENCHMARK(load)->Name("rom_load_1_mib/ours");

void loadMany(benchmark::State& state) {
    Filled filled(static_cast<std::uint16_t>(state.range(0)), 200, 256);
    for (auto _ : state) {
        filled.storage->container.initialize();
        benchmark::DoNotOptimize(filled.storage->container.getSection(1));
    }
}
BENCHMARK(loadMany)->Name("sections/at")->RangeMultiplier(4)->Range(16, 4096);

std::uint16_t ownSum(const Bytes& bytes) {
    return Utils::Crc16::compute(bytes.data(), static_cast<unsigned int>(bytes.size()), 0);
}

std::uint16_t slicedSum(const Bytes& bytes) {
    static const Bench::SlicingBy8<std::uint16_t, 0xA001> sliced;
    return sliced.compute(bytes.data(), bytes.size());
}

template<class Sum>
void copyAndSum(benchmark::State& state, std::size_t chunk, Sum sum) {
    Filled filled(256, chunk - OVERHEAD, static_cast<std::uint32_t>(chunk));
    Bytes copy(filled.image.size());
    for (auto _ : state) {
        std::memcpy(copy.data(), filled.image.data(), copy.size());
        benchmark::DoNotOptimize(sum(copy));
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * copy.size()));
}
BENCHMARK_CAPTURE(copyAndSum, own, 4096, ownSum)->Name("rom_load_1_mib/memcpy_and_crc16");
BENCHMARK_CAPTURE(copyAndSum, sliced, 4096, slicedSum)->Name("rom_load_1_mib/memcpy_and_slicing_by_8");
BENCHMARK_CAPTURE(copyAndSum, rewrite, 256, slicedSum)->Name("rom_rewrite/whole_image");

void set(benchmark::State& state) {
    const auto sections = static_cast<std::uint16_t>(state.range(0));
    Filled filled(sections, 200, 256);
    std::uint16_t uid = 0;
    for (auto _ : state) {
        filled.set(static_cast<std::uint16_t>(uid + 1));
        uid = static_cast<std::uint16_t>((uid + 7) % sections);
    }
}
void setAmong16(benchmark::State& state) { set(state); }
BENCHMARK(set)->Name("rom_set_among_256/ours")->Arg(256);
BENCHMARK(set)->Name("rom_rewrite/ours")->Arg(256);
BENCHMARK(setAmong16)->Name("rom_set_among_256/among_16")->Arg(16);
BENCHMARK(set)->Name("rom_set_among_4096/ours")->Arg(4096);
BENCHMARK(setAmong16)->Name("rom_set_among_4096/among_16")->Arg(16);

// Flash transfers are what an operation costs on a camera.

template<class Action>
void printRow(const char* operation, SimulatedFlash& flash, Action action) {
    flash.readCount = flash.writeCount = flash.bytesRead = flash.bytesWritten = 0;
    action();
    std::printf("%-44s %6zu %9zu %6zu %9zu\n", operation, flash.readCount, flash.bytesRead, flash.writeCount,
                flash.bytesWritten);
}

void printTransfers() {
    const Area area{0, 16384, 256, true};
    SimulatedFlash flash(area.size);
    Storage storage(flash, area);
    const auto write = [&](std::uint16_t uid, std::size_t size) {
        storage.container.set(uid, ROM::ContainerSectionType::Diagnostic, ROM::Section::FLAG_WRITABLE,
                              Bytes(size));
    };
    std::printf("\n%-44s %6s %9s %6s %9s\n", "operation", "reads", "bytes", "writes", "bytes");
    printRow("format", flash, [&] { storage.container.initializeRom(); });
    printRow("set, new, 100 bytes", flash, [&] { write(1, 100); });
    for (std::uint16_t uid = 2; uid <= 16; ++uid)
        write(uid, 100);
    printRow("set, replaced in place, 100 bytes", flash, [&] { write(8, 100); });
    printRow("set, moved, 300 bytes", flash, [&] { write(8, 300); });
    printRow("get, type, writable, list of uids", flash, [&] {
        storage.container.get(8);
        storage.container.getType(8);
        storage.container.sectionIsWritable(8);
        storage.container.getSectionUIDs();
    });
    printRow("load, 16 sections", flash, [&] { storage.container.initialize(); });
    printRow("erase", flash, [&] { storage.container.erase(8); });
    std::printf("\n");
}

} // namespace

int main(int argc, char** argv) {
    printTransfers();
    return Bench::runAll(argc, argv);
}
