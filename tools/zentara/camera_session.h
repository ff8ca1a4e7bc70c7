#pragma once

#include <memory>
#include <string>

#include <zentara/core/depth_node_interface.h>
#include <zentara/io/library_parameter_interpreter.h>

#include "tools/zentara/camera_bus.h"
#include "tools/zentara/json_output.h"
#include "tools/zentara/node_source.h"
#include "tools/zentara/verb.h"

namespace Zentara::Tool {

/// What the verbs that look at one camera have in common.
struct CameraOptions {
    std::string camera;
    bool json = false;
};

void addCameraOptions(CLI::App& command, CameraOptions& options);

/// One camera through its depth node. Bound.
class CameraSession final {
public:
    /// Finds the camera and opens its depth node. \throws ToolFailure
    CameraSession(const char* verbName, const CameraOptions& wanted, Console& target);
    ~CameraSession();
    CameraSession(const CameraSession&) = delete;
    CameraSession& operator=(const CameraSession&) = delete;

    [[nodiscard]] const CameraEntry& camera() const noexcept { return entry; }
    [[nodiscard]] Core::DepthNodeInterface& depth() const { return **node; }
    [[nodiscard]] Core::DescriptorStoreRO& store() const { return node->store(); }

    /// The camera's parameters; connects to their back-end at the first call. \throws ToolFailure
    [[nodiscard]] IO::ParameterInterpreter& parameters();

    /// Who the camera is: path, serial number, vendor and product.
    [[nodiscard]] Json identity() const;

    /// Ends the verb: prints the result as JSON, with the camera added, or the text.
    void finish(const Json& result, const std::string& text) const;

private:
    const char* const verb;
    const CameraOptions options;
    Console& console;
    CameraEntry entry;
    std::unique_ptr<OpenNode<Core::DepthNodeInterface>> node;
    Utils::SmartPtr<IO::LibraryParameterInterpreter> interpreter; ///< ends before the node
};

} // namespace Zentara::Tool
