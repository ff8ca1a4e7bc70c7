#include "plugins/simulated/store/simulated_descriptor_store.h"

#include "plugins/simulated/plugin_guids.h"
#include "plugins/simulated/store/described_node.h"

namespace Zentara::Simulated {

SimulatedDescriptorStore::SimulatedDescriptorStore() : DescriptorStoreInterface(descriptorStoreGuid) {}

SimulatedDescriptorStore::~SimulatedDescriptorStore() = default;

Core::DescriptorStoreRO* SimulatedDescriptorStore::getDescriptorStore() { return view.get(); }

bool SimulatedDescriptorStore::selectNodeDescriptor(const HardwareIDs& ids, Core::Profile profile) {
    return view && view->selectNode(ids, profile);
}

void SimulatedDescriptorStore::initialize() {
    view = std::make_unique<DescribedNode>(readDescriptionFolder(descriptionFolder()));
}

void SimulatedDescriptorStore::dispose() { view.reset(); }

} // namespace Zentara::Simulated
