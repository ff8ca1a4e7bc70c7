#pragma once

#include <optional>

#include <zentara/audio_configuration.h>
#include <zentara/color_configuration.h>
#include <zentara/core/descriptor_store_ro.h>
#include <zentara/core/device_descriptor.h>
#include <zentara/depth_base_configuration.h>

namespace Testing {

using namespace Zentara;

/// The least that a store can be: the two records, which the test fills, and the device's implementation.
class RecordStore : public Core::DescriptorStoreRO {
public:
    const Core::DeviceDescriptor* getDeviceDescriptor() const override { return device ? &*device : nullptr; }
    const Core::NodeDescriptor* getNodeDescriptor() const override { return node ? &*node : nullptr; }
    GUID getDeviceImplGUID() const override {
        return deviceGuid ? *deviceGuid : DescriptorStoreRO::getDeviceImplGUID();
    }

    std::optional<Core::DeviceDescriptor> device;
    std::optional<Core::NodeDescriptor> node;
    std::optional<GUID> deviceGuid;
};

} // namespace Testing
