#include "host/cameras/camera_parts.h"

#include <exception>
#include <optional>
#include <utility>

#include <zentara/core/descriptor_details.h>
#include <zentara/core/guids.h>
#include <zentara/depth_base_configuration.h>
#include <zentara/plugin/call_plugin.h>

#include "host/attempt.h"
#include "host/cameras/calibration_origin.h"
#include "host/cameras/stream_description.h"
#include "host/guid_text.h"

namespace Zentara::Host {

namespace {

Failure lacks(const CameraEntry& camera, NodeType type) {
    return Failure(Failure::NoDevice, "camera " + camera.label() + " has no " + nodeTypeName(type) + " node");
}

template<typename Node>
Mode modeOfConfiguration(const OpenNode<Node>& node, const auto& configuration) {
    return modeOf({node.event(), StreamMode(configuration)});
}

template<typename Node>
std::vector<Mode> modesOfNode(const OpenNode<Node>& node) {
    std::vector<Mode> modes;
    attempt("ask " + cameraLabel(node.event()) + " for its modes", [&] {
        for (const auto& one : node->getConfigurations())
            modes.push_back(modeOfConfiguration(node, *one));
    });
    return modes;
}

template<typename Node>
Mode defaultOfNode(const OpenNode<Node>& node) {
    Mode mode;
    attempt("choose a mode of " + cameraLabel(node.event()), [&] {
        // A sound node alone names one; of another the first one is taken.
        if constexpr (requires { node->getDefaultConfiguration(); }) {
            mode = modeOfConfiguration(node, *node->getDefaultConfiguration());
        } else {
            const auto all = node->getConfigurations();
            if (all.empty())
                throw Failure(Failure::Failed, cameraLabel(node.event()) + " has no mode to stream in");
            mode = modeOfConfiguration(node, *all.front());
        }
    });
    return mode;
}

ModeCorrections correctionsOf(Core::DepthNodeInterface& depth, DepthNode::CameraMode mode,
                              TemperatureCompensation& temperature, CyclicErrorCorrection& cyclic) {
    using Kind = ModeCorrections::Temperature;
    ModeCorrections corrections;
    corrections.calibratedAt = depth.getTemperatureCalibration(mode);
    // Both hold the parameters of every mode, and answer for the one that was set last.
    if (temperature.setCurrentMode(mode)) {
        const auto algorithm = temperature.getAlgorithm();
        corrections.temperatureAlgorithm = algorithm;
        corrections.temperature =
            algorithm == TemperatureCompensation::CompensationAlgorithm_LINEAR       ? Kind::Linear
            : algorithm == TemperatureCompensation::CompensationAlgorithm_POLYNOMIAL ? Kind::Polynomial
                                                                                     : Kind::Other;
        for (unsigned index = 0; index < temperature.getParameterCount(); ++index)
            corrections.temperatureParameters.push_back(temperature.getParameter(index));
        for (unsigned index = 0; index < temperature.getSensorIDCount(); ++index)
            corrections.temperatureSensors.push_back(temperature.getSensorID(index));
    }
    if (cyclic.setCurrentMode(mode)) {
        corrections.cyclicAlgorithm = cyclic.getAlgorithm();
        for (unsigned index = 0; index < cyclic.getParameterCount(); ++index)
            corrections.cyclicParameters.push_back(cyclic.getParameter(index));
    }
    return corrections;
}

template<typename Record>
std::optional<Record> ofSize(const std::vector<Record>& records, const Mode& mode) {
    for (const Record& record : records) {
        if (record.width == mode.width && record.height == mode.height)
            return record;
    }
    return {};
}

/// What the description says where the camera itself holds models of other sizes only.
std::optional<CameraIntrinsics> describedLens(Core::DescriptorStoreRO& store, Kind kind, const Mode& mode) {
    try {
        return Zentara::Plugin::callPlugin([&] {
            return ofSize(kind == Kind::Depth ? store.getDefaultDepthIntrinsicsArray()
                                              : store.getDefaultColorIntrinsicsArray(),
                          mode);
        });
    } catch (const Zentara::Plugin::NotSupportedPluginException&) {
        return {};
    }
}

} // namespace

CameraParts::CameraParts(CameraEntry found, std::shared_ptr<TransferWatch> watch, Note told)
    : camera(std::move(found)), note(std::move(told)), bound(std::make_unique<BoundChip>(std::move(watch))) {}

CameraParts::~CameraParts() {
    try {
        close();
    } catch (const std::exception&) {
        // Whoever wants to know calls close() himself.
    }
}

template<typename Node>
std::shared_ptr<OpenNode<Node>> CameraParts::opened(std::shared_ptr<OpenNode<Node>>& node, NodeType type) {
    if (!node) {
        const NodeEvent* found = camera.find(type);
        if (found == nullptr)
            throw lacks(camera, type);
        node = std::make_shared<OpenNode<Node>>(*found, note);
    }
    return node;
}

std::shared_ptr<OpenNode<Core::DepthNodeInterface>> CameraParts::depth() {
    return opened(depthNode, NodeType_DEPTH);
}
std::shared_ptr<OpenNode<Core::ColorNodeInterface>> CameraParts::color() {
    return opened(colorNode, NodeType_COLOR);
}
std::shared_ptr<OpenNode<Core::AudioNodeInterface>> CameraParts::audio() {
    return opened(audioNode, NodeType_AUDIO);
}

Core::DescriptorStoreRO& CameraParts::store() {
    if (depthNode)
        return depthNode->store();
    const NodeEvent* depthEvent = camera.find(NodeType_DEPTH);
    if (depthEvent == nullptr && camera.nodes.empty())
        throw lacks(camera, NodeType_DEPTH);
    return storeOf(depthEvent == nullptr ? camera.nodes.front() : *depthEvent);
}

Core::DescriptorStoreRO& CameraParts::storeOf(const NodeEvent& node) {
    if (!descriptions)
        descriptions = std::make_unique<CameraStore>();
    descriptions->select(node);
    return descriptions->view();
}

std::vector<Mode> CameraParts::modes(Kind kind) {
    const NodeEvent* const node = camera.find(nodeTypeOf(kind));
    if (node == nullptr)
        return {};
    std::vector<Mode> modes;
    const Core::DescriptorStoreRO& described = storeOf(*node);
    Plugin::callPlugin([&] {
        for (const StreamDescription& one : modesOf(*node, described))
            modes.push_back(modeOf(one));
    });
    if (!modes.empty())
        return modes;
    switch (kind) {
    case Kind::Depth:
        return modesOfNode(*depth());
    case Kind::Color:
        return modesOfNode(*color());
    case Kind::Audio:
        return modesOfNode(*audio());
    }
    return modes;
}

Mode CameraParts::defaultMode(Kind kind) {
    switch (kind) {
    case Kind::Depth:
        return defaultOfNode(*depth());
    case Kind::Color:
        return defaultOfNode(*color());
    case Kind::Audio:
        return defaultOfNode(*audio());
    }
    throw lacks(camera, nodeTypeOf(kind));
}

Corrections CameraParts::corrections(const std::string& streamed) {
    const auto node = depth();
    Corrections all;
    attempt("ask for the corrections of " + cameraLabel(node->event()), [&] {
        TemperatureCompensation temperature = (*node)->getTemperatureCompensation();
        CyclicErrorCorrection cyclic = (*node)->getCyclicErrorCorrection();
        for (const auto mode : {DepthNode::CameraMode_0, DepthNode::CameraMode_1})
            all.modes[static_cast<std::size_t>(mode)] = correctionsOf(**node, mode, temperature, cyclic);
        // The node itself does not tell its phase delays; the calibrations of its modes do, each its own one. The second one
        // of the first is for the camera mode that no other mode is for.
        const auto configurations = (*node)->getConfigurations();
        if (!configurations.empty())
            all.phaseDelay2 = configurations.front()->getCalibration().getPhaseDelay2();
        bool isTold[2] = {};
        for (const auto& one : configurations) {
            const Mode mode = modeOfConfiguration(*node, *one);
            const bool isSecond = mode.cameraMode == DepthNode::CameraMode_1;
            if (isTold[isSecond] && mode.name != streamed)
                continue;
            isTold[isSecond] = true;
            (isSecond ? all.phaseDelay2 : all.phaseDelay) = one->getCalibration().getPhaseDelay();
        }
    });
    return all;
}

StreamInfo CameraParts::streamInfo(Kind kind, const Mode& mode, CameraInfo info) {
    StreamInfo told;
    told.camera = std::move(info);
    told.mode = mode;
    if (kind == Kind::Audio)
        return told;
    if (!hasDepth()) { // of lenses its description alone tells
        if (const NodeEvent* const event = camera.find(nodeTypeOf(kind)))
            told.lens = describedLens(storeOf(*event), kind, mode);
        told.lensSource = told.lens ? Source::Description : Source::None;
        return told;
    }
    const auto node = depth();
    const Core::DepthNodeInterface& depthInterface = **node;
    const Sources sources = sourcesOf(depthInterface);
    attempt("ask for the lens models of " + cameraLabel(node->event()), [&] {
        const StereoCameraParametersArray models = (*node)->getImageRegistrationCalibration();
        told.lens =
            ofSize(kind == Kind::Depth ? models.depthIntrinsics.values : models.colorIntrinsics.values, mode);
        // Twelve zeros are how a node says that it has none.
        if (!models.extrinsics.values.empty() &&
            models.extrinsics.values.front() != ExtrinsicParametersInternal())
            told.pose = models.extrinsics.values.front();
    });
    told.lensSource = told.lens ? sources.lens : Source::None;
    if (!told.lens) {
        told.lens = describedLens(node->store(), kind, mode);
        told.lensSource = told.lens ? Source::Description : Source::None;
    }
    told.poseSource = told.pose ? sources.extrinsics : Source::None;
    told.sourceFailure = sources.failure;
    if (kind == Kind::Depth) {
        told.corrections = corrections(mode.name);
        told.correctionsSource = sources.corrections;
        attempt("ask for the phase scaling of " + cameraLabel(node->event()),
                [&] { told.millimetresPerPhaseStep = (*node)->getPhaseScaling(); });
        told.depthAlong =
            Core::depthAlongOf(node->store()) == Core::DepthAlong::Ray ? DepthAlong::Ray : DepthAlong::Axis;
    }
    return told;
}

IO::ParameterInterpreter& CameraParts::parameters() {
    if (interpreter)
        return *interpreter;
    const auto node = depth();
    const GUID guid = Plugin::callPlugin([this] { return store().getParameterInterpreterGUID(); });
    if (guidEquals(guid, Core::Guids::NULL_IMPL))
        throw Unsupported("camera " + camera.label() + " has no parameters",
                          "its description names no back-end for them");
    attempt("reach the parameters through " + guidLabel(guid), [&] {
        auto connected = IO::LibraryParameterInterpreter::create(guid);
        connected->initialize(*(*node)->getAVDeviceProxy(), node->event().hardwareIds(),
                              store().getHardwareVersion());
        interpreter = connected;
    });
    return *interpreter;
}

void CameraParts::disconnectParameters() {
    if (interpreter)
        attempt("let go of the parameters", [this] { interpreter->dispose(); });
    interpreter.reset();
}

void CameraParts::comeBack(CameraEntry now) {
    camera = std::move(now);
    try {
        close();
    } catch (const Failure&) {
        // It was pulled out: nothing of it can be closed well.
    }
}

void CameraParts::close() {
    std::optional<Failure> first;
    const auto end = [&first](const auto& work) {
        try {
            work();
        } catch (const Failure& failure) {
            if (!first)
                first.emplace(failure);
        }
    };
    // In this order: the interpreter uses the depth node's device.
    end([this] { disconnectParameters(); });
    interpreter.reset();
    end([this] { bound->close(); });
    const auto endNode = [&end](auto& node) {
        if (node && node.use_count() == 1) // else a stream goes on with it, and ends it
            end([&node] { node->dispose(); });
        node.reset();
    };
    endNode(depthNode);
    endNode(colorNode);
    endNode(audioNode);
    descriptions.reset();
    if (first)
        throw Failure(*first);
}

} // namespace Zentara::Host
