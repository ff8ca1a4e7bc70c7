#include <zentara/io/library_parameter_interpreter.h>

#include <algorithm>
#include <exception>

#include <zentara/core/plugin_manager.h>
#include <zentara/core/shared_library.h>
#include <zentara/io/video_device_proxy.h>
#include <zentara/plugin/plugin_exceptions.h>

#include "utils/log_warning.h"
#include "utils/visible_text.h"

namespace Zentara::IO {

namespace {

/// Holds the plug-in manager for the length of a scope.
class ManagerReference {
public:
    ManagerReference() : manager(Core::PluginManager::instance()) {
        if (!manager) {
            // The reference is counted all the same, but there is nobody to give it back to.
            throw Plugin::InitializationPluginException("there is no plug-in manager");
        }
    }
    ~ManagerReference() { manager->release(); }
    ManagerReference(const ManagerReference&) = delete;
    ManagerReference& operator=(const ManagerReference&) = delete;

    Core::PluginManager* operator->() const { return manager; }

private:
    Core::PluginManager* manager;
};

} // namespace

struct LibraryParameterInterpreter::Way {
    /// Runs a transfer on behalf of a C back-end, which no exception may reach. What is thrown has logged itself.
    template<typename Operation>
    ErrorCode transfer(const unsigned char* data, unsigned int length, Operation operation) const noexcept {
        if (!data && length > 0)
            return ErrorCode_IO;
        try {
            owner.noteTransfer(nullptr);
            operation();
            return ErrorCode_SUCCESS;
        } catch (...) {
            owner.noteTransfer(std::current_exception());
            return ErrorCode_IO;
        }
    }

    static ErrorCode send(void* context, unsigned short unit, unsigned int selector, unsigned char* data,
                          unsigned int length) {
        const auto& way = *static_cast<const Way*>(context);
        return way.transfer(
            data, length, [&] { way.device->send(unit, static_cast<std::int32_t>(selector), length, data); });
    }

    static ErrorCode receive(void* context, unsigned short unit, unsigned int selector, unsigned char* data,
                             unsigned int length) {
        const auto& way = *static_cast<const Way*>(context);
        return way.transfer(data, length, [&] {
            const bool asks = std::any_of(data, data + length, [](unsigned char byte) { return byte != 0; });
            way.device->recv(unit, static_cast<std::int32_t>(selector), length, data, !asks);
        });
    }

    LibraryParameterInterpreter& owner;
    VideoDeviceProxy* device = nullptr; ///< not owned
};

Utils::SmartPtr<LibraryParameterInterpreter> LibraryParameterInterpreter::create(GUID backEnd) {
    const ManagerReference manager;
    // Of this kind the manager makes no object: it loads the library and counts a use, which the interpreter
    // gives back with its last reference.
    static_cast<void>(manager->createInstance(backEnd, getImplType()));
    try {
        return Utils::SmartPtr<LibraryParameterInterpreter>::adopt(new LibraryParameterInterpreter(backEnd));
    } catch (...) {
        manager->decref(backEnd);
        throw;
    }
}

LibraryParameterInterpreter::LibraryParameterInterpreter(GUID backEnd)
    : ParameterInterpreter(backEnd, nullptr), way(new Way{*this}) {
    // Only a made object can ask for its library.
    setLibrary(getSharedLibrary()->getHandle());
}

// While the back-end is still loaded: the use that holds it goes after this, with the last reference.
LibraryParameterInterpreter::~LibraryParameterInterpreter() {
    try {
        dispose();
    } catch (const std::exception& failure) {
        Utils::logWarning("Failed to dispose a parameter interpreter: " + Utils::visibleText(failure.what()));
    } catch (...) {
        Utils::logWarning("Failed to dispose a parameter interpreter");
    }
}

void LibraryParameterInterpreter::initialize(VideoDeviceProxy& device, HardwareIDs ids,
                                             HardwareVersionInternal version) {
    way->device = &device;
    initialize(way.get(), Way::send, Way::receive, ids, version);
}

} // namespace Zentara::IO
