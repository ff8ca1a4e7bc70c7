#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include <zentara/io/streaming_requests.h>
#include <zentara/node_event.h>
#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/read_buffer_status.h>
#include <zentara/utils/format.h>
#include <zentara/utils/mutex.h>
#include <zentara/utils/thread_annotations.h>

#include "plugins/simulated/faults.h"
#include "plugins/simulated/plugged_camera.h"
#include "plugins/simulated/settings.h"
#include "plugins/simulated/stream_clock.h"

namespace Zentara::Simulated {

/// What a video and an audio device without hardware have in common: opening and closing, the pace of the stream, and
/// each operation's faults, which come before all else.
/// \tparam Interface the contract's, of one of the two kinds
template<typename Interface>
class SimulatedDevice : public Interface {
public:
    void dispose() override {
        stop();
        faults->meet(Operation::Dispose);
        Interface::dispose();
    }
    void threadInitialize() override { faults->meet(Operation::ThreadInitialize); }
    void threadUninitialize() override { faults->meet(Operation::ThreadUninitialize); }

    /// Ends a hang, else the wait for a frame or block; false when there is neither, or when cancels are refused.
    bool cancelIO() override { return !faults->refusesCancel() && (faults->cancel() || clock.cancel()); }

    void open(IO::deviceRequest* request) override {
        meet(Operation::Open, request);
        const Utils::Threading::AutoLock hold(lock);
        if (opened)
            throw Zentara::Plugin::InvalidOperationPluginException("open: the device is open already");
        opened = true;
    }
    void close(IO::deviceRequest* request) override {
        faults->meet(Operation::Close, request);
        const Utils::Threading::AutoLock hold(lock);
        requireOpen(Operation::Close);
        stop();
        opened = false;
    }
    void disableStreaming(IO::disableRequest* request) override {
        faults->meet(Operation::Disable, request);
        const Utils::Threading::AutoLock hold(lock);
        requireOpen(Operation::Disable);
        stop();
    }

protected:
    /// \param unitsKept frames or blocks that wait for a late reader
    SimulatedDevice(const GUID& guid, std::shared_ptr<Faults> shared, int unitsPerSecond, int unitsKept)
        : Interface(guid), faults(std::move(shared)), clock(unitsPerSecond, unitsKept) {}

    /// How the camera of the node is set: its settings on top of the environment's; nothing for one that has none of
    /// its own, unless they are wanted all the same.
    [[nodiscard]] std::optional<Settings> settingsOf(const NodeEvent& node, bool anyway) {
        const std::string own = camera.attach(node);
        if (own.empty() && !anyway)
            return std::nullopt;
        Settings settings = Settings::fromEnvironment();
        settings.add(own, node.parentPath);
        return settings;
    }

    void meet(Operation operation, IO::deviceRequest* request) {
        faults->meet(operation, request);
        camera.require(operationName(operation));
    }

    void requireOpen(Operation operation) const ZENTARA_REQUIRES(lock) {
        if (!opened)
            throw Zentara::Plugin::InvalidOperationPluginException(
                Utils::Format("%: the device is closed; open it first") % operationName(operation));
    }
    void requireIdle(Operation operation) ZENTARA_REQUIRES(lock) {
        if (clock.running())
            throw Zentara::Plugin::InvalidOperationPluginException(
                Utils::Format("%: the device is streaming; disable it first") % operationName(operation));
    }

    void stop() {
        clock.stop();
        camera.leaveScene();
    }

    /// Waits until the next unit falls due, for the three arguments of a `readBuffer`.
    /// \return OK when it did: its number and its time, in microseconds of the monotonic clock, are set then
    ReadBufferStatus waitForNext(const void* buffer, const std::int64_t* timestamp, const int* length,
                                 std::uint64_t& number, std::int64_t& due) {
        if (buffer == nullptr || timestamp == nullptr || length == nullptr)
            throw Zentara::Plugin::ArgumentPluginException("readBuffer: a pointer is null");
        faults->meet(Operation::ReadBuffer);
        const StreamClock::Turn turn = clock.waitForNext(number, due);
        return camera.isGone() ? ReadBufferStatus_DISCONNECTED : statusOf(turn);
    }

    const std::shared_ptr<Faults> faults;
    PluggedCamera camera;
    StreamClock clock;
    mutable Utils::Threading::Mutex lock; ///< never held while waiting for a frame or block
    bool opened ZENTARA_GUARDED_BY(lock) = false;
};

} // namespace Zentara::Simulated
