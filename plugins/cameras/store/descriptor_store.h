#pragma once

#include <memory>

#include <zentara/core/descriptor_store_interface.h>

namespace Zentara::Cameras {

class DescribedNode;

/// The store of the cameras that are described in "cameras/" below the install root. `initialize` reads the
/// descriptions, anew each time; one that is wrong is left out, and the log tells why. Before it, and after
/// `dispose`, there is no view. Separate.
class DescriptorStore final : public Core::DescriptorStoreInterface {
public:
    DescriptorStore();
    ~DescriptorStore() override;

    [[nodiscard]] Core::DescriptorStoreRO* getDescriptorStore() override;
    bool selectNodeDescriptor(const HardwareIDs& ids, Core::Profile profile) override;
    void initialize() override;
    void dispose() override;

private:
    std::unique_ptr<DescribedNode> view;
};

} // namespace Zentara::Cameras
