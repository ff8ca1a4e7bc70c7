#include <zentara/core/color_node_interface.h>

#include <zentara/io/video_device_proxy.h>

#include "core/interface_version.h"
#include "core/nodes/node_link.h"

namespace Zentara::Core {

struct ColorNodeInterface::Impl : NodeLink<IO::VideoDeviceProxy, ColorProcessorData> {};

ColorNodeInterface::ColorNodeInterface(GUID guid)
    : Plugin(getImplType(), guid), impl(std::make_unique<Impl>()) {}

ColorNodeInterface::~ColorNodeInterface() = default;

ImplType ColorNodeInterface::getImplType() { return ImplType_COLOR_NODE; }

void ColorNodeInterface::getPluginVersion(int* major, int* minor, int* patch) {
    reportInterfaceVersion(major, minor, patch);
}

void ColorNodeInterface::initialize(NodeEvent* event, DescriptorStoreRO* store, ColorProcessorData* data) {
    impl->connect(event, store, data).initialize(event, store);
}

void ColorNodeInterface::dispose() { impl->disconnect(); }

void ColorNodeInterface::resetDevice() {
    throw Zentara::Plugin::NotSupportedPluginException(
        "Reset Device operation is not supported by this color node implementation");
}

IO::VideoDeviceProxy* ColorNodeInterface::getAVDeviceProxy() const { return impl->proxy.get(); }

DescriptorStoreRO* ColorNodeInterface::getDescriptorStore() const { return impl->store; }

ColorProcessorData* ColorNodeInterface::getColorProcessorData() const { return impl->data; }

} // namespace Zentara::Core
