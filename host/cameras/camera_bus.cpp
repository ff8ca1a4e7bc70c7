#include "host/cameras/camera_bus.h"

#include <algorithm>
#include <optional>
#include <utility>

#include <zentara/core/descriptor_details.h>
#include <zentara/plugin/call_plugin.h>
#include <zentara/utils/format.h>
#include <zentara/utils/text.h>

#include "host/attempt.h"
#include "host/cameras/device_choice.h"
#include "host/cameras/joined_descriptions.h"
#include "host/cameras/stream_description.h"
#include "host/guid_text.h"
#include "host/tell.h"
#include "utils/visible_text.h"

namespace Zentara::Host {

using Utils::Format;

namespace {

constexpr unsigned long complaintMilliseconds = 500;

/// The cause is a plug-in's text, and may be of any length.
void tellLeftOut(const Note& note, const Failure& failure) {
    tell(note,
         failure.message() + "; it is left out" + (failure.cause().empty() ? "" : ": ") + failure.cause());
}

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
        text += (text.empty() ? "" : ", ") + Utils::visibleText(camera.serialNumber());
    return text;
}

std::vector<CameraEntry> camerasNamed(const std::vector<CameraEntry>& cameras, const std::string& name) {
    if (name.empty())
        throw Failure(Failure::Usage, "the name of the camera is empty");
    std::vector<CameraEntry> found;
    for (const auto& fits : {hasName, resembles}) {
        std::copy_if(cameras.begin(), cameras.end(), std::back_inserter(found),
                     [&](const CameraEntry& camera) { return fits(camera, name); });
        if (!found.empty())
            return found;
    }
    throw Failure(Failure::NoDevice,
                  Format("no camera is called '%'; plugged in: %") % name % listOf(cameras));
}

/// What the description of a camera's first node says of the whole. A camera that no store describes is there all the
/// same: what it is wanted for will say so.
void describe(CameraEntry& camera, CameraStore& store) {
    try {
        store.select(camera.nodes.front());
    } catch (const Failure&) {
        return;
    }
    Plugin::callPlugin([&] {
        const Core::DescriptorStoreRO& view = store.view();
        camera.vendor = view.getVendorName();
        camera.product = view.getProductName();
        camera.controller = Core::controllerNameOf(view);
    });
}

/// What goes wrong while something is let go is logged: it keeps nobody from going on.
template<typename Work>
void close(const std::string& what, Work work) noexcept {
    try {
        attempt("close " + what, work);
    } catch (const Failure& failure) {
        tell({}, Utils::visibleText(failure.what()));
    }
}

} // namespace

CameraStore::CameraStore(const Note* leftOut) {
    std::optional<Failure> first;
    for (const GUID& guid : registeredPlugins(Core::ImplType_DESCRIPTOR_STORE, "descriptor store")) {
        Utils::SmartPtr<Core::DescriptorStoreInterface> store; // outlives what its library throws
        try {
            attempt("read the descriptions of cameras through " + guidLabel(guid), [&] {
                store = makePlugin<Core::DescriptorStoreInterface>(guid);
                store->initialize();
                if (store->getDescriptorStore() == nullptr)
                    throw Failure(Failure::Failed, "the store " + guidLabel(guid) + " has no descriptions");
                stores.push_back(store);
            });
        } catch (const Failure& failure) {
            if (!first)
                first.emplace(failure);
            if (leftOut != nullptr)
                tellLeftOut(*leftOut, failure);
        }
    }
    if (stores.empty())
        throw Failure(*first);
    std::vector<Core::DescriptorStoreRO*> views;
    for (const auto& store : stores)
        views.push_back(store->getDescriptorStore());
    joined = std::make_unique<JoinedDescriptions>(std::move(views));
}

CameraStore::~CameraStore() {
    for (const auto& store : stores)
        close("a descriptor store", [&] { store->dispose(); });
    const Step watched("close the descriptor stores");
    stores.clear();
}

void CameraStore::select(const NodeEvent& node) {
    attempt("find the description of " + cameraLabel(node), [&] {
        for (std::size_t index = 0; index < stores.size(); ++index) {
            if (stores[index]->selectNodeDescriptor(node.hardwareIds(), node.profile)) {
                selected = index;
                return;
            }
        }
        throw Failure(Failure::Failed, "no camera description belongs to " + cameraLabel(node));
    });
}

Core::DescriptorStoreRO& CameraStore::view() const { return *stores[selected]->getDescriptorStore(); }

Core::DescriptorStoreRO& CameraStore::all() const { return *joined; }

const NodeEvent* CameraEntry::find(NodeType type) const {
    const auto found = std::find_if(nodes.begin(), nodes.end(),
                                    [type](const NodeEvent& node) { return node.nodeType == type; });
    return found == nodes.end() ? nullptr : &*found;
}

