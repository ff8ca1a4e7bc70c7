#include "ratio_reporter.h"

#include <zentara/utils/crc.h>
#include <zentara/utils/format.h>
#include <zentara/utils/logger.h>
#include <zentara/utils/refcounted.h>
#include <zentara/utils/smart_ptr.h>

#include <benchmark/benchmark.h>
#include <boost/format.hpp>
#include <boost/smart_ptr/intrusive_ptr.hpp>
#include <boost/smart_ptr/intrusive_ref_counter.hpp>
#include <fmt/format.h>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>
#include <zlib.h>

#include <array>
#include <cstdio>
#include <numeric>
#include <sstream>
#include <vector>

#include "slicing_by_8.h"

namespace {

using namespace Zentara::Utils;

const Bench::Aim formatAims[] = {{"format_text", "fmt", 1.0, "a message with one text"},
                                 {"format", "fmt", 1.0, "a message with two texts and a hexadecimal number"},
                                 {"format_numbers", "fmt", 1.0, "a name made of four small integers"},
                                 {"format", "boost", 0.25, "the same as with fmt"}};
const Bench::Aim logAims[] = {
    {"log", "spdlog", 1.0, "a logged line"},
    {"log", "write", 1.35, "a logged line; the peer writes the same bytes"},
    {"log_two_threads", "fprintf_fflush", 1.1, "a logged line of each of two threads"}};
const Bench::Aim crcAims[] = {
    {"crc16", "byte_at_a_time", 0.25, "a checksum of 64 KiB; the peer looks up each byte"},
    {"crc32", "byte_at_a_time", 0.25, "the same, wider"},
    {"crc16", "slicing_by_8", 0.45, "a checksum of 64 KiB; the peer looks up eight bytes at a time"},
    {"crc32", "slicing_by_8", 0.45, "the same, wider"}};
const Bench::Aim pointerAims[] = {
    {"smart_ptr", "boost_intrusive_ptr", 1.2, "copying a counted pointer"},
    {"smart_ptr_made", "boost_intrusive_ptr", 1.0, "making what it points to, and its end"}};

const std::string operation = "enable streaming";
const std::string reason = "Access is denied.";
const int code = 0xBEEF;
const int four[] = {1, 60, 2, 1};

// Messages of the shapes that the library builds most: one text; a name, a number in hexadecimal, a text; four numbers.
template<typename Build>
void format(benchmark::State& state, Build build) {
    for (auto _ : state) {
        std::string text = build();
        benchmark::DoNotOptimize(text);
    }
}

std::string textOurs() { return Format("cannot open '%'") % reason; }
std::string textFmt() { return fmt::format(fmt::runtime("cannot open '{}'"), reason); }
BENCHMARK_CAPTURE(format, text, textOurs)->Name("format_text/ours");
BENCHMARK_CAPTURE(format, text, textFmt)->Name("format_text/fmt");

std::string codeOurs() { return Format("% failed: error 0x%{:x}: %") % operation % code % reason; }
std::string codeFmt() {
    return fmt::format(fmt::runtime("{} failed: error 0x{:x}: {}"), operation, code, reason);
}
BENCHMARK_CAPTURE(format, code, codeOurs)->Name("format/ours");
BENCHMARK_CAPTURE(format, code, codeFmt)->Name("format/fmt");

std::string numbersOurs() { return Format("COFF%FR%PLF%COMP%") % four[0] % four[1] % four[2] % four[3]; }
std::string numbersFmt() {
    return fmt::format(fmt::runtime("COFF{}FR{}PLF{}COMP{}"), four[0], four[1], four[2], four[3]);
}
BENCHMARK_CAPTURE(format, numbers, numbersOurs)->Name("format_numbers/ours");
BENCHMARK_CAPTURE(format, numbers, numbersFmt)->Name("format_numbers/fmt");

void formatBoost(benchmark::State& state) {
    for (auto _ : state) {
        std::string text =
            boost::str(boost::format("%1% failed: error 0x%2$x: %3%") % operation % code % reason);
        benchmark::DoNotOptimize(text);
    }
}
BENCHMARK(formatBoost)->Name("format/boost");

void formatStream(benchmark::State& state) {
    for (auto _ : state) {
        std::ostringstream stream;
        stream << operation << " failed: error 0x" << std::hex << code << ": " << reason;
        std::string text = stream.str();
        benchmark::DoNotOptimize(text);
    }
}
BENCHMARK(formatStream)->Name("format/ostringstream");

// The system log is another process' cost and has no counterpart in the peer, so the file logger alone is measured.
struct FileLogger : Logger {
    static Logger* open(const char* target) { return Logger::instance(KVLogLevel_INFO, "bench", target); }
    static void close() { Logger::release(); }
};

void logLineOurs(benchmark::State& state) {
    Logger* logger = FileLogger::open("bench_ours.log");
    for (auto _ : state)
        logger->warning(reason);
    FileLogger::close();
}
BENCHMARK(logLineOurs)->Name("log/ours");

void logLineSpdlog(benchmark::State& state) {
    auto sink = std::make_shared<spdlog::sinks::basic_file_sink_mt>("bench_spdlog.log", true);
    spdlog::logger logger("bench", sink);
    logger.set_pattern("%c: [%t]: %l: %v");
    logger.flush_on(spdlog::level::trace);
    for (auto _ : state)
        logger.warn(reason);
}
BENCHMARK(logLineSpdlog)->Name("log/spdlog");

/// A line as the logger writes it.
std::string logLine() { return "Sun Nov 22 13:21:58 2026: [0000a1b2]: WARNING:  " + reason + "\n"; }

void logLineWrite(benchmark::State& state) {
    std::FILE* const file = std::fopen("bench_write.log", "a");
    std::setvbuf(file, nullptr, _IONBF, 0); // each call is one of the system
    const std::string line = logLine();
    for (auto _ : state)
        benchmark::DoNotOptimize(std::fwrite(line.data(), 1, line.size(), file));
    std::fclose(file);
}
BENCHMARK(logLineWrite)->Name("log/write");

void logFromTwo(benchmark::State& state) {
    static Logger* logger = nullptr;
    if (state.thread_index() == 0)
        logger = FileLogger::open("bench_ours.log");
    for (auto _ : state)
        logger->warning(reason);
    if (state.thread_index() == 0)
        FileLogger::close();
}
BENCHMARK(logFromTwo)->Name("log_two_threads/ours")->Threads(2)->UseRealTime();

void printFromTwo(benchmark::State& state) {
    static std::FILE* file = nullptr;
    if (state.thread_index() == 0)
        file = std::fopen("bench_print.log", "a");
    const std::string line = logLine();
    for (auto _ : state) {
        std::fprintf(file, "%s", line.c_str());
        std::fflush(file);
    }
    if (state.thread_index() == 0)
        std::fclose(file);
}
BENCHMARK(printFromTwo)->Name("log_two_threads/fprintf_fflush")->Threads(2)->UseRealTime();

std::vector<unsigned char> block() {
    std::vector<unsigned char> bytes(64 * 1024);
    std::iota(bytes.begin(), bytes.end(), static_cast<unsigned char>(1));
    return bytes;
}

template<class Word, Word Polynomial>
struct ByteAtATime {
    std::array<Word, 256> table{};
    ByteAtATime() {
        for (unsigned i = 0; i < 256; ++i) {
            Word entry = static_cast<Word>(i);
            for (int bit = 0; bit < 8; ++bit)
                entry = static_cast<Word>((entry & 1) ? (entry >> 1) ^ Polynomial : entry >> 1);
            table[i] = entry;
        }
    }
    Word compute(const std::vector<unsigned char>& bytes) const {
        Word crc = 0;
        for (unsigned char byte : bytes)
            crc = static_cast<Word>(table[(crc ^ byte) & 0xFF] ^ (crc >> 8));
        return crc;
    }
};

template<class Function>
void overBlock(benchmark::State& state, Function function) {
    auto bytes = block();
    for (auto _ : state)
        benchmark::DoNotOptimize(function(bytes));
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * bytes.size()));
}

