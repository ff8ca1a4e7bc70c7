#pragma once

#include <memory>
#include <optional>

#include <zentara/core/descriptor_store_ro.h>
#include <zentara/io/camera_chip.h>

namespace Zentara::Cameras {

/// The commands of a video node, copied from the store, and the chip that they go to: none of either for a camera
/// without a controller. Separate.
class NodeCommands {
public:
    /// \throws Plugin::InitializationPluginException when the store has commands and knows no controller for them,
    ///         and what the chip throws
    NodeCommands(Core::DescriptorStoreRO& store, IO::VideoDeviceProxy& proxy);

    /// Sends the pre-common commands, the mode's and the post-common ones, up to the first that fails.
    /// \param specific null for none
    void start(const Core::RequestList* specific);

    /// Sends what differs in another mode: its commands and the post-common ones.
    void change(const Core::RequestList* specific);

    /// Sends the stop-common commands.
    void stop();

    /// \throws Plugin::InitializationPluginException without a controller
    [[nodiscard]] IO::CameraChip& chip();

private:
    std::unique_ptr<IO::CameraChip> target;
    Core::RequestList preCommon;
    Core::RequestList postCommon;
    Core::RequestList stopCommon;
};

} // namespace Zentara::Cameras
