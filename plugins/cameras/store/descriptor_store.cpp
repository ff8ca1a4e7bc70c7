#include <memory>

#include <zentara/core/descriptor_store_interface.h>
#include <zentara/core/plugin_exports.h>

#include "plugins/cameras/plugin_guids.h"
#include "plugins/cameras/store/described_node.h"

namespace Zentara::Cameras {
namespace {

/// The store of the cameras that are described in "cameras/" below the install root. `initialize` reads the
/// descriptions, anew each time; one that is wrong is left out, and the log tells why. Before it, and after
/// `dispose`, there is no view. Separate.
class DescriptorStore final : public Core::DescriptorStoreInterface {
public:
    DescriptorStore() : DescriptorStoreInterface(descriptorStoreGuid) {}

    [[nodiscard]] Core::DescriptorStoreRO* getDescriptorStore() override { return view.get(); }
    bool selectNodeDescriptor(const HardwareIDs& ids, Core::Profile profile) override {
        return view && view->selectNode(ids, profile);
    }
    void initialize() override {
        view = std::make_unique<DescribedNode>(readDescriptionFolder(descriptionFolder()));
    }
    void dispose() override { view.reset(); }

private:
    std::unique_ptr<DescribedNode> view;
};

} // namespace
} // namespace Zentara::Cameras

ZENTARA_DEFINE_PLUGIN(Zentara::Cameras::DescriptorStore, Zentara::Cameras::descriptorStoreGuid,
                      Zentara::Core::ImplType_DESCRIPTOR_STORE, 1, 0, 0)
