#pragma once

#include <atomic>

#include <zentara/host/note.h>
#include <zentara/node_event.h>

#include "host/cameras/camera_bus.h"
#include "host/cameras/node_turn.h"

namespace Zentara::Core {
class AudioNodeInterface;
class ColorNodeInterface;
class DepthNodeInterface;
} // namespace Zentara::Core

namespace Zentara::Host {

/// A camera's node with the store that describes it. `Node` is one of the three node interfaces.
template<typename Node>
class OpenNode final {
public:
    /// \throws Failure
    OpenNode(const NodeEvent& found, const Note& note);
    ~OpenNode();
    OpenNode(const OpenNode&) = delete;
    OpenNode& operator=(const OpenNode&) = delete;

    [[nodiscard]] Node* operator->() const { return node.get(); }
    [[nodiscard]] Node& operator*() const { return *node; }
    [[nodiscard]] const NodeEvent& event() const noexcept { return description; }
    [[nodiscard]] Core::DescriptorStoreRO& store() const { return ownStore.view(); }

    /// A stream could not end the node's own, for want of memory say: the next one does that first. Safe.
    void leaveStreaming() noexcept { isLeft = true; }
    [[nodiscard]] bool takeLeftStreaming() noexcept { return isLeft.exchange(false); }

    /// Which stream has the node. Safe.
    [[nodiscard]] NodeTurn& turn() noexcept { return streamed; }

    /// Lets go of the device. Once; the destructor does it, too, but keeps the failure to itself.
    void dispose();

private:
    NodeEvent description;
    CameraStore ownStore; ///< the node reads it until its end
    Utils::SmartPtr<Node> node;
    bool disposed = false;
    std::atomic<bool> isLeft{false};
    NodeTurn streamed;
};

extern template class OpenNode<Core::AudioNodeInterface>;
extern template class OpenNode<Core::ColorNodeInterface>;
extern template class OpenNode<Core::DepthNodeInterface>;

} // namespace Zentara::Host
