#pragma once

#include <memory>
#include <string>
#include <utility>

#include <zentara/io/streaming_requests.h>
#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/format.h>
#include <zentara/utils/mutex.h>
#include <zentara/utils/thread_annotations.h>

#include "plugins/devices/pending_request.h"
#include "plugins/linux/call_thread.h"

namespace Zentara::Linux {

/// What a camera and a microphone of the kernel have in common: opening and closing, and that whatever may wait for the
/// hardware is done on a thread of the device's own (CallThread), to which what is open belongs, and to which it is left
/// when the device goes.
/// \tparam Interface the contract's, of one of the two kinds
/// \tparam Opened what is open: used, and destroyed, on the device's own thread, but for what it allows elsewhere
template<typename Interface, typename Opened>
class KernelDevice : public Interface {
public:
    void dispose() override {
        letGo();
        Interface::dispose();
    }
    void threadInitialize() override {}
    void threadUninitialize() override {}

    bool cancelIO() override {
        const auto thread = caller();
        return thread && thread->cancel();
    }

    void close(IO::deviceRequest* request) override {
        std::shared_ptr<Opened> last = require("close");
        std::shared_ptr<void> stream;
        {
            const Utils::Threading::AutoLock hold(lock);
            stream = endStream();
            opened.reset();
        }
        awaitReader();
        call(request, "close", [ended = std::move(stream), own = std::move(last)]() mutable {
            ended.reset();
            own.reset();
        });
    }

protected:
    using Caller = std::shared_ptr<CallThread>;

    /// \param defaultPath what is opened unless a node says another path
    KernelDevice(const GUID& guid, std::string defaultPath)
        : Interface(guid), path(std::move(defaultPath)), hardware(path) {}

    /// Lets go of what is open; another thing is opened from now on.
    /// \param whole the hardware that is silent as a whole, of which this device is a part
    void attach(const std::string& newPath, const std::string& whole) {
        letGo();
        path = newPath;
        hardware = whole;
    }

    /// Opens it. \param make \return it, on the device's own thread
    template<typename Make>
    void openWith(IO::deviceRequest* request, const char* what, Make make) {
        {
            const Utils::Threading::AutoLock hold(lock);
            if (opened)
                throw Zentara::Plugin::InvalidOperationPluginException(
                    Utils::Format("%: cannot open: the device is open already") % path);
            if (!ownThread)
                ownThread = std::make_shared<CallThread>(hardware, path);
        }
        auto made = call(request, what, std::move(make));
        const Utils::Threading::AutoLock hold(lock);
        opened = std::move(made);
    }

    /// Has it done on the device's own thread. \return what it returns \throws what it throws, and what CallThread::call does
    template<typename Work>
    auto call(IO::deviceRequest* request, const std::string& what, Work work) {
        const auto thread = caller();
        if (!thread)
            failClosed(what);
        const Devices::PendingRequest pending(request);
        return thread->call(what, std::move(work));
    }

    /// \throws Plugin::InvalidOperationPluginException unless it is open
    [[nodiscard]] std::shared_ptr<Opened> require(const char* operation) {
        auto present = openedOrNull();
        if (!present)
            failClosed(operation);
        return present;
    }
    [[nodiscard]] std::shared_ptr<Opened> openedOrNull() {
        const Utils::Threading::AutoLock hold(lock);
        return opened;
    }

    /// The reader of what streams leaves at once, and finds no stream any more.
    /// \return what goes before what is open does, on the device's own thread; may be null
    virtual std::shared_ptr<void> endStream() noexcept ZENTARA_REQUIRES(lock) = 0;

    /// Waits until the reader of a stream that has ended has gone, which is at once.
    void awaitReader() noexcept { const Utils::Threading::AutoLock reader(reading); }

    /// What is open goes on the device's own thread, which is not waited for. The destructor of each device calls it.
    void letGo() noexcept {
        Caller thread;
        std::shared_ptr<void> stream;
        std::shared_ptr<Opened> last;
        {
            const Utils::Threading::AutoLock hold(lock);
            stream = endStream();
            thread = std::move(ownThread);
            last = std::move(opened);
        }
        awaitReader();
        if (thread)
            thread->leave("close", [ended = std::move(stream), own = std::move(last)]() mutable {
                ended.reset();
                own.reset();
            });
    }

    std::string path;                ///< does not change while the device is open
    Utils::Threading::Mutex reading; ///< a reader's, while it reads; taken before `lock`
    Utils::Threading::Mutex lock;    ///< never held while waiting
    std::shared_ptr<Opened> opened ZENTARA_GUARDED_BY(lock);

private:
    [[nodiscard]] Caller caller() {
        const Utils::Threading::AutoLock hold(lock);
        return ownThread;
    }
    [[noreturn]] void failClosed(const std::string& operation) const {
        throw Zentara::Plugin::InvalidOperationPluginException(
            Utils::Format("%: cannot %: the device is closed; open it first") % path % operation);
    }

    std::string hardware;                      ///< what may be silent as a whole; as `path`
    Caller ownThread ZENTARA_GUARDED_BY(lock); ///< null until something was opened
};

} // namespace Zentara::Linux
