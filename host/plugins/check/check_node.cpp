#include <functional>
#include <string>
#include <type_traits>
#include <vector>

#include <zentara/audio_configuration.h>
#include <zentara/calibration_internal.h>
#include <zentara/color_configuration.h>
#include <zentara/core/audio_node_interface.h>
#include <zentara/core/color_node_interface.h>
#include <zentara/core/depth_node_interface.h>
#include <zentara/core/descriptor_store_ro.h>
#include <zentara/core/periodic_operation.h>
#include <zentara/depth_configuration.h>
#include <zentara/io/xu_request.h>
#include <zentara/utils/format.h>

#include "host/plugins/check/check_subject.h"

namespace Zentara::Host::Check {
namespace {

using Utils::Format;
using Utils::makeRefcounted;
using Utils::SmartPtr;

/// A call that may be refused in any state, but no worse. Its name is the operation's.
using Calls = std::vector<std::pair<const char*, std::function<void()>>>;

void tryCalls(CheckRun& run, const Calls& calls, Wanted wanted, const std::string& when) {
    for (const auto& [name, work] : calls)
        run.step({operationsPart, name + when}, wanted, work);
}

Calls callsOf(Core::DepthNodeInterface& node) {
    return {
        {"getVersions",
         [&node] {
             int major = 0;
             int minor = 0;
             node.getVersions(major, minor);
         }},
        {"configurePeriodicOperations with none", [&node] { node.configurePeriodicOperations({}); }},
        {"getMaximumRawBytesPerPixel", [&node] { static_cast<void>(node.getMaximumRawBytesPerPixel()); }},
        {"getPhaseScaling", [&node] { static_cast<void>(node.getPhaseScaling()); }},
        {"readTemperatures", [&node] { static_cast<void>(node.readTemperatures()); }},
        {"getRange", [&node] { static_cast<void>(node.getRange()); }},
        {"getDVPFrameMode", [&node] { static_cast<void>(node.getDVPFrameMode()); }},
        {"getImageRegistrationCalibration",
         [&node] { static_cast<void>(node.getImageRegistrationCalibration()); }},
        {"getTemperatureCalibration of a mode",
         [&node] { static_cast<void>(node.getTemperatureCalibration(DepthNode::CameraMode_0)); }},
        {"getTemperatureCalibration", [&node] { static_cast<void>(node.getTemperatureCalibration()); }},
        {"getTemperatureCompensation", [&node] { static_cast<void>(node.getTemperatureCompensation()); }},
        {"getCyclicErrorCorrection", [&node] { static_cast<void>(node.getCyclicErrorCorrection()); }},
        {"getDiagnosticData", [&node] { static_cast<void>(node.getDiagnosticData()); }},
        {"getSerialNumber", [&node] { static_cast<void>(node.getSerialNumber()); }},
        {"getAccelerometerCalibration", [&node] { static_cast<void>(node.getAccelerometerCalibration()); }},
        {"reloadROMLayout", [&node] { node.reloadROMLayout(false); }},
        {"getEnableVideoSync", [&node] { static_cast<void>(node.getEnableVideoSync()); }},
    };
}

Calls badCallsOf(Core::DepthNodeInterface& node) {
    return {
        {"process without a request", [&node] { node.process({}); }},
        {"setCalibration to nothing", [&node] { node.setCalibration(nullptr); }},
        {"setConfiguration to nothing", [&node] { node.setConfiguration({}); }},
        {"readAccelerometer without an operation",
         [&node] { static_cast<void>(node.readAccelerometer(nullptr)); }},
        {"readTemperature without an operation",
         [&node] { static_cast<void>(node.readTemperature(nullptr)); }},
        {"setIlluminationLevel of an unknown mode to -1",
         [&node] { node.setIlluminationLevel(static_cast<DepthNode::CameraMode>(99), -1); }},
        {"getTemperatureCalibration of an unknown mode",
         [&node] {
             static_cast<void>(node.getTemperatureCalibration(static_cast<DepthNode::CameraMode>(99)));
         }},
        {"setEnableVideoSync without a mode", [&node] { node.setEnableVideoSync({}, true); }},
    };
}

Calls callsOf(Core::ColorNodeInterface& node) {
    return {
        {"getCameraControlRanges", [&node] { static_cast<void>(node.getCameraControlRanges()); }},
        {"getCameraControls", [&node] { static_cast<void>(node.getCameraControls()); }},
    };
}

Calls badCallsOf(Core::ColorNodeInterface& node) {
    return {{"setCameraControl of an unknown control",
             [&node] { node.setCameraControl(static_cast<CameraControlsEnum>(9999), {}); }}};
}

Calls callsOf(Core::AudioNodeInterface& node) {
    return {{"getDefaultConfiguration", [&node] {
                 if (!node.getDefaultConfiguration())
                     throw Finding{StepVerdict::Failed, "nothing",
                                   "a host that asks for no mode has none to start",
                                   "return the first of the modes"};
             }}};
}

Calls badCallsOf(Core::AudioNodeInterface&) { return {}; }

SmartPtr<DepthBaseConfiguration> unknownMode(const Core::DepthNodeInterface&) {
    return SmartPtr<DepthBaseConfiguration>(makeRefcounted<DepthConfiguration>(
        static_cast<FrameFormat>(-7), -1, DepthNode::CameraMode_0, false, std::int16_t{0}));
}

SmartPtr<ColorConfiguration> unknownMode(const Core::ColorNodeInterface&) {
    return makeRefcounted<ColorConfiguration>(static_cast<FrameFormat>(-7), -1, PowerLineFrequency_DISABLED,
                                              static_cast<CompressionType>(99));
}

SmartPtr<AudioConfiguration> unknownMode(const Core::AudioNodeInterface&) {
    return makeRefcounted<AudioConfiguration>(-1, 3, -48000);
}

/// One node from `initialize` to `dispose`.
template<typename Node>
class NodeCheck {
public:
    NodeCheck(Subject& checked, Node& object, NodeType wantedType)
        : subject(checked), run(checked.run), node(object), type(wantedType) {}

