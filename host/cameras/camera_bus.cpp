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

/// What a camera calls itself: before a general description's name of a node an enumerator puts it.
std::string ownName(const std::string& node, const std::string& described) {
    const std::string rest = " " + described;
    return node.ends_with(rest) ? node.substr(0, node.size() - rest.size()) : "";
}

/// What the description of a camera's first node says of the whole. A camera that no store describes is there all the
/// same: what it is wanted for will say so.
void describe(CameraEntry& camera, CameraStore& store) {
    try {
        store.select(camera.nodes.front());
    } catch (const LackOfMemory&) {
        throw;
    } catch (const Failure&) {
        return;
    }
    Plugin::callPlugin([&] {
        const Core::DescriptorStoreRO& view = store.view();
        camera.vendor = view.getVendorName();
        camera.product = view.getProductName();
        camera.controller = Core::controllerNameOf(view);
        if (camera.product.empty())
            camera.product = ownName(camera.nodes.front().name, view.getNodeName());
    });
}

} // namespace

const NodeEvent* CameraEntry::find(NodeType type) const {
    const auto found = std::find_if(nodes.begin(), nodes.end(),
                                    [type](const NodeEvent& node) { return node.nodeType == type; });
    return found == nodes.end() ? nullptr : &*found;
}

std::string CameraEntry::serialNumber() const { return nodes.empty() ? "" : nodes.front().serialNumber; }

std::string CameraEntry::label() const {
    const std::string serial = serialNumber();
    return Utils::visibleText(!serial.empty() ? serial : product.empty() ? path : product);
}

/// An enumerator with the stores that its thread asks.
struct CameraBus::Source {
    explicit Source(const GUID& guid) : name(guidLabel(guid)) {}
    ~Source() {
        closeQuietly("the enumerator ", name, [this] {
            if (enumerator)
                enumerator->dispose();
        });
        const PartingStep watched([this] { return "close the enumerator " + name; });
        enumerator.reset();
    }
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;

    const std::string name;
    CameraStore store;
    Utils::SmartPtr<IO::EnumeratorInterface> enumerator;
};

CameraBus::CameraBus(Note told, std::shared_ptr<Events> arrivals)
    : note(std::move(told)), descriptions(&note), events(std::move(arrivals)) {
    std::optional<Failure> first;
    for (const GUID& guid : registeredPlugins(Core::ImplType_ENUMERATOR, "enumerator")) {
        try {
            open(guid);
        } catch (const LackOfMemory&) {
            throw;
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
        source->enumerator->initialize(events.get(), &source->store.all());
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
        } catch (const LackOfMemory&) {
            throw;
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
    throw Failure(Failure::NoDevice, "no camera is plugged in", reported);
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
    return events->timedPop(event, milliseconds);
}

std::string CameraBus::backendName() {
    std::string names;
    for (const auto& source : sources) {
        attempt("ask the enumerator " + source->name + " for its name",
                [&] { names += (names.empty() ? "" : ", ") + source->enumerator->getBackendName(); });
    }
    return names;
}

} // namespace Zentara::Host
