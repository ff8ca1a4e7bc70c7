#include <zentara/io/enumerator_interface.h>

#include <atomic>

#include <zentara/plugin/call_plugin.h>
#include <zentara/utils/thread.h>

#include "core/interface_version.h"

namespace Zentara::IO {

struct EnumeratorInterface::Impl {
    explicit Impl(Runnable* work) : thread(work, nullptr, "DeviceEnumerator") {}

    // The thread and callers of the snapshot look at both while another thread disposes.
    std::atomic<Utils::Collection::Queue<ExternalEvent>*> events = nullptr;
    std::atomic<Core::DescriptorStoreRO*> store = nullptr;
    Utils::Threading::Thread thread; ///< serialises its starts and stops, and holds no lock while it waits
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
    // The thread first: until it has ended it may push into the queue and ask the store.
    Zentara::Plugin::callPlugin([this] { impl->thread.stop(true); });
    impl->events = nullptr;
    impl->store = nullptr;
}

void EnumeratorInterface::execute() { impl->thread.start(false); }

void EnumeratorInterface::exit() { Runnable::exit(); }

Utils::Collection::Queue<ExternalEvent>* EnumeratorInterface::getEventQueue() const { return impl->events; }

Core::DescriptorStoreRO* EnumeratorInterface::getDescriptorStore() const { return impl->store; }

} // namespace Zentara::IO
