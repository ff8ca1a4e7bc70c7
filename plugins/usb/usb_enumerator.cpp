#include "plugins/usb/usb_enumerator.h"

#include <algorithm>
#include <linux/videodev2.h>
#include <utility>

#include <zentara/core/descriptor_store_ro.h>
#include <zentara/core/guids.h>
#include <zentara/utils/format.h>

#include "plugins/linux/fourcc_text.h"
#include "plugins/linux/warn.h"
#include "plugins/usb/generic_nodes.h"

namespace Zentara::Usb {

namespace {

constexpr int lookMilliseconds = 1000; // for where the kernel's news cannot be heard

bool isDepth(std::uint32_t format) { return format == V4L2_PIX_FMT_Z16; }
/// Pictures that a generic node can show, the better kinds only.
bool isColor(std::uint32_t format) {
    switch (format) {
    case V4L2_PIX_FMT_YUYV:
    case V4L2_PIX_FMT_UYVY:
    case V4L2_PIX_FMT_NV12:
    case V4L2_PIX_FMT_NV21:
    case V4L2_PIX_FMT_YUV420:
    case V4L2_PIX_FMT_YVU420:
    case V4L2_PIX_FMT_MJPEG:
    case V4L2_PIX_FMT_JPEG:
        return true;
    default:
        return false;
    }
}
bool isGrey(std::uint32_t format) { return format == V4L2_PIX_FMT_GREY; }

template<typename Fits>
const FoundVideo* findVideo(const FoundCamera& camera, Fits fits) {
    const auto found = std::find_if(camera.videos.begin(), camera.videos.end(), [&](const FoundVideo& video) {
        return std::any_of(video.formats.begin(), video.formats.end(), fits);
    });
    return found == camera.videos.end() ? nullptr : &*found;
}

/// The video node that delivers what a description says; without a format in it what its type means.
const FoundVideo* findDescribed(const FoundCamera& camera, NodeType type, std::uint32_t described) {
    if (described == 0)
        return type == NodeType_DEPTH ? findVideo(camera, isDepth) : findVideo(camera, isColor);
    const std::uint32_t format = described == v4l2_fourcc('Y', 'U', 'Y', '2')
                                     ? static_cast<std::uint32_t>(V4L2_PIX_FMT_YUYV)
                                     : described;
    return findVideo(camera, [=](std::uint32_t offered) { return offered == format; });
}

/// What the camera itself says of a node.
NodeEvent describe(const FoundCamera& camera) {
    NodeEvent node;
    node.serialNumber = camera.serialNumber;
    node.vendorId = camera.vendorId;
    node.productId = camera.productId;
    node.revision = camera.revision;
    node.busNumber = camera.busNumber;
    node.deviceAddress = camera.deviceAddress;
    node.portNumber = camera.portNumber;
    node.parentPath = camera.path;
    return node;
}

/// A camera without nodes.
NodeEvent refused(const FoundCamera& camera, const std::string& reason) {
    NodeEvent node = describe(camera);
    node.path = camera.path;
    node.name = camera.name + ": " + reason;
    return node;
}

std::string formatsOf(const FoundCamera& camera) {
    std::string text;
    for (const FoundVideo& video : camera.videos) {
        for (const std::uint32_t format : video.formats)
            text += " " + Linux::fourCCText(format);
    }
    return text;
}

bool isServedHere(const GUID& device) {
    return guidEquals(device, Core::Guids::V4L2VIDEO_IMPL) || guidEquals(device, Core::Guids::ALSAAUDIO_IMPL);
}

} // namespace

UsbEnumerator::UsbEnumerator() : UsbEnumerator(CameraScan()) {}

UsbEnumerator::UsbEnumerator(CameraScan found)
    : LookingEnumerator(Core::Guids::DEFAULT_ENUMERATOR_IMPL), scan(std::move(found)) {}

UsbEnumerator::~UsbEnumerator() { dispose(); }

std::string UsbEnumerator::getBackendName() { return "video devices of the system"; }

void UsbEnumerator::exit() {
    EnumeratorInterface::exit();
    news.wake();
}

void UsbEnumerator::awaitNews() { news.wait(lookMilliseconds); }

void UsbEnumerator::forget() { known.clear(); }

std::vector<NodeEvent> UsbEnumerator::find() {
    std::vector<NodeEvent> found;
    std::vector<Known> now;
    if (getDescriptorStore() != nullptr) {
        for (FoundCamera& camera : scan.look()) {
            const auto before = std::find_if(known.begin(), known.end(),
                                             [&](const Known& one) { return one.camera == camera; });
            std::vector<NodeEvent> nodes = before == known.end() ? nodesOf(camera) : before->nodes;
            found.insert(found.end(), nodes.begin(), nodes.end());
            now.push_back({std::move(camera), std::move(nodes)});
        }
    }
    known = std::move(now);
    return found;
}

std::vector<NodeEvent> UsbEnumerator::nodesOf(const FoundCamera& camera) {
    if (!camera.refusal.empty())
        return {refused(camera, camera.refusal)};
    if (camera.microphones.size() > 1)
        Linux::warn(Utils::Format("%: it has % microphones, of which % alone is used") % camera.name %
                    camera.microphones.size() % camera.microphones.front());
    std::vector<NodeEvent> nodes;
    std::vector<Described> described = describedNodes(camera);
    if (described.empty())
        addGeneric(camera, nodes);
    else
        addDescribed(camera, std::move(described), nodes);
    if (nodes.empty() && camera.vendorId != 0)
        nodes.push_back(refused(camera, "no node can show what it delivers:" + formatsOf(camera)));
    return nodes;
}

/// The nodes that descriptions have for a camera, whatever their interface is called: at the kernel all are alike.
std::vector<UsbEnumerator::Described> UsbEnumerator::describedNodes(const FoundCamera& camera) {
    std::vector<Described> nodes;
    NodeEvent event = describe(camera);
    for (event.interfaceNumber = 0; event.interfaceNumber < firstGenericNumber; ++event.interfaceNumber) {
        NodeEvent filled = event;
        if (!selectNodeDescriptor(&filled, Core::Profile_DEFAULT) ||
            !isServedHere(getDescriptorStore()->getDeviceImplGUID()))
            continue;
        fillEvent(&filled);
        nodes.push_back({std::move(filled), getDescriptorStore()->getFourCC().code});
    }
    return nodes;
}

void UsbEnumerator::addDescribed(const FoundCamera& camera, std::vector<Described> described,
                                 std::vector<NodeEvent>& nodes) {
    for (Described& node : described) {
        if (node.event.nodeType == NodeType_AUDIO) {
            if (camera.microphones.empty())
                continue;
            node.event.path = camera.microphones.front();
        } else {
            const FoundVideo* const video = findDescribed(camera, node.event.nodeType, node.fourCC);
            if (video == nullptr)
                continue;
            node.event.path = video->path;
        }
        nodes.push_back(std::move(node.event));
    }
}

void UsbEnumerator::addGeneric(const FoundCamera& camera, std::vector<NodeEvent>& nodes) {
    const auto add = [&](NodeType type, const std::string& path) {
        NodeEvent node = describe(camera);
        node.interfaceNumber = genericNumber(type);
        if (!selectNodeDescriptor(&node, Core::Profile_DEFAULT))
            return;
        fillEvent(&node);
        node.name = camera.name + " " + node.name;
        node.path = path;
        nodes.push_back(std::move(node));
    };
    if (const FoundVideo* const depth = findVideo(camera, isDepth))
        add(NodeType_DEPTH, depth->path);
    const FoundVideo* color = findVideo(camera, isColor);
    if (color == nullptr)
        color = findVideo(camera, isGrey);
    if (color != nullptr)
        add(NodeType_COLOR, color->path);
    if (!camera.microphones.empty())
        add(NodeType_AUDIO, camera.microphones.front());
}

} // namespace Zentara::Usb
