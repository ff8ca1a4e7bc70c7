#include "ratio_reporter.h"

#include <zentara/utils/binary_reader.h>
#include <zentara/utils/binary_writer.h>

#include <benchmark/benchmark.h>

#include <cstring>
#include <memory>
#include <numeric>
#include <string>
#include <vector>

#include "record_generated.h"

namespace {

using namespace Zentara::Utils;

const Bench::Aim aims[] = {{"record", "flatbuffers", 1.0,
                            "a record of 8 integers, 4 floats and a text, there and back; the peer verifies"},
                           {"integers_1024", "memcpy", 1.5, "1,024 integers there and back"}};

const std::string text = "camera SIM0570, revision 2";
const std::vector<int> whole{570, 258, 345, 320, 240, 60, 2, 1};
const std::vector<float> real{252.5F, 159.5F, -0.12F, 0.03F};

// Written into a buffer of its own, then read back with every length checked.

void recordOurs(benchmark::State& state) {
    for (auto _ : state) {
        BinaryWriter writer;
        for (const int number : whole)
            writer.write(number);
        for (const float number : real)
            writer.write(number);
        writer.write(text);
        const ByteArray bytes = writer.toByteArray();
        BinaryReader reader(bytes.data(), bytes.size());
        int sum = 0;
        for (int i = 0; i < 8; ++i)
            sum += reader.readInt();
        float total = 0;
        for (int i = 0; i < 4; ++i)
            total += reader.readFloat();
        const std::string read = reader.readString();
        benchmark::DoNotOptimize(sum);
        benchmark::DoNotOptimize(total);
        benchmark::DoNotOptimize(read.data());
    }
}
BENCHMARK(recordOurs)->Name("record/ours");

void recordFlatBuffers(benchmark::State& state) {
    for (auto _ : state) {
        flatbuffers::FlatBufferBuilder builder;
        const auto stored = builder.CreateString(text);
        builder.Finish(Bench::CreateRecord(builder, whole[0], whole[1], whole[2], whole[3], whole[4],
                                           whole[5], whole[6], whole[7], real[0], real[1], real[2], real[3],
                                           stored));
        const flatbuffers::DetachedBuffer bytes = builder.Release();
        flatbuffers::Verifier verifier(bytes.data(), bytes.size());
        if (!Bench::VerifyRecordBuffer(verifier))
            state.SkipWithError("the record is damaged");
        const Bench::Record& record = *Bench::GetRecord(bytes.data());
        const int sum = record.i0() + record.i1() + record.i2() + record.i3() + record.i4() + record.i5() +
                        record.i6() + record.i7();
        const float total = record.f0() + record.f1() + record.f2() + record.f3();
        const std::string read = record.text()->str();
        benchmark::DoNotOptimize(sum);
        benchmark::DoNotOptimize(total);
        benchmark::DoNotOptimize(read.data());
    }
}
BENCHMARK(recordFlatBuffers)->Name("record/flatbuffers");

std::vector<int> integers() {
    std::vector<int> values(1024);
    std::iota(values.begin(), values.end(), 1);
    return values;
}

void integersOurs(benchmark::State& state) {
    const std::vector<int> values = integers();
    for (auto _ : state) {
        BinaryWriter writer;
        writer.write(values);
        const ByteArray bytes = writer.toByteArray();
        benchmark::DoNotOptimize(BinaryReader(bytes.data(), bytes.size()).readInts());
    }
}
BENCHMARK(integersOurs)->Name("integers_1024/ours");

/// The same copies without the library: into what grows, into a buffer of its own, and back into a vector.
void integersCopied(benchmark::State& state) {
    const std::vector<int> values = integers();
    const std::size_t size = values.size() * sizeof(int);
    for (auto _ : state) {
        std::vector<unsigned char> written(size);
        std::memcpy(written.data(), values.data(), size);
        benchmark::DoNotOptimize(written.data());
        const std::unique_ptr<unsigned char[]> bytes(new unsigned char[size]);
        std::memcpy(bytes.get(), written.data(), size);
        benchmark::DoNotOptimize(bytes.get());
        std::vector<int> read(values.size());
        std::memcpy(read.data(), bytes.get(), size);
        benchmark::DoNotOptimize(read.data());
    }
}
BENCHMARK(integersCopied)->Name("integers_1024/same_copies");

void integersThereAndBack(benchmark::State& state) {
    const std::vector<int> values = integers();
    const std::size_t size = values.size() * sizeof(int);
    for (auto _ : state) {
        const std::unique_ptr<unsigned char[]> bytes(new unsigned char[size]);
        std::memcpy(bytes.get(), values.data(), size);
        benchmark::DoNotOptimize(bytes.get());
        std::vector<int> read(values.size());
        std::memcpy(read.data(), bytes.get(), size);
        benchmark::DoNotOptimize(read.data());
    }
}
BENCHMARK(integersThereAndBack)->Name("integers_1024/memcpy");

} // namespace

int main(int argc, char** argv) { return Bench::runAll(argc, argv); }
