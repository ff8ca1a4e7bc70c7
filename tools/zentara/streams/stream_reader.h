#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <zentara/utils/mutex.h>
#include <zentara/utils/runnable.h>
#include <zentara/utils/signal.h>
#include <zentara/utils/thread.h>

#include "tools/zentara/streams/stream_source.h"

namespace Zentara::Tool {

/// Pulls a stream from its source on a thread of its own, until enough has come, the stream ends or it fails.
/// progress(), finished() and failed() are safe; the rest belongs to the thread that made the reader.
class StreamReader final : private Utils::Threading::Runnable {
public:
    /// Takes one unit; false ends the reading. Called on the reader's thread; what it throws ends the reading, too.
    using Take = std::function<bool(const std::uint8_t* data, std::size_t size, std::int64_t micros)>;

    /// \param from must outlive the reader's thread.
    /// \param ended set when the reading ends; must outlive the reader's thread.
    StreamReader(StreamSource& from, Take taker, Utils::Threading::Signal& ended);
    ~StreamReader() override;

    void start();

    /// Takes nothing more from now on, whatever comes. Safe.
    void halt();

    /// How many units have been taken.
    [[nodiscard]] std::uint64_t progress() const noexcept { return units.load(); }
    [[nodiscard]] bool finished() const noexcept { return done.load(); }
    /// Whether the reading ended by a failure.
    [[nodiscard]] bool failed() const noexcept { return finished() && failure != nullptr; }

    /// Waits for the thread, which the end of the stream has woken.
    void join();

    /// Throws what ended the reading, if it was a failure. After join().
    void rethrow() const;

private:
    void* run(void*) override;
    void readUnits();
    [[nodiscard]] bool takeUnit(int length, std::int64_t micros);
    void makeRoom(int length);

    const std::string label;
    StreamSource& source;
    std::vector<std::uint8_t> buffer;
    Utils::Threading::Mutex taking;
    bool halted ZENTARA_GUARDED_BY(taking) = false;
    const Take take;
    Utils::Threading::Signal& wake;
    std::atomic<std::uint64_t> units{0};
    std::atomic<bool> done{false};
    std::exception_ptr failure; ///< written before `done`
    Utils::Threading::Thread thread;
};

} // namespace Zentara::Tool
