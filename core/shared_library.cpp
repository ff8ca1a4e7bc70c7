#include <zentara/core/shared_library.h>

#include <zentara/plugin/call_plugin.h>
#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/atomic_int.h>
#include <zentara/utils/dynamic_library.h>
#include <zentara/utils/format.h>
#include <zentara/utils/mutex.h>

#include "core/plugin_file.h"

namespace Zentara::Core {

using Utils::Format;
using Utils::Threading::AutoLock;

namespace {

constexpr const char* factoryName = "createInstance";

/// Holds an object reference until after the mutex has been given back: the last one deletes the mutex.
class Guard {
public:
    explicit Guard(SharedLibrary& guarded) : library(guarded) { library.Refcounted::incref(); }
    ~Guard() { library.release(); }
    Guard(const Guard&) = delete;
    Guard& operator=(const Guard&) = delete;

private:
    SharedLibrary& library;
};

} // namespace

struct SharedLibrary::Impl {
    Impl(const std::string& file, Factory function, ImplType kind, GUID identity)
        : path(file), type(kind), guid(identity), factory(function) {}

    /// Opens the library and finds its factory, unless there is one already.
    void load() ZENTARA_REQUIRES(lock);

    const std::string path;
    const ImplType type;
    const GUID guid;
    Utils::Threading::Mutex lock;
    Factory factory ZENTARA_GUARDED_BY(lock);        ///< null while not loaded, unless it is the host's own
    void* handle ZENTARA_GUARDED_BY(lock) = nullptr; ///< null while not loaded
    Utils::AtomicInt useCount{0};
};

void SharedLibrary::Impl::load() {
    if (factory)
        return;
    std::string problem; // the scan told it; here the path is enough
    void* library = openPluginFile(path, problem);
    if (!library)
        throw Zentara::Plugin::InitializationPluginException(Format("couldn't open: %") % path);
    factory = reinterpret_cast<Factory>(Utils::getFunction(library, factoryName));
    if (!factory) {
        Utils::freeSharedLibrary(library);
        throw Zentara::Plugin::InitializationPluginException(Format("couldn't find function: %") %
                                                             factoryName);
    }
    handle = library;
}

SharedLibrary::SharedLibrary(const std::string& path, ImplType type, GUID guid)
    : impl(std::make_unique<Impl>(path, nullptr, type, guid)) {}

SharedLibrary::SharedLibrary(Factory factory, ImplType type, GUID guid)
    : impl(std::make_unique<Impl>(std::string(), factory, type, guid)) {}

// Still loaded only after a factory threw: its library waits for another attempt.
SharedLibrary::~SharedLibrary() {
    if (impl->handle)
        Utils::freeSharedLibrary(impl->handle);
}

void SharedLibrary::incref() {
    const AutoLock hold(impl->lock);
    incref_noLock();
}

void SharedLibrary::decref() {
    const Guard self(*this);
    const AutoLock hold(impl->lock);
    if (!impl->useCount.decrementAndTest())
        return;
    // The host's own factory stays: there is nothing to load again.
    if (impl->handle) {
        Utils::freeSharedLibrary(impl->handle);
        impl->handle = nullptr;
        impl->factory = nullptr;
    }
    Refcounted::decref();
}

void* SharedLibrary::createInstance() {
    const Guard self(*this);
    const AutoLock hold(impl->lock);
    impl->load();
    // Counted before the call, since the object's constructor may take and drop references of its own.
    incref_noLock();
    if (impl->type == ImplType_PARAMETER_INTERPRETER)
        return nullptr;
    try {
        return Zentara::Plugin::callPlugin(impl->factory);
    } catch (...) {
        // The library stays loaded for the next attempt.
        if (impl->useCount.decrementAndTest())
            Refcounted::decref();
        throw;
    }
}

void SharedLibrary::release() { Refcounted::decref(); }

ImplType SharedLibrary::getImplType() const noexcept { return impl->type; }

void* SharedLibrary::getHandle() const {
    const AutoLock hold(impl->lock);
    return impl->handle;
}

void SharedLibrary::incref_noLock() {
    // All uses together hold one reference on this record, so that it outlives the manager with its objects.
    if (impl->useCount.incrementAndTest())
        Refcounted::incref();
}

} // namespace Zentara::Core
