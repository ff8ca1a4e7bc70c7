#pragma once

#include <memory>
#include <string>
#include <vector>

#include <zentara/core/audio_node_interface.h>
#include <zentara/core/color_node_interface.h>
#include <zentara/core/depth_node_interface.h>
#include <zentara/host/camera.h>
#include <zentara/io/library_parameter_interpreter.h>

#include "host/cameras/bound_chip.h"
#include "host/cameras/camera_bus.h"
#include "host/cameras/open_node.h"

namespace Zentara::Host {

/// What of a camera that is plugged in was opened so far: its nodes, its parameter back-end, its controller. Used on the
/// camera's own thread alone; but a stream's reader may read from a node that it holds.
class CameraParts final {
public:
    /// \param found what an enumerator found \param watch of chip()'s transfers
    CameraParts(CameraEntry found, std::shared_ptr<TransferWatch> watch, Note told);
    ~CameraParts();
    CameraParts(const CameraParts&) = delete;
    CameraParts& operator=(const CameraParts&) = delete;

    [[nodiscard]] const CameraEntry& entry() const noexcept { return camera; }

    // Opened at the first call, and shared from then on. \throws Failure (NoDevice) when the camera has none
    [[nodiscard]] std::shared_ptr<OpenNode<Core::DepthNodeInterface>> depth();
    [[nodiscard]] std::shared_ptr<OpenNode<Core::ColorNodeInterface>> color();
    [[nodiscard]] std::shared_ptr<OpenNode<Core::AudioNodeInterface>> audio();
    [[nodiscard]] bool hasDepth() const noexcept { return camera.find(NodeType_DEPTH) != nullptr; }

    /// What the description says of the depth node, or of the first one of a camera that has none.
    [[nodiscard]] Core::DescriptorStoreRO& store();
    /// The description of one node. \throws Failure when no store has it
    [[nodiscard]] Core::DescriptorStoreRO& storeOf(const NodeEvent& node);

    /// The modes of a kind, as the description has them, else as the node has; none for a kind that the camera has not.
    [[nodiscard]] std::vector<Mode> modes(Kind kind);
    /// The one that the node streams in unless told otherwise. \throws Failure (NoDevice) without such a node
    [[nodiscard]] Mode defaultMode(Kind kind);
    [[nodiscard]] StreamInfo streamInfo(Kind kind, const Mode& mode, CameraInfo info);
    /// \param streamed a mode's name, whose phase delay counts where several modes have one camera mode; else the first's
    [[nodiscard]] Corrections corrections(const std::string& streamed = {});

    /// \throws Failure, Unsupported when the description names no back-end
    [[nodiscard]] IO::ParameterInterpreter& parameters();
    void disconnectParameters();

    [[nodiscard]] BoundChip& chip() { return *bound; }

    /// The camera is back, perhaps elsewhere: the next call of depth() and so on opens its node anew. The old ones end
    /// here unless a stream holds them.
    void comeBack(CameraEntry now);

    /// Lets go of everything; what fails is thrown when all has been tried.
    void close();

private:
    template<typename Node>
    [[nodiscard]] std::shared_ptr<OpenNode<Node>> opened(std::shared_ptr<OpenNode<Node>>& node,
                                                         NodeType type);

    CameraEntry camera;
    const Note note;
    std::unique_ptr<CameraStore> descriptions;
    std::shared_ptr<OpenNode<Core::DepthNodeInterface>> depthNode;
    std::shared_ptr<OpenNode<Core::ColorNodeInterface>> colorNode;
    std::shared_ptr<OpenNode<Core::AudioNodeInterface>> audioNode;
    Utils::SmartPtr<IO::LibraryParameterInterpreter>
        interpreter; ///< ends before the depth node, whose device it uses
    const std::unique_ptr<BoundChip> bound;
};

} // namespace Zentara::Host