void crc16Ours(benchmark::State& state) {
    overBlock(state,
              [](const auto& b) { return Crc16::compute(b.data(), static_cast<unsigned>(b.size()), 0); });
}
BENCHMARK(crc16Ours)->Name("crc16/ours");

void crc16Plain(benchmark::State& state) {
    static const ByteAtATime<std::uint16_t, 0xA001> plain;
    overBlock(state, [](const auto& b) { return plain.compute(b); });
}
BENCHMARK(crc16Plain)->Name("crc16/byte_at_a_time");

void crc32Ours(benchmark::State& state) {
    overBlock(state,
              [](const auto& b) { return Crc32::compute(b.data(), static_cast<unsigned>(b.size()), 0); });
}
BENCHMARK(crc32Ours)->Name("crc32/ours");

void crc32Plain(benchmark::State& state) {
    static const ByteAtATime<std::uint32_t, 0xEDB88320> plain;
    overBlock(state, [](const auto& b) { return plain.compute(b); });
}
BENCHMARK(crc32Plain)->Name("crc32/byte_at_a_time");

void crc16Sliced(benchmark::State& state) {
    static const Bench::SlicingBy8<std::uint16_t, 0xA001> sliced;
    if (const auto bytes = block(); sliced.compute(bytes.data(), bytes.size()) !=
                                    Crc16::compute(bytes.data(), static_cast<unsigned>(bytes.size()), 0))
        state.SkipWithError("the peer computes another sum");
    overBlock(state, [](const auto& b) { return sliced.compute(b.data(), b.size()); });
}
BENCHMARK(crc16Sliced)->Name("crc16/slicing_by_8");

