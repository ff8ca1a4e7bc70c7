#include <zentara/io/enumerator_interface.h>

#include <atomic>

#include <zentara/utils/mutex.h>
#include <zentara/utils/thread.h>

#include "core/interface_version.h"

namespace Zentara::IO {

using Utils::Threading::AutoLock;

struct EnumeratorInterface::Impl {
    explicit Impl(Runnable* work) : thread(work, nullptr, "DeviceEnumerator") {}

    // The thread and callers of the snapshot look at both while another thread disposes.
    std::atomic<Utils::Collection::Queue<ExternalEvent>*> events = nullptr;
    std::atomic<Core::DescriptorStoreRO*> store = nullptr;
    /// Held over start and stop, never over a wait for the thread.
    Utils::Threading::Mutex lock;
    Utils::Threading::Thread thread;
};

EnumeratorInterface::EnumeratorInterface(GUID guid)
    : Plugin(getImplType(), guid), impl(std::make_unique<Impl>(this)) {}

EnumeratorInterface::~EnumeratorInterface() { EnumeratorInterface::dispose(); }

Core::ImplType EnumeratorInterface::getImplType() { return Core::ImplType_ENUMERATOR; }

void EnumeratorInterface::getPluginVersion(int* major, int* minor, int* patch) {
    Core::reportInterfaceVersion(major, minor, patch);
}

void EnumeratorInterface::initialize(Utils::Collection::Queue<ExternalEvent>* events,
                                     Core::DescriptorStoreRO* store) {
    impl->events = events;
    impl->store = store;
}

void EnumeratorInterface::dispose() {
    impl->thread.stop(true);
    impl->events = nullptr;
    impl->store = nullptr;
}

void EnumeratorInterface::execute() {
    const AutoLock hold(impl->lock);
    impl->thread.start(false);
}

void EnumeratorInterface::exit() {
    const AutoLock hold(impl->lock);
    Runnable::exit();
}

Utils::Collection::Queue<ExternalEvent>* EnumeratorInterface::getEventQueue() const { return impl->events; }

Core::DescriptorStoreRO* EnumeratorInterface::getDescriptorStore() const { return impl->store; }

} // namespace Zentara::IO
