#include <zentara/io/av_device_interface.h>

#include <zentara/plugin/plugin_exceptions.h>

#include "core/interface_version.h"

namespace Zentara::IO {

struct AVDeviceInterface::Impl {
    NodeEvent description;                    ///< a copy: the host's may go
    Core::DescriptorStoreRO* store = nullptr; ///< not owned
};

AVDeviceInterface::AVDeviceInterface(Core::ImplType type, GUID guid)
    : Plugin(type, guid), impl(std::make_unique<Impl>()) {}

AVDeviceInterface::~AVDeviceInterface() = default;

void AVDeviceInterface::getPluginVersion(int* major, int* minor, int* patch) {
    Core::reportInterfaceVersion(major, minor, patch);
}

void AVDeviceInterface::dispose() { impl->store = nullptr; }

void AVDeviceInterface::initialize(NodeEvent* event, Core::DescriptorStoreRO* store) {
    if (!event)
        throw Zentara::Plugin::ArgumentPluginException("initialize: no description of the device");
    impl->description = *event;
    impl->store = store;
}

std::string AVDeviceInterface::getPath() const { return impl->description.path; }

const NodeEvent& AVDeviceInterface::getDescription() const { return impl->description; }

Core::DescriptorStoreRO* AVDeviceInterface::getDescriptorStore() const { return impl->store; }

} // namespace Zentara::IO
