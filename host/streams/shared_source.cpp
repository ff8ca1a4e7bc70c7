#include "host/streams/shared_source.h"

#include <atomic>
#include <optional>
#include <string>
#include <utility>

#include <zentara/host/attempt.h>
#include <zentara/utils/clock.h>
#include <zentara/utils/format.h>
#include <zentara/utils/mutex.h>
#include <zentara/utils/signal.h>

#include "host/streams/shared_ring.h"

namespace Zentara::Host {

using Utils::Format;
using Utils::Threading::AutoLock;

namespace {

constexpr std::size_t pictureSlots = 8;
constexpr std::size_t soundSlots = 64;
constexpr std::int64_t longestRead = 900'000; // microseconds, as the next three
constexpr std::int64_t silenceUntilLook = 250'000;
constexpr std::int64_t firstLooks = 20'000; // until the first frame
constexpr std::int64_t startPatience = 2'000'000;
constexpr unsigned long frameLookMilliseconds = 2;
constexpr unsigned long startLookMilliseconds = 50;
constexpr int claims = 5; // somebody may just be looking whether the last one lives

class SharedSource final : public StreamSource {
public:
    explicit SharedSource(std::shared_ptr<StreamSource> own)
        : source(std::move(own)), hardware(source->hardware()) {
        if (hardware.empty())
            throw Failure(Failure::Usage, "cannot share the stream of " + source->label(),
                          "it does not come from a camera that is plugged in");
    }

    [[nodiscard]] const StreamInfo& info() const override { return source->info(); }
    [[nodiscard]] std::string label() const override { return source->label(); }
    [[nodiscard]] std::size_t usualBytes() const override { return source->usualBytes(); }

    void start() override {
        const auto board = openBoard();
        reader = board ? FrameReader::make(board, mode()) : nullptr;
        if (!reader && !startOwn(board.get()))
            reader = awaitReader(board);
        if (reader) {
            describe(Format("the frames of process %") % reader->process());
            return;
        }
        if (board)
            startGiving(board);
    }

    ReadBufferStatus read(void* buffer, int size, std::int64_t* micros, int* length) override {
        if (reader)
            return readShared(static_cast<std::byte*>(buffer), size, micros, length);
        const ReadBufferStatus status = source->read(buffer, size, micros, length);
        if (status == ReadBufferStatus_OK && giver)
            give(static_cast<const std::byte*>(buffer), *length, *micros);
        return status;
    }

    [[nodiscard]] SensorValueArray temperatures() override {
        SensorValueArray readings =
            reader ? SensorValueArray() : source->temperatures(); // else frames tell them
        const AutoLock hold(lock);
        measured = readings;
        return readings;
    }
    [[nodiscard]] const Recorded* recorded() const override { return reader ? &told : source->recorded(); }
    [[nodiscard]] std::uint64_t missedBefore() const override { return missedLast; }
    [[nodiscard]] std::string sharing() const override {
        const AutoLock hold(lock);
        return description;
    }

    void stop() override {
        stopped = true;
        wake.set();
        if (!reader)
            source->stop();
    }
    void close() override {
        giver.reset();
        source->close();
    }

private:
    [[nodiscard]] const std::string& mode() const { return source->info().mode.name; }

    void describe(std::string text) {
        const AutoLock hold(lock);
        description = std::move(text);
    }
    void keepToItself(const std::string& why) {
        describe("its own frames, which it cannot give to others: " + why);
    }

    [[nodiscard]] std::shared_ptr<SharedBoard> openBoard() {
        try {
            return std::make_shared<SharedBoard>(hardware);
        } catch (const Failure& failure) {
            keepToItself(failure.what());
            return nullptr;
        }
    }

    /// \return false when somebody else has it, who may be about to give its frames
    /// \throws Failure
    [[nodiscard]] bool startOwn(const SharedBoard* board) {
        try {
            attempt(Format("stream % from %") % mode() % label(), [this] { source->start(); });
            return true;
        } catch (const Failure& failure) {
            if (failure.code() != Failure::Busy || board == nullptr)
                throw;
            busy = failure;
            return false;
        }
    }

