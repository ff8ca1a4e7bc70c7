#include <zentara/core/descriptor_store_interface.h>

#include "core/interface_version.h"

namespace Zentara::Core {

DescriptorStoreInterface::DescriptorStoreInterface(GUID guid) : Plugin(getImplType(), guid) {}

DescriptorStoreInterface::~DescriptorStoreInterface() = default;

ImplType DescriptorStoreInterface::getImplType() { return ImplType_DESCRIPTOR_STORE; }

void DescriptorStoreInterface::getPluginVersion(int* major, int* minor, int* patch) {
    reportInterfaceVersion(major, minor, patch);
}

void DescriptorStoreInterface::initialize() {}

void DescriptorStoreInterface::dispose() {}

} // namespace Zentara::Core