    void all() {
        tryBefore();
        find();
        if (found.view() == nullptr)
            return;
        if (!initialized())
            return;
        run.step({operationsPart, "getConfigurations"}, Wanted::Success,
                 [this]() -> std::string { return listModes(); });
        tryCalls(run, callsOf(node), Wanted::Optional, "");
        tryCalls(run, badCallsOf(node), Wanted::Either, "");
        tryStream();
        run.step({operationsPart, "initialize a second time"}, Wanted::Success,
                 [this] { node.initialize(&found.event, found.view(), nullptr); });
        end();
    }

private:
    void tryBefore() {
        checkReadingWithoutStream(run, "before initialize", reader());
        run.step({operationsPart, "getConfigurations before initialize"}, Wanted::Either,
                 [this] { static_cast<void>(node.getConfigurations()); });
        tryCalls(run, callsOf(node), Wanted::Either, " before initialize");
        run.step({operationsPart, "disableStreaming before initialize"}, Wanted::Either,
                 [this] { node.disableStreaming(); });
        run.step({operationsPart, "initialize without event and store"}, Wanted::Refusal,
                 [this] { node.initialize(nullptr, nullptr, nullptr); });
    }

    /// The camera whose description names the plug-in, else one that has such a node and takes this one as well.
    void find() {
        found = findNode(subject, [this](const NodeEvent& event, const Core::DescriptorStoreRO& view) {
            return event.nodeType == type && isSame(view.getNodeImplGUID(), subject.guid);
        });
        isNamed = found.view() != nullptr;
        if (!isNamed)
            found = findNode(
                subject,
                [this](const NodeEvent& event, const Core::DescriptorStoreRO&) {
                    return event.nodeType == type;
                },
                "a camera with a node of its kind, whichever its description names");
    }

    bool initialized() {
        return run.step({operationsPart, "initialize"}, isNamed ? Wanted::Success : Wanted::Either,
                        [this] { node.initialize(&found.event, found.view(), nullptr); });
    }

    std::string listModes() {
        modes = node.getConfigurations();
        for (const auto& mode : modes)
            if (!mode)
                throw Finding{StepVerdict::Failed, "a mode is null", "a host that shows the modes crashes",
                              "list none that is null"};
        if (modes.empty())
            throw Finding{StepVerdict::Failed, "no mode", "a host has nothing to start",
                          "list the modes of the description, or those that the device reports"};
        return Format("% modes, first %") % modes.size() % modes.front()->getName();
    }

    void tryStream() {
        run.step({operationsPart, "enableStreaming without a mode"}, Wanted::Refusal,
                 [this] { node.enableStreaming({}); });
        run.step({operationsPart, "enableStreaming in a mode that the node has not listed"}, Wanted::Refusal,
                 [this] { node.enableStreaming(unknownMode(node)); });
        run.step({operationsPart, "disableStreaming without a stream"}, Wanted::Either,
                 [this] { node.disableStreaming(); });
        checkReadingWithoutStream(run, "without a stream", reader());
        if (modes.empty())
            return;
        const bool streams =
            run.step({operationsPart, "enableStreaming"}, Wanted::Success, [this]() -> std::string {
                node.enableStreaming(modes.front());
                return modes.front()->getName();
            });
        if (!streams)
            return;
        checkReading(run, reader());
        run.step({operationsPart, "enableStreaming while it streams"}, Wanted::Refusal,
                 [this] { node.enableStreaming(modes.front()); });
        checkReadingBeside(
            run, reader(), "getConfigurations", [this] { static_cast<void>(node.getConfigurations()); },
            [this] { node.disableStreaming(); });
        run.step({operationsPart, "disableStreaming a second time"}, Wanted::Either,
                 [this] { node.disableStreaming(); });
        checkReadingWithoutStream(run, "after the stream's end", reader());
        run.step({operationsPart, "enableStreaming again"}, Wanted::Success,
                 [this] { node.enableStreaming(modes.front()); });
    }

    void end() {
        run.step({endingPart, "dispose"}, Wanted::Success, [this] { node.dispose(); });
        run.step({endingPart, "dispose a second time"}, Wanted::Success, [this] { node.dispose(); });
        run.step({endingPart, "getConfigurations after dispose"}, Wanted::Either,
                 [this] { static_cast<void>(node.getConfigurations()); });
        modes.clear();
    }

    Reader reader() {
        return [this](void* buffer, int size, std::int64_t* timestamp, int* length) {
            return node.readBuffer(buffer, size, timestamp, length);
        };
    }

    Subject& subject;
    CheckRun& run;
    Node& node;
    const NodeType type;
    FoundNode found;
    bool isNamed = false; ///< the description names this very plug-in
    decltype(std::declval<Node&>().getConfigurations()) modes;
};

} // namespace

void checkNode(Subject& subject, Core::Plugin& object) {
    if (auto* const depth = dynamic_cast<Core::DepthNodeInterface*>(&object))
        NodeCheck(subject, *depth, NodeType_DEPTH).all();
    else if (auto* const color = dynamic_cast<Core::ColorNodeInterface*>(&object))
        NodeCheck(subject, *color, NodeType_COLOR).all();
    else if (auto* const audio = dynamic_cast<Core::AudioNodeInterface*>(&object))
        NodeCheck(subject, *audio, NodeType_AUDIO).all();
}

} // namespace Zentara::Host::Check
