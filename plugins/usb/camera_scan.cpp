#include "plugins/usb/camera_scan.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <linux/videodev2.h>
#include <utility>

#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/format.h>

#include "plugins/linux/usb_descriptors.h"
#include "plugins/linux/warn.h"

namespace Zentara::Usb {

namespace fs = std::filesystem;
using Linux::Sysfs;
using Utils::Format;

namespace {

constexpr std::uint32_t mostFormats = 64;
constexpr std::uint32_t settledMilliseconds = 2000; // by then the kernel has made its nodes

struct Answer {
    std::vector<std::uint32_t> formats;
    int error = 0;
};

/// Asks a node what it delivers. Opening one may wait for its camera.
Answer askNode(Linux::Kernel& kernel, const std::string& path) {
    Answer answer;
    const int file = kernel.open(path);
    if (file < 0)
        return {{}, -file};
    v4l2_capability told{};
    answer.error = -std::min(0, kernel.control(file, VIDIOC_QUERYCAP, &told));
    // without an answer there are no capabilities
    const std::uint32_t can =
        (told.capabilities & V4L2_CAP_DEVICE_CAPS) != 0 ? told.device_caps : told.capabilities;
    if ((can & V4L2_CAP_VIDEO_CAPTURE) != 0 && (can & V4L2_CAP_STREAMING) != 0) {
        for (std::uint32_t index = 0; index < mostFormats; ++index) {
            v4l2_fmtdesc format{};
            format.index = index;
            format.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
            if (kernel.control(file, VIDIOC_ENUM_FMT, &format) < 0)
                break;
            answer.formats.push_back(format.pixelformat);
        }
    }
    kernel.close(file);
    return answer;
}

/// What USB calls YUY2 the kernel calls YUYV; most others have one name.
std::uint32_t kernelName(std::uint32_t usb) {
    return usb == v4l2_fourcc('Y', 'U', 'Y', '2') ? static_cast<std::uint32_t>(V4L2_PIX_FMT_YUYV) : usb;
}

/// The formats of a node that cannot be asked: every second node of a camera is one of metadata. One of which nothing
/// can be known passes for colour, so that it is there, and says why it is of no use when it is opened.
std::vector<std::uint32_t> describedFormats(const fs::path& hardware, const fs::path& node) {
    const std::uint32_t index = Sysfs::number(node, "index", 10);
    const std::vector<std::uint8_t> bytes = Sysfs::descriptors(hardware);
    const Linux::UsbCamera camera = Linux::readUsbDescriptors(bytes);
    std::vector<std::uint32_t> formats;
    if (bytes.empty() && index == 0)
        return {V4L2_PIX_FMT_YUYV};
    if (index % 2 != 0 || index / 2 >= camera.streams.size())
        return formats;
    for (const Linux::UsbFormat& format : camera.streams[index / 2].formats)
        formats.push_back(kernelName(format.fourCC()));
    return formats;
}

/// Whether one of a USB device's interfaces is that of a camera; the names of interfaces begin with the device's.
bool isCamera(const fs::path& device) {
    std::error_code error;
    for (fs::directory_iterator entry(device, error), end; !error && entry != end; entry.increment(error)) {
        if (Sysfs::attribute(entry->path(), "bInterfaceClass") == "0e" &&
            Sysfs::attribute(entry->path(), "bInterfaceSubClass") == "01")
            return true;
    }
    return false;
}

std::string identityOf(const FoundCamera& camera) {
    return Sysfs::pluggedIn(camera.path, camera.deviceAddress);
}

std::string refusalOf(const fs::path& device) {
    const std::vector<std::uint8_t> bytes = Sysfs::descriptors(device);
    const Linux::UsbCamera camera = Linux::readUsbDescriptors(bytes);
    std::string text = "the kernel made no video node of it";
    for (const Linux::UsbFault& fault : camera.faults)
        text += "; its descriptors, " + faultText(fault);
    return camera.faults.empty() ? text + "; its log ('dmesg') may say why, or 'modprobe uvcvideo' helps"
                                 : text;
}

FoundCamera* find(std::vector<FoundCamera>& cameras, const fs::path& hardware) {
    const auto found = std::find_if(cameras.begin(), cameras.end(),
                                    [&](const FoundCamera& camera) { return camera.path == hardware; });
    return found == cameras.end() ? nullptr : &*found;
}

/// The last number of "1-4.2".
std::uint32_t portOf(const fs::path& device) {
    const std::string path = Sysfs::attribute(device, "devpath");
    return static_cast<std::uint32_t>(std::strtoul(path.substr(path.rfind('.') + 1).c_str(), nullptr, 10));
}

/// What can be read at any time.
FoundCamera readAtOnce(const fs::path& hardware) {
    FoundCamera camera;
    camera.path = hardware.string();
    camera.name = hardware.filename().string();
    if (!Sysfs::isUsb(hardware))
        return camera;
    camera.vendorId = Sysfs::number(hardware, "idVendor");
    camera.productId = Sysfs::number(hardware, "idProduct");
    camera.revision = Sysfs::number(hardware, "bcdDevice");
    camera.busNumber = Sysfs::number(hardware, "busnum", 10);
    camera.deviceAddress = Sysfs::number(hardware, "devnum", 10);
    camera.portNumber = portOf(hardware);
    return camera;
}

} // namespace

CameraScan::CameraScan(std::shared_ptr<Linux::Kernel> system, Sysfs place)
    : kernel(std::move(system)), sysfs(std::move(place)) {}

std::vector<FoundCamera> CameraScan::look() {
    bool haveCome = false;
    std::vector<FoundCamera> cameras = lookOnce(haveCome);
    return haveCome ? lookOnce(haveCome) : cameras;
}

/// \param haveCome set to true when a camera's nodes came after they had been looked for
std::vector<FoundCamera> CameraScan::lookOnce(bool& haveCome) {
    std::vector<FoundCamera> cameras;
    for (const Node& node : completeNodes()) {
        FoundCamera* camera = find(cameras, node.hardware);
        if (camera == nullptr)
            camera = &cameras.emplace_back(complete.at(node.identity));
        addVideo(node, *camera);
    }
    const auto isGone = [&](const auto& one) {
        return std::none_of(cameras.begin(), cameras.end(),
                            [&](const FoundCamera& camera) { return identityOf(camera) == one.first; });
    };
    std::erase_if(complete, isGone);
    std::erase_if(asked, [&](const auto& one) { return isGone(one.first); });
    std::erase_if(cameras, [this](FoundCamera& camera) { return isEmpty(camera); });
    addMicrophones(cameras);
    addRefused(cameras, haveCome);
    std::erase_if(threads, isGone);
    return cameras;
}

/// The video nodes of cameras that have all theirs: between the first node and the last one the driver asks the camera,
/// and a microphone comes later still.
std::vector<CameraScan::Node> CameraScan::completeNodes() {
    for (;;) {
        std::vector<Node> nodes;
        bool mayBeMore = false;
        for (const std::string& name : sysfs.devicesOf("video4linux")) {
            const fs::path hardware = Sysfs::hardwareOf(sysfs.place("video4linux", name));
            if (name.rfind("video", 0) != 0 || hardware.empty())
                continue; // another kind, or it has gone
            const std::string identity = identify(hardware);
            if (complete.count(identity) == 0) {
                std::optional<FoundCamera> told = describe(hardware, identity, "/dev/" + name);
                if (!told || identityOf(*told) != identity)
                    continue; // not yet, or another one by now
                complete.emplace(identity, *std::move(told));
                mayBeMore = true;
            }
            nodes.push_back({name, hardware, identity});
        }
        if (!mayBeMore)
            return nodes;
    }
}

/// A device has no address while the kernel resets it, as it does with some cameras that wake up; it is the same then.
std::string CameraScan::identify(const fs::path& hardware) const {
    const std::string identity = Sysfs::pluggedIn(hardware);
    if (identity != Sysfs::pluggedIn(hardware.string(), 0))
        return identity;
    const auto same = std::find_if(complete.begin(), complete.end(),
                                   [&](const auto& one) { return one.second.path == hardware; });
    return same == complete.end() ? identity : same->first;
}

/// What the system tells of a camera, once the drivers have made all that they make of it. While they do, the kernel keeps
/// the device locked, and reading some of its attributes waits. \return nothing when that took too long
std::optional<FoundCamera> CameraScan::describe(const fs::path& hardware, const std::string& identity,
                                                const std::string& label) {
    const auto ask = [hardware] {
        static_cast<void>(Sysfs::attribute(hardware, "bNumInterfaces")); // each has this one
        FoundCamera camera = readAtOnce(hardware);
        const std::string product = Sysfs::attribute(hardware, "product");
        if (!product.empty())
            camera.name = product;
        camera.serialNumber = Sysfs::attribute(hardware, "serial");
        return camera;
    };
    try {
        return threadOf(identity, label).call("wait for the nodes of " + hardware.string(), ask);
    } catch (const Plugin::PluginException&) {
        return std::nullopt; // it was logged
    }
}

void CameraScan::addVideo(const Node& node, FoundCamera& camera) {
    const std::string path = "/dev/" + node.name;
    Told& told = asked[{node.identity, node.name}];
    if (!told.forGood)
        told = ask(node, path, told.failure);
    if (!told.formats.empty())
        camera.videos.push_back({path, told.formats, !told.failure.empty()});
    else if (camera.refusal.empty())
        camera.refusal = told.failure;
}

Linux::CallThread& CameraScan::threadOf(const std::string& camera, const std::string& label) {
    std::unique_ptr<Linux::CallThread>& thread = threads[camera];
    if (!thread)
        thread = std::make_unique<Linux::CallThread>(camera, label);
    return *thread;
}

/// \param before why it could not be asked the last time, which the log has
CameraScan::Told CameraScan::ask(const Node& node, const std::string& path, const std::string& before) {
    Told told;
    bool hasGone = false;
    try {
        Answer answer =
            threadOf(node.identity, path).call("ask " + path + " what it delivers", [system = kernel, path] {
                return askNode(*system, path);
            });
        if (answer.error != 0)
            told.failure =
                Format("%: cannot ask what it delivers: %") % path % Linux::errorWords(answer.error);
        if (!told.failure.empty() && told.failure != before)
            Linux::warn(told.failure);
        hasGone = answer.error == ENODEV || answer.error == ENXIO;
        told.formats = std::move(answer.formats);
        // elsewhere a program may stand behind a node, and begin to deliver
        told.forGood = answer.error == 0 && (!told.formats.empty() || Sysfs::isUsb(node.hardware));
    } catch (const Plugin::PluginException& failure) {
        told.failure = failure.what(); // it was logged
    }
    if (!told.failure.empty() && !hasGone)
        told.formats = describedFormats(node.hardware, sysfs.place("video4linux", node.name));
    return told;
}

/// Whether a camera of which no node delivers pictures is none, or is being pulled out. Any other has its reason then.
bool CameraScan::isEmpty(FoundCamera& camera) {
    if (!camera.videos.empty()) {
        camera.refusal.clear();
        return false;
    }
    if (camera.refusal.empty())
        camera.refusal = "none of its video nodes delivers pictures";
    static_cast<void>(describe(camera.path, identityOf(camera), camera.path)); // until it has been pulled out
    return !isCamera(camera.path);
}

void CameraScan::addMicrophones(std::vector<FoundCamera>& cameras) const {
    for (const std::string& name : sysfs.devicesOf("sound")) {
        unsigned card = 0;
        unsigned device = 0;
        char direction = 0;
        if (std::sscanf(name.c_str(), "pcmC%uD%u%c", &card, &device, &direction) != 3 || direction != 'c')
            continue;
        const fs::path place = sysfs.place("sound", "card" + std::to_string(card));
        if (FoundCamera* const camera = find(cameras, Sysfs::hardwareOf(place)))
            camera->microphones.push_back(Format("hw:%,%") % card % device);
    }
}

/// Cameras on USB without a node, once the kernel has had its time.
void CameraScan::addRefused(std::vector<FoundCamera>& cameras, bool& haveCome) {
    for (const fs::path& device : sysfs.usbDevices()) {
        if (find(cameras, device) != nullptr || !isCamera(device))
            continue;
        const std::string since = Sysfs::attribute(device / "power", "connected_duration");
        if (!since.empty() && std::strtoul(since.c_str(), nullptr, 10) < settledMilliseconds)
            continue;
        std::optional<FoundCamera> told = describe(device, Sysfs::pluggedIn(device), device.string());
        if (told && !isCamera(device))
            continue; // it has gone
        if (told && !sysfs.videoNodesOf(device).empty()) {
            haveCome = true; // while it or others were asked
            continue;
        }
        FoundCamera& camera = cameras.emplace_back(told ? *std::move(told) : readAtOnce(device));
        camera.refusal = told ? refusalOf(device) : "its driver waits for an answer of it";
    }
}

} // namespace Zentara::Usb