std::string CameraEntry::serialNumber() const { return nodes.empty() ? "" : nodes.front().serialNumber; }

/// An enumerator with the stores that its thread asks.
struct CameraBus::Source {
    explicit Source(const GUID& guid) : name(guidLabel(guid)) {}
    ~Source() {
        close("the enumerator " + name, [this] {
            if (enumerator)
                enumerator->dispose();
        });
        const Step watched("close the enumerator " + name);
        enumerator.reset();
    }
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;

    const std::string name;
    CameraStore store;
    Utils::SmartPtr<IO::EnumeratorInterface> enumerator;
};

CameraBus::CameraBus(Note told) : note(std::move(told)), descriptions(&note) {
    std::optional<Failure> first;
    for (const GUID& guid : registeredPlugins(Core::ImplType_ENUMERATOR, "enumerator")) {
        try {
            open(guid);
        } catch (const Failure& failure) {
            if (first)
                leaveOut(failure);
            else
                first.emplace(failure);
        }
    }
    if (sources.empty())
        throw Failure(*first);
    if (first)
        leaveOut(*first);
}

CameraBus::~CameraBus() = default;

void CameraBus::open(const GUID& guid) {
    auto source = std::make_unique<Source>(guid);
    attempt("look for cameras through " + source->name, [&] {
        source->enumerator = makePlugin<IO::EnumeratorInterface>(guid);
        source->enumerator->initialize(&events, &source->store.all());
    });
    sources.push_back(std::move(source));
}

void CameraBus::leaveOut(const Failure& failure) { tellLeftOut(note, failure); }

std::vector<CameraEntry> CameraBus::cameras() {
    std::vector<NodeEvent> nodes;
    for (const auto& source : sources) {
        std::vector<NodeEvent> found;
        try {
            attempt("look for cameras through " + source->name,
                    [&] { source->enumerator->enumerate(found); });
        } catch (const Failure& failure) {
            if (sources.size() == 1)
                throw;
            leaveOut(failure);
        }
        for (const NodeEvent& node : found) {
            const bool known = std::any_of(nodes.begin(), nodes.end(), [&node](const NodeEvent& other) {
                return other.path == node.path && other.nodeType == node.nodeType;
            });
            if (!known) // two enumerators may look at one bus
                nodes.push_back(node);
        }
    }
    std::vector<CameraEntry> cameras;
    for (const NodeEvent& node : nodes) {
        auto camera = std::find_if(cameras.begin(), cameras.end(),
                                   [&](const CameraEntry& known) { return known.path == node.parentPath; });
        if (camera == cameras.end())
            camera = cameras.insert(cameras.end(), CameraEntry{node.parentPath, {}, {}, {}, {}});
        camera->nodes.push_back(node);
    }
    for (CameraEntry& camera : cameras)
        Host::describe(camera, descriptions);
    return cameras;
}

CameraEntry CameraBus::describe(const NodeEvent& node) {
    CameraEntry camera{node.parentPath, {node}, {}, {}, {}};
    Host::describe(camera, descriptions);
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
    throw Failure(
        Failure::NoDevice,
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
            return Utils::visibleText(event.node.name);
    }
    return {};
}

void CameraBus::watch() {
    for (const auto& source : sources)
        attempt("watch for cameras through " + source->name, [&] { source->enumerator->execute(); });
}

bool CameraBus::next(ExternalEvent& event, unsigned long milliseconds) {
    return events.timedPop(event, milliseconds);
}

std::string CameraBus::backendName() {
    std::string names;
    for (const auto& source : sources) {
        attempt("ask the enumerator " + source->name + " for its name",
                [&] { names += (names.empty() ? "" : ", ") + source->enumerator->getBackendName(); });
    }
    return names;
}

std::vector<CameraEntry> chooseCameras(const std::vector<CameraEntry>& cameras,
                                       const std::vector<std::string>& names) {
    if (cameras.empty())
        throw Failure(Failure::NoDevice, "no camera is plugged in");
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
        throw Failure(Failure::Usage,
                      Format("'%' may be any of %; name one by its serial number") % name % listOf(chosen));
    return chosen.front();
}

CameraEntry chooseCameraToWrite(const std::vector<CameraEntry>& cameras, const std::string& name) {
    if (name.empty() && cameras.size() > 1)
        throw Failure(Failure::Usage,
                      Format("several cameras are plugged in, and none is written to unnamed: %") %
                          listOf(cameras),
                      {}, "name one with --camera");
    return chooseCamera(cameras, name);
}

std::string cameraLabel(const NodeEvent& node) {
    const std::string label = Format("% %") %
                              (node.name.empty() ? std::string(nodeTypeName(node.nodeType)) : node.name) %
                              node.serialNumber;
    return Utils::visibleText(label);
}

} // namespace Zentara::Host
