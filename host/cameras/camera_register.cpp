#include "host/cameras/camera_register.h"

#include <algorithm>
#include <new>
#include <utility>

#include "host/attempt.h"
#include "host/cameras/stream_description.h"

namespace Zentara::Host {

using std::chrono::milliseconds;

namespace {

constexpr milliseconds longestWait{3'600'000};

CameraEvent::Type typeOf(ExternalEventType type) {
    switch (type) {
    case ExternalEventType_NODE_ARRIVED:
        return CameraEvent::Type::Arrived;
    case ExternalEventType_NODE_REMOVED:
        return CameraEvent::Type::Removed;
    case ExternalEventType_ERROR:
        break;
    }
    return CameraEvent::Type::Trouble;
}

} // namespace

CameraInfo infoOf(const CameraEntry& entry) {
    CameraInfo info;
    info.serial = entry.serialNumber();
    info.name = entry.product.empty() && !entry.nodes.empty() ? entry.nodes.front().name : entry.product;
    info.vendor = entry.vendor;
    info.product = entry.product;
    info.path = entry.path;
    info.controller = entry.controller;
    for (const NodeEvent& node : entry.nodes) {
        if (const auto kind = kindOf(node.nodeType)) {
            if (std::find(info.kinds.begin(), info.kinds.end(), *kind) == info.kinds.end())
                info.kinds.push_back(*kind);
            info.nodes.push_back({*kind, node.name, node.path, node.hardwareIds()});
        }
    }
    return info;
}

CameraBus& CameraRegister::Seat::bus() {
    if (!opened)
        opened = std::make_unique<CameraBus>(note, events);
    return *opened;
}

CameraRegister::CameraRegister(Cameras::Options options)
    : errands("what finds cameras", options.limit, options.note),
      seat(std::make_shared<Seat>(errands.notes())), events(seat->events) {}

CameraRegister::~CameraRegister() {
    errands.leave([] { return "close the enumerators"; }, [own = seat] { own->opened.reset(); });
}

std::vector<CameraEntry> CameraRegister::entries() {
    return errands.run("look for cameras", [own = seat] { return own->bus().cameras(); });
}

std::vector<CameraEntry> CameraRegister::someEntries() {
    return errands.run("look for cameras", [own = seat] { return own->bus().someCameras(); });
}

std::optional<bool> CameraRegister::isPresent(const std::string& path) noexcept {
    try {
        const std::vector<CameraEntry> present = entries();
        return std::any_of(present.begin(), present.end(),
                           [&path](const CameraEntry& camera) { return camera.path == path; });
    } catch (const std::exception&) {
        return {};
    }
}

void CameraRegister::watch() {
    errands.run("watch for cameras", [own = seat] { own->bus().watch(); });
}

std::optional<CameraEvent> CameraRegister::next(milliseconds limit) {
    std::list<ExternalEvent> taken(1); // with room before anything is taken, so that it can be put back
    // Waited for on the caller's thread, not on that of the enumerators, where a long wait would count as hanging.
    const auto wait = std::clamp(limit, milliseconds(0), longestWait);
    if (!takeUntold(taken) && !events->timedPop(taken.front(), static_cast<unsigned long>(wait.count())))
        return {};
    try {
        return told(taken.front());
    } catch (const LackOfMemory&) {
        putBack(taken);
        throw;
    } catch (const std::bad_alloc&) {
        putBack(taken);
        throw;
    }
}

bool CameraRegister::takeUntold(std::list<ExternalEvent>& taken) noexcept {
    const Utils::Threading::AutoLock hold(lock);
    if (untold.empty())
        return false;
    taken.clear();
    taken.splice(taken.begin(), untold, untold.begin());
    return true;
}

void CameraRegister::putBack(std::list<ExternalEvent>& taken) noexcept {
    const Utils::Threading::AutoLock hold(lock);
    untold.splice(untold.end(), taken);
}

CameraEvent CameraRegister::told(const ExternalEvent& event) {
    CameraEvent told;
    told.type = typeOf(event.type);
    told.timeMicros = event.timeMicros;
    if (told.type == CameraEvent::Type::Trouble)
        told.message = event.node.name; // of an error the node is none: its name is the text
    else
        told.camera = infoOf(errands.run(
            "describe a camera", [own = seat, node = event.node] { return own->bus().describe(node); }));
    return told;
}

std::string CameraRegister::backEnds() {
    return errands.run("ask the enumerators for their names",
                       [own = seat] { return own->bus().backendName(); });
}

void CameraRegister::close() {
    errands.run("close the enumerators", [own = seat] { own->opened.reset(); });
}

} // namespace Zentara::Host