void crc32Sliced(benchmark::State& state) {
    static const Bench::SlicingBy8<std::uint32_t, 0xEDB88320> sliced;
    overBlock(state, [](const auto& b) { return sliced.compute(b.data(), b.size()); });
}
BENCHMARK(crc32Sliced)->Name("crc32/slicing_by_8");

void crc32Zlib(benchmark::State& state) {
    overBlock(state, [](const auto& b) { return ::crc32(0, b.data(), static_cast<uInt>(b.size())); });
}
BENCHMARK(crc32Zlib)->Name("crc32/zlib");

struct Ours : Refcounted {};
struct Theirs : boost::intrusive_ref_counter<Theirs, boost::thread_safe_counter> {
    virtual ~Theirs() = default;
};

void pointerOurs(benchmark::State& state) {
    auto pointer = makeRefcounted<Ours>();
    for (auto _ : state) {
        SmartPtr<Ours> copy = pointer;
        benchmark::DoNotOptimize(copy);
    }
}
BENCHMARK(pointerOurs)->Name("smart_ptr/ours");

void pointerBoost(benchmark::State& state) {
    boost::intrusive_ptr<Theirs> pointer(new Theirs);
    for (auto _ : state) {
        boost::intrusive_ptr<Theirs> copy = pointer;
        benchmark::DoNotOptimize(copy);
    }
}
BENCHMARK(pointerBoost)->Name("smart_ptr/boost_intrusive_ptr");

void madeOurs(benchmark::State& state) {
    for (auto _ : state) {
        auto pointer = makeRefcounted<Ours>();
        benchmark::DoNotOptimize(pointer);
    }
}
BENCHMARK(madeOurs)->Name("smart_ptr_made/ours");

void madeBoost(benchmark::State& state) {
    for (auto _ : state) {
        boost::intrusive_ptr<Theirs> pointer(new Theirs);
        benchmark::DoNotOptimize(pointer);
    }
}
BENCHMARK(madeBoost)->Name("smart_ptr_made/boost_intrusive_ptr");

} // namespace

int main(int argc, char** argv) { return Bench::runAll(argc, argv); }
