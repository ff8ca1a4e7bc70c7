#include "plugins/cameras/store/descriptor_store.h"

#include "plugins/cameras/plugin_guids.h"
#include "plugins/cameras/store/described_node.h"

namespace Zentara::Cameras {

DescriptorStore::DescriptorStore() : DescriptorStoreInterface(descriptorStoreGuid) {}

DescriptorStore::~DescriptorStore() = default;

Core::DescriptorStoreRO* DescriptorStore::getDescriptorStore() { return view.get(); }

bool DescriptorStore::selectNodeDescriptor(const HardwareIDs& ids, Core::Profile profile) {
    return view && view->selectNode(ids, profile);
}

void DescriptorStore::initialize() {
    view = std::make_unique<DescribedNode>(readDescriptionFolder(descriptionFolder()));
}

void DescriptorStore::dispose() { view.reset(); }

} // namespace Zentara::Cameras
