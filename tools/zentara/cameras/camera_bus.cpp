#include "tools/zentara/cameras/camera_bus.h"

#include <algorithm>

#include <zentara/core/descriptor_store_ro.h>
#include <zentara/utils/format.h>
#include <zentara/utils/text.h>

#include "plugins/descriptions/controller.h"
#include "tools/zentara/chips/device_choice.h"
#include "tools/zentara/guid_text.h"
#include "tools/zentara/streams/stream_description.h"

namespace Zentara::Tool {

using Utils::Format;

namespace {

constexpr unsigned long complaintMilliseconds = 500;

bool hasName(const CameraEntry& camera, const std::string& name) {
    return camera.path == name || camera.serialNumber() == name;
}

bool contains(const std::string& text, const std::string& part) {
    return Utils::toLower(text).find(Utils::toLower(part)) != std::string::npos;
}

bool resembles(const CameraEntry& camera, const std::string& name) {
    return contains(camera.product, name) || contains(camera.controller, name) ||
           std::any_of(camera.nodes.begin(), camera.nodes.end(),
                       [&](const NodeEvent& node) { return contains(cameraLabel(node), name); });
}

std::string listOf(const std::vector<CameraEntry>& cameras) {
    std::string text;
    for (const CameraEntry& camera : cameras)
        text += (text.empty() ? "" : ", ") + printable(camera.serialNumber());
    return text;
}

std::vector<CameraEntry> camerasNamed(const std::vector<CameraEntry>& cameras, const std::string& name) {
    if (name.empty())
        throw ToolFailure(ExitCode_USAGE, "the name of the camera is empty");
    std::vector<CameraEntry> found;
    for (const auto& fits : {hasName, resembles}) {
        std::copy_if(cameras.begin(), cameras.end(), std::back_inserter(found),
                     [&](const CameraEntry& camera) { return fits(camera, name); });
        if (!found.empty())
            return found;
    }
    throw ToolFailure(ExitCode_NO_DEVICE,
                      Format("no camera is called '%'; plugged in: %") % name % listOf(cameras));
}

/// What the description of a camera's first node says of the whole.
void describe(CameraEntry& camera, CameraStore& store) {
    store.select(camera.nodes.front());
    const Core::DescriptorStoreRO& view = store.view();
    camera.vendor = view.getVendorName();
    camera.product = view.getProductName();
    if (const auto chip = Cameras::describedController(view.getDeviceCapabilities()))
        camera.controller = Cameras::chipName(*chip);
}

} // namespace

CameraStore::CameraStore(std::ostream& err) {
    const GUID guid = chooseDevice(Core::ImplType_DESCRIPTOR_STORE, "descriptor store", err);
    attempt("read the descriptions of cameras through " + guidLabel(guid), [&] {
        store = makePlugin<Core::DescriptorStoreInterface>(guid);
        store->initialize();
    });
}

CameraStore::~CameraStore() {
    if (store)
        store->dispose();
}

void CameraStore::select(const NodeEvent& node) {
    attempt("find the description of " + cameraLabel(node), [&] {
        if (!store->selectNodeDescriptor(node.hardwareIds(), node.profile))
            throw ToolFailure(ExitCode_FAILED, "no camera description belongs to " + cameraLabel(node));
    });
}

Core::DescriptorStoreRO& CameraStore::view() const { return *store->getDescriptorStore(); }

const NodeEvent* CameraEntry::find(NodeType type) const {
    const auto found = std::find_if(nodes.begin(), nodes.end(),
                                    [type](const NodeEvent& node) { return node.nodeType == type; });
    return found == nodes.end() ? nullptr : &*found;
}

std::string CameraEntry::serialNumber() const { return nodes.empty() ? "" : nodes.front().serialNumber; }

CameraBus::CameraBus(std::ostream& err) : store(err), descriptions(err) {
    const GUID guid = chooseDevice(Core::ImplType_ENUMERATOR, "enumerator", err);
    attempt("look for cameras through " + guidLabel(guid), [&] {
        enumerator = makePlugin<IO::EnumeratorInterface>(guid);
        enumerator->initialize(&events, &store.view());
    });
}

CameraBus::~CameraBus() {
    if (enumerator)
        enumerator->dispose();
}

std::vector<CameraEntry> CameraBus::cameras() {
    std::vector<NodeEvent> nodes;
    attempt("look for cameras", [&] { enumerator->enumerate(nodes); });
    std::vector<CameraEntry> cameras;
    for (const NodeEvent& node : nodes) {
        auto camera = std::find_if(cameras.begin(), cameras.end(),
                                   [&](const CameraEntry& known) { return known.path == node.parentPath; });
        if (camera == cameras.end())
            camera = cameras.insert(cameras.end(), CameraEntry{node.parentPath, {}, {}, {}, {}});
        camera->nodes.push_back(node);
    }
    for (CameraEntry& camera : cameras)
        Tool::describe(camera, descriptions);
    return cameras;
}

CameraEntry CameraBus::describe(const NodeEvent& node) {
    CameraEntry camera{node.parentPath, {node}, {}, {}, {}};
    Tool::describe(camera, descriptions);
    return camera;
}

std::vector<CameraEntry> CameraBus::someCameras() {
    std::vector<CameraEntry> found = cameras();
    if (found.empty())
        failForNone();
    return found;
}

void CameraBus::failForNone() {
    const std::string reported = complaint();
    throw ToolFailure(
        ExitCode_NO_DEVICE,
        reported.empty()
            ? "no camera is plugged in; 'zentara --log devices' shows whether a description was refused"
            : "no camera is plugged in: " + reported);
}

/// An enumerator tells what is wrong with its bus through the queue, some time after it has begun.
std::string CameraBus::complaint() {
    watch();
    ExternalEvent event;
    while (next(event, complaintMilliseconds)) {
        if (event.type == ExternalEventType_ERROR)
            return printable(event.node.name);
    }
    return {};
}

void CameraBus::watch() {
    attempt("watch for cameras", [&] { enumerator->execute(); });
}

bool CameraBus::next(ExternalEvent& event, unsigned long milliseconds) {
    return events.timedPop(event, milliseconds);
}

std::string CameraBus::backendName() { return enumerator->getBackendName(); }

std::vector<CameraEntry> chooseCameras(const std::vector<CameraEntry>& cameras,
                                       const std::vector<std::string>& names) {
    if (cameras.empty())
        throw ToolFailure(ExitCode_NO_DEVICE, "no camera is plugged in");
    if (names.empty())
        return {cameras.front()};
    std::vector<CameraEntry> chosen;
    for (const std::string& name : names) {
        for (const CameraEntry& camera : camerasNamed(cameras, name)) {
            const bool known = std::any_of(chosen.begin(), chosen.end(), [&](const CameraEntry& other) {
                return other.path == camera.path;
            });
            if (!known)
                chosen.push_back(camera);
        }
    }
    return chosen;
}

CameraEntry chooseCamera(const std::vector<CameraEntry>& cameras, const std::string& name) {
    const auto names = name.empty() ? std::vector<std::string>() : std::vector<std::string>{name};
    const std::vector<CameraEntry> chosen = chooseCameras(cameras, names);
    if (chosen.size() > 1)
        throw ToolFailure(ExitCode_USAGE, Format("'%' may be any of %; name one by its serial number") %
                                              name % listOf(chosen));
    return chosen.front();
}

Json cameraJson(const CameraEntry& camera) {
    const std::string& name =
        camera.product.empty() && !camera.nodes.empty() ? camera.nodes.front().name : camera.product;
    return {{"serial", orNull(camera.serialNumber())},
            {"name", orNull(name)},
            {"path", orNull(camera.path)},
            {"controller", orNull(camera.controller)}};
}

CameraEntry chooseCameraToWrite(const std::vector<CameraEntry>& cameras, const std::string& name) {
    if (name.empty() && cameras.size() > 1)
        throw ToolFailure(ExitCode_USAGE,
                          Format("several cameras are plugged in, and none is written to unnamed: %\n"
                                 "name one with --camera") %
                              listOf(cameras));
    return chooseCamera(cameras, name);
}

std::string cameraLabel(const NodeEvent& node) {
    return printable(Format("% %") %
                     (node.name.empty() ? std::string(nodeTypeName(node.nodeType)) : node.name) %
                     node.serialNumber);
}

std::string printable(std::string text) {
    std::replace_if(
        text.begin(), text.end(), [](unsigned char letter) { return letter < ' ' || letter == 0x7F; }, '?');
    return text;
}

} // namespace Zentara::Tool
