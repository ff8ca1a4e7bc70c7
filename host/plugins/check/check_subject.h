#pragma once

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <zentara/core/plugin_manager.h>
#include <zentara/node_event.h>
#include <zentara/read_buffer_status.h>

#include "host/cameras/camera_bus.h"
#include "host/cameras/camera_store.h"
#include "host/plugins/check/check_run.h"

namespace Zentara::Host::Check {

/// The plug-in that is checked.
struct Subject {
    CheckRun& run;
    Core::PluginManager& manager;
    GUID guid{};
    std::int32_t type = 0;
    std::string path; ///< from which the manager has it
};

[[nodiscard]] bool isSame(const GUID& left, const GUID& right) noexcept;

/// A second thread that does one thing at a time for whoever waits for it, as the worker of all devices.
class OtherThread final {
public:
    OtherThread();
    ~OtherThread();
    OtherThread(const OtherThread&) = delete;
    OtherThread& operator=(const OtherThread&) = delete;

    /// Does it there, and throws what it throws.
    void run(const std::function<void()>& work);

private:
    void loop();

    std::mutex lock;
    std::condition_variable changed;
    const std::function<void()>* task = nullptr; ///< of whoever waits
    std::exception_ptr thrown;
    bool ending = false;
    std::thread thread; ///< the last: it uses the others
};

/// A node that stands around, as an enumerator found it, with the store that describes it.
struct FoundNode {
    NodeEvent event;
    std::unique_ptr<CameraStore> store;

    [[nodiscard]] Core::DescriptorStoreRO* view() const { return store ? &store->view() : nullptr; }
};

/// Looks through the cameras that are there for a node for which the checked plug-in was made.
/// \param serves whether it was, by its description \param step its name in the report
[[nodiscard]] FoundNode
findNode(Subject& subject, const std::function<bool(const NodeEvent&, Core::DescriptorStoreRO&)>& serves,
         const char* step = "a camera whose description names it");

/// The `readBuffer` of a node or device.
using Reader = std::function<ReadBufferStatus(void* buffer, int size, std::int64_t* timestamp, int* length)>;

/// Reads from a running stream, well and badly.
void checkReading(CheckRun& run, const Reader& read);

/// Reads before there is a stream, and after its end.
void checkReadingWithoutStream(CheckRun& run, const std::string& when, const Reader& read);

/// Reads on a thread of its own while this one does something else, and then ends the stream.
/// \param beside as often as there is time \param end ends the stream; the reader must come back then
void checkReadingBeside(CheckRun& run, const Reader& read, const std::string& besideName,
                        const std::function<void()>& beside, const std::function<void()>& end);

/// "OK", "TIMEOUT" and so on, or the number.
[[nodiscard]] std::string statusName(ReadBufferStatus status);

// Everything that hosts do with an object of each kind, from `initialize` to `dispose`. The object goes on living.
void checkDevice(Subject& subject, Core::Plugin& object);
void checkNode(Subject& subject, Core::Plugin& object);
void checkEnumerator(Subject& subject, Core::Plugin& object);
void checkStore(Subject& subject, Core::Plugin& object);

/// The functions of a parameter back-end, which has no objects. \param library its handle
void checkBackEnd(Subject& subject, void* library);

/// The exports that a back-end has besides the five of all plug-ins.
[[nodiscard]] const std::vector<std::string>& backEndExports();

} // namespace Zentara::Host::Check
