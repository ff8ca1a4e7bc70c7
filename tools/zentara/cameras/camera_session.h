#pragma once

#include <memory>
#include <string>

#include <zentara/core/depth_node_interface.h>
#include <zentara/io/library_parameter_interpreter.h>

#include "host/cameras/camera_bus.h"
#include "host/cameras/open_node.h"
#include "tools/zentara/json_output.h"
#include "tools/zentara/verb.h"

namespace Zentara::Tool {

/// What the verbs that look at one camera have in common.
struct CameraOptions {
    std::string camera;
    bool json = false;
    bool writes = false; ///< then one of several cameras has to be named
};

/// --camera, which names one camera.
void addCameraName(CLI::App& command, std::string& name);

void addCameraOptions(CLI::App& command, CameraOptions& options);

/// One camera, through its depth node where it has one. Bound.
class CameraSession final {
public:
    /// Finds the camera and opens its depth node. \throws Failure
    CameraSession(const CameraOptions& wanted, Console& target);
    ~CameraSession();
    CameraSession(const CameraSession&) = delete;
    CameraSession& operator=(const CameraSession&) = delete;

    [[nodiscard]] const CameraEntry& camera() const noexcept { return entry; }
    [[nodiscard]] bool hasDepth() const noexcept { return node != nullptr; }
    /// \throws Failure when the camera has no depth node
    [[nodiscard]] Core::DepthNodeInterface& depth() const;
    /// What the description says of the depth node, or of the first one of a camera that has none.
    [[nodiscard]] Core::DescriptorStoreRO& store() const { return node ? node->store() : description.view(); }

    /// The camera's parameters; connects to their back-end at the first call.
    /// \throws Failure, also when the description names no back-end
    [[nodiscard]] IO::ParameterInterpreter& parameters();
    /// Lets go of the back-end: the next call of parameters() connects anew, as another program would.
    void reconnect();

    /// Ends the verb: prints the result as JSON, with the camera added, or the text.
    void finish(const Json& result, const std::string& text) const;

    /// Passes a failure on. If the camera is not plugged in any more, that is what failed: exit code 3.
    [[noreturn]] void passOn(const Failure& failure) const;

private:
    const CameraOptions options;
    Console& console;
    CameraEntry entry;
    CameraStore description;
    std::unique_ptr<OpenNode<Core::DepthNodeInterface>> node;
    Utils::SmartPtr<IO::LibraryParameterInterpreter> interpreter; ///< ends before the node
};

/// Does a verb's work with one camera. \param work takes the CameraSession and returns the exit code
template<typename Work>
[[nodiscard]] ExitCode withCamera(const CameraOptions& options, Console& console, Work work) {
    CameraSession session(options, console);
    try {
        return work(session);
    } catch (const Failure& failure) {
        session.passOn(failure);
    }
}

} // namespace Zentara::Tool
