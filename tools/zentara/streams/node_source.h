#pragma once

#include <memory>
#include <ostream>

#include <zentara/node_event.h>

#include "tools/zentara/cameras/camera_bus.h"
#include "tools/zentara/streams/mode_choice.h"
#include "tools/zentara/streams/stream_source.h"

namespace Zentara::Core {
class AudioNodeInterface;
class ColorNodeInterface;
class DepthNodeInterface;
} // namespace Zentara::Core

namespace Zentara::Tool {

/// A camera's node with the store that describes it. `Node` is one of the three node interfaces.
template<typename Node>
class OpenNode final {
public:
    /// \throws Failure
    OpenNode(const NodeEvent& found, std::ostream& err);
    ~OpenNode();
    OpenNode(const OpenNode&) = delete;
    OpenNode& operator=(const OpenNode&) = delete;

    [[nodiscard]] Node* operator->() const { return node.get(); }
    [[nodiscard]] Node& operator*() const { return *node; }
    [[nodiscard]] const NodeEvent& event() const noexcept { return description; }
    [[nodiscard]] Core::DescriptorStoreRO& store() const { return ownStore.view(); }

    /// Lets go of the device. Once; the destructor does it, too, but keeps the failure to itself.
    void dispose();

private:
    NodeEvent description;
    CameraStore ownStore; ///< the node reads it until its end
    Utils::SmartPtr<Node> node;
    bool disposed = false;
};

extern template class OpenNode<Core::AudioNodeInterface>;
extern template class OpenNode<Core::ColorNodeInterface>;
extern template class OpenNode<Core::DepthNodeInterface>;

/// The stream of a node in the mode that is chosen. \throws Failure
[[nodiscard]] std::unique_ptr<StreamSource> openNodeStream(const NodeEvent& node, const ModeChoice& choice,
                                                           std::ostream& err);

} // namespace Zentara::Tool
