#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <exception>
#include <thread>
#include <utility>
#include <vector>

#include <zentara/utils/format.h>

#include "host/plugins/check/check_subject.h"

namespace Zentara::Host::Check {
namespace {

using Clock = std::chrono::steady_clock;
using Utils::Format;
using namespace std::chrono_literals;

constexpr int attempts = 5;           ///< until a frame is there
constexpr int largestFrame = 1 << 24; ///< bytes, of the cameras of this kind
constexpr int unreasonable = 1 << 28; ///< bytes of a frame
constexpr auto slack = 300ms;         ///< what a busy machine adds to a wait

/// A buffer with a border that nobody may write to.
class Bordered {
public:
    explicit Bordered(std::size_t size) : bytes(size + border, mark) {}

    [[nodiscard]] std::uint8_t* data() { return bytes.data(); }
    [[nodiscard]] bool isIntact() const {
        return std::all_of(bytes.end() - border, bytes.end(),
                           [](std::uint8_t value) { return value == mark; });
    }

private:
    static constexpr std::ptrdiff_t border = 256;
    static constexpr std::uint8_t mark = 0xA5;
    std::vector<std::uint8_t> bytes;
};

struct ReadResult {
    ReadBufferStatus status = ReadBufferStatus_OK;
    std::int64_t timestamp = -1;
    int length = 0;
};

/// Once, within a reader's patience.
ReadResult readOnce(const Reader& read, Bordered& buffer, int size) {
    ReadResult result;
    const auto start = Clock::now();
    result.status = read(buffer.data(), size, &result.timestamp, &result.length);
    const std::chrono::duration<double> taken = Clock::now() - start;
    if (!buffer.isIntact())
        throw Finding{StepVerdict::Failed, Format("wrote beyond the % bytes of the buffer") % size,
                      "memory of the host is overwritten; it crashes, then or later",
                      "compare the frame with `size` first, and return ReadBufferStatus_TOO_SMALL"};
    if (taken > readerPatience + slack)
        throw Finding{StepVerdict::Failed,
                      Format("came back after % s, with %") % taken.count() % statusName(result.status),
                      "whoever ends the stream waits for the reader, and gives it up after a few seconds",
                      "return ReadBufferStatus_TIMEOUT after 1 s at most"};
    return result;
}

/// Until something else comes than that there is nothing yet.
ReadResult readSoon(const Reader& read, Bordered& buffer, int size) {
    ReadResult result;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        result = readOnce(read, buffer, size);
        if (result.status != ReadBufferStatus_TIMEOUT && result.status != ReadBufferStatus_FAILED)
            break;
    }
    return result;
}

Finding wrongStatus(ReadBufferStatus status, const char* wanted) {
    return {StepVerdict::Failed, "came back with " + statusName(status),
            "a host takes the stream for silent or broken, and gets no frame",
            Format("return % here") % wanted};
}

std::string readFrame(const Reader& read, int needed) {
    Bordered buffer(static_cast<std::size_t>(needed));
    const ReadResult result = readSoon(read, buffer, needed);
    if (result.status != ReadBufferStatus_OK)
        throw wrongStatus(result.status, "ReadBufferStatus_OK with a frame, within 1 s of when it is due");
    if (result.length <= 0 || result.length > needed)
        throw Finding{StepVerdict::Failed,
                      Format("a length of % for a buffer of % bytes") % result.length % needed,
                      "a host reads what is no part of the frame",
                      "store in `length` how many bytes of the buffer are the frame"};
    if (result.timestamp < 0)
        throw Finding{StepVerdict::Failed, "no timestamp",
                      "a host cannot tell the frame's age, nor find its match",
                      "store in `timestamp` when it was taken, in microseconds"};
    return Format("% bytes, taken at % us") % result.length % static_cast<long long>(result.timestamp);
}

} // namespace

std::string statusName(ReadBufferStatus status) {
    static const char* const names[]{"OK", "TIMEOUT", "TOO_SMALL", "NOT_STREAMING", "DISCONNECTED", "FAILED"};
    const auto number = static_cast<std::size_t>(status);
    return number < std::size(names) ? std::string(names[number])
                                     : std::string(Format("status %") % static_cast<int>(status));
}