    [[nodiscard]] std::unique_ptr<FrameReader> awaitReader(const std::shared_ptr<SharedBoard>& board) {
        const std::int64_t end = Utils::Clock::nowMicros() + startPatience;
        while (!stopped && Utils::Clock::nowMicros() < end) {
            if (auto found = FrameReader::make(board, mode()))
                return found;
            wake.timedWait(startLookMilliseconds);
        }
        const auto notice = board->look();
        throw Failure(busy->code(), busy->message(), busy->cause(),
                      notice ? Format("process % gives its frames in mode %: ask for that one") %
                                   notice->process() % notice->mode
                             : Format("the one who has it does not give its frames in mode %") % mode());
    }

    void startGiving(const std::shared_ptr<SharedBoard>& board) {
        const std::size_t slots = info().mode.kind == Kind::Audio ? soundSlots : pictureSlots;
        for (int claim = 0; claim < claims && !giver; ++claim) {
            if (claim != 0)
                wake.timedWait(frameLookMilliseconds);
            giver = FrameGiver::make(board, mode(), slots, usualBytes());
        }
        if (giver) {
            describe("its own frames, which it gives to others");
        } else if (const auto notice = board->look()) {
            keepToItself(Format("process % gives those of mode %") % notice->process() % notice->mode);
        } else {
            keepToItself("somebody else is about to");
        }
    }

    /// That it cannot be done is no reason to end a stream.
    void give(const std::byte* bytes, int length, std::int64_t micros) {
        last.micros = micros;
        last.length = static_cast<std::size_t>(length);
        {
            const AutoLock hold(lock);
            last.temperatures = measured;
        }
        try {
            giver->give(last, bytes);
        } catch (const Failure& failure) {
            giver.reset();
            keepToItself(failure.what());
        }
    }

    ReadBufferStatus readShared(std::byte* buffer, int size, std::int64_t* micros, int* length) {
        const std::int64_t end = Utils::Clock::nowMicros() + longestRead;
        while (!stopped) {
            const auto found = reader->take(last, {buffer, static_cast<std::size_t>(size)}, missed);
            const std::int64_t now = Utils::Clock::nowMicros();
            if (found != SharedRing::Found::Nothing) {
                nextLook = now + silenceUntilLook;
                *micros = last.micros;
                *length = static_cast<int>(last.length);
                if (found == SharedRing::Found::TooSmall)
                    return ReadBufferStatus_TOO_SMALL;
                hasRead = true;
                told.temperatures = last.temperatures;
                missedLast = std::exchange(missed, 0);
                return ReadBufferStatus_OK;
            }
            if (now >= nextLook) {
                if (!reader->goesOn())
                    throw Failure(Failure::NoDevice, "cannot read the shared frames of " + label(),
                                  Format("process %, which gave them, has ended its stream") %
                                      reader->process());
                nextLook = now + (hasRead ? silenceUntilLook : firstLooks);
            }
            if (now >= end)
                return ReadBufferStatus_TIMEOUT;
            wake.timedWait(frameLookMilliseconds);
        }
        return ReadBufferStatus_NOT_STREAMING;
    }

    const std::shared_ptr<StreamSource> source;
    const std::string hardware;
    std::optional<Failure> busy; ///< set where somebody else had it at the start

    // Made by start(), used by the thread that reads. One of the two at most.
    std::unique_ptr<FrameGiver> giver;
    std::unique_ptr<FrameReader> reader;
    SharedFrame last;
    Recorded told;                ///< of a frame that another one gave
    std::uint64_t missed = 0;     ///< since the last frame
    std::uint64_t missedLast = 0; ///< before the last frame
    bool hasRead = false;         ///< a frame of the other one
    std::int64_t nextLook = 0;    ///< whether the other one lives

    std::atomic<bool> stopped{false};
    Utils::Threading::Signal wake; ///< set by stop()
    mutable Utils::Threading::Mutex lock;
    std::string description ZENTARA_GUARDED_BY(lock);
    SensorValueArray measured ZENTARA_GUARDED_BY(lock); ///< goes with the frames that are given to others
};

} // namespace

std::shared_ptr<StreamSource> shareSource(std::shared_ptr<StreamSource> source) {
    return std::make_shared<SharedSource>(std::move(source));
}

} // namespace Zentara::Host