void checkReading(CheckRun& run, const Reader& read) {
    const auto patience = attempts * (readerPatience + slack);
    int needed = 0;
    run.step(
        {operationsPart, "readBuffer into 1 byte"}, Wanted::Success,
        [&]() -> std::string {
            Bordered buffer(1);
            const ReadResult result = readSoon(read, buffer, 1);
            if (result.status != ReadBufferStatus_TOO_SMALL)
                throw wrongStatus(result.status, "ReadBufferStatus_TOO_SMALL");
            if (result.length <= 1 || result.length > unreasonable)
                throw Finding{StepVerdict::Failed, Format("TOO_SMALL, and a length of %") % result.length,
                              "a host cannot know how large a buffer to bring",
                              "store in `length` how many bytes a frame needs"};
            needed = result.length;
            return Format("TOO_SMALL: a frame needs % bytes") % needed;
        },
        patience);
    if (needed == 0)
        needed = largestFrame;
    run.step(
        {operationsPart, "readBuffer of a frame"}, Wanted::Success,
        [&]() -> std::string { return readFrame(read, needed); }, patience);
    run.step({operationsPart, "readBuffer with null pointers"}, Wanted::Refusal,
             [&]() -> std::string { return statusName(read(nullptr, needed, nullptr, nullptr)); });
    run.step({operationsPart, "readBuffer with a negative size"}, Wanted::Either, [&]() -> std::string {
        Bordered buffer(0);
        const ReadResult result = readOnce(read, buffer, -1);
        if (result.status == ReadBufferStatus_OK)
            throw wrongStatus(result.status, "ReadBufferStatus_TOO_SMALL");
        return statusName(result.status);
    });
    run.step(
        {operationsPart, "readBuffer of a frame after that"}, Wanted::Success,
        [&]() -> std::string { return readFrame(read, needed); }, patience);
}

void checkReadingWithoutStream(CheckRun& run, const std::string& when, const Reader& read) {
    run.step({operationsPart, "readBuffer " + when}, Wanted::Either, [&]() -> std::string {
        Bordered small(64);
        ReadResult result = readOnce(read, small, 64);
        if (result.status == ReadBufferStatus_TOO_SMALL && result.length > 64 &&
            result.length <= unreasonable) {
            Bordered large(static_cast<std::size_t>(result.length));
            result = readOnce(read, large, result.length);
        }
        if (result.status == ReadBufferStatus_OK || result.status == ReadBufferStatus_TOO_SMALL)
            throw wrongStatus(result.status, "ReadBufferStatus_NOT_STREAMING");
        return statusName(result.status);
    });
}

void checkReadingBeside(CheckRun& run, const Reader& read, const std::string& besideName,
                        const std::function<void()>& beside, const std::function<void()>& end) {
    std::atomic<int> frames = 0;
    std::atomic<bool> stopping = false;
    std::atomic<std::int64_t> endedAt = 0; ///< of the reader
    std::exception_ptr failure;
    std::thread reader;
    const auto now = [] { return Clock::now().time_since_epoch().count(); };
    const auto awaitReader = [&](std::chrono::nanoseconds patience) {
        for (const auto start = now(); endedAt == 0 && now() - start < patience.count();)
            std::this_thread::sleep_for(1ms);
        return endedAt != 0;
    };
    const auto readAll = [&] {
        try {
            std::vector<std::uint8_t> buffer(largestFrame);
            ReadResult result;
            while (!stopping && result.status != ReadBufferStatus_NOT_STREAMING &&
                   result.status != ReadBufferStatus_DISCONNECTED) {
                result.status = read(buffer.data(), largestFrame, &result.timestamp, &result.length);
                frames += result.status == ReadBufferStatus_OK;
            }
        } catch (...) {
            failure = std::current_exception();
        }
        endedAt = now();
    };
    run.step({threadsPart, "readBuffer on one thread beside " + besideName + " on another"}, Wanted::Success,
             [&]() -> std::string {
                 reader = std::thread(readAll);
                 for (const auto until = Clock::now() + 300ms; Clock::now() < until;) {
                     beside();
                     std::this_thread::sleep_for(10ms);
                 }
                 return Format("% frames meanwhile") % frames.load();
             });
    run.step(
        {threadsPart, "the end of the stream while readBuffer waits"}, Wanted::Success, [&]() -> std::string {
            if (!reader.joinable()) // the step before is left out
                reader = std::thread(readAll);
            std::this_thread::sleep_for(10ms);
            const std::int64_t before = now();
            end();
            if (!awaitReader(readerPatience + slack))
                throw Finding{StepVerdict::Failed, "the reader did not come back within 1 s",
                              "whoever ends the stream waits for the reader, and ends the process in the end",
                              "wake what waits in readBuffer, and return ReadBufferStatus_NOT_STREAMING"};
            if (failure)
                std::rethrow_exception(std::exchange(failure, nullptr));
            return Format("the reader came back after % ms") %
                   (std::max<std::int64_t>(endedAt - before, 0) / 1'000'000);
        });
    stopping = true;
    if (!reader.joinable())
        return;
    if (!awaitReader(3s))
        run.abandon("a thread still waits in readBuffer");
    reader.join();
}

} // namespace Zentara::Host::Check
