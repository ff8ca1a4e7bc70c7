#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <set>
#include <system_error>
#include <vector>

#include <zentara/utils/format.h>

#include "host/health/checkup.h"
#include "utils/platform/directory_access.h"
#include "utils/visible_text.h"

namespace Zentara::Host {

namespace fs = std::filesystem;
using Utils::Format;

namespace {

constexpr double highSpeed = 480; ///< Mbit/s, the fastest of USB 2

/// What lies in a directory; nothing where there is none, or it may not be read.
std::vector<fs::path> entriesOf(const fs::path& directory) {
    std::vector<fs::path> entries;
    std::error_code error;
    for (fs::directory_iterator entry(directory, error), end; !error && entry != end; entry.increment(error))
        entries.push_back(entry->path());
    std::sort(entries.begin(), entries.end());
    return entries;
}

std::string lineOf(const fs::path& file) {
    std::ifstream in(file);
    std::string line;
    std::getline(in, line);
    line.erase(0, line.find_first_not_of(' '));
    return line;
}

bool isThere(const fs::path& path) {
    std::error_code error;
    return fs::exists(path, error);
}

/// The processes, but for those of others that may not be looked at.
std::vector<fs::path> processes(const fs::path& system) {
    std::vector<fs::path> found = entriesOf(system / "proc");
    std::erase_if(found, [](const fs::path& entry) {
        return entry.filename().string().find_first_not_of("0123456789") != std::string::npos;
    });
    return found;
}

/// "4711 (name)"
std::string nameOf(const fs::path& process) {
    return process.filename().string() + " (" + Utils::visibleText(lineOf(process / "comm")) + ")";
}

/// The directory of the USB device that a video or sound node is of; empty for others.
fs::path usbDeviceOf(const fs::path& node) {
    std::error_code error;
    fs::path place = fs::canonical(node / "device", error);
    while (!error && place.has_relative_path()) {
        if (isThere(place / "speed"))
            return place;
        place = place.parent_path();
    }
    return {};
}

void checkSpeed(Checkup& checkup, const std::string& camera, const fs::path& device) {
    checkup.about("usb-speed");
    const std::string speed = lineOf(device / "speed");
    const double rate = std::strtod(speed.c_str(), nullptr);
    const bool isUsb3 = std::strtod(lineOf(device / "version").c_str(), nullptr) >= 3;
    const std::string text = camera + " is connected at " + speed + " Mbit/s";
    if (rate < highSpeed)
        checkup.wrong(text + ", too slow for frames", "take another cable, and no hub of USB 1");
    else if (isUsb3 && rate <= highSpeed)
        checkup.wrong(text + ", though it can do USB 3",
                      "plug it, by a cable for USB 3, into a socket for USB 3");
    else
        checkup.well(text);
}

void checkHolders(Checkup& checkup, const std::string& camera, const std::string& device,
                  const fs::path& system) {
    checkup.about("camera-holder");
    std::string holders;
    for (const fs::path& process : processes(system)) {
        const std::vector<fs::path> files = entriesOf(process / "fd");
        const bool hasIt = std::any_of(files.begin(), files.end(), [&device](const fs::path& file) {
            std::error_code vanished;
            return fs::read_symlink(file, vanished) == device;
        });
        if (hasIt)
            holders += (holders.empty() ? "" : ", ") + nameOf(process);
    }
    if (!holders.empty())
        checkup.note(camera + " is held by process " + holders,
                     "only one program streams from it, unless both ask for --share");
}

/// \return where a rule of ours lies
std::optional<fs::path> ruleOf(const fs::path& system) {
    for (const char* place : {"etc", "run", "usr/local/lib", "usr/lib", "lib"}) {
        for (const fs::path& file : entriesOf(system / place / "udev/rules.d")) {
            if (file.filename().string().find("zentara-cameras") != std::string::npos)
                return file;
        }
    }
    return std::nullopt;
}

/// \param name as people know it
void checkPermission(Checkup& checkup, const std::string& name, const fs::path& file,
                     const std::string& remedy) {
    if (!isThere(file))
        checkup.wrong("the kernel has " + name + ", but there is no such file",
                      "hand the device on to the container, or start udev");
    else if (!Utils::Platform::mayReadAndWrite(file.string()))
        checkup.wrong("you may not use " + name, remedy);
    else
        checkup.well(name);
}

/// Those of the cameras. The system has a rule and a group of its own for them.
void checkMicrophones(Checkup& checkup, const std::set<fs::path>& cameras, const fs::path& system) {
    checkup.about("microphone");
    for (const fs::path& node : entriesOf(system / "sys/class/sound")) {
        const std::string name = node.filename().string();
        const bool isCapture = name.starts_with("pcm") && name.ends_with("c");
        if (isCapture && cameras.count(usbDeviceOf(node)) != 0)
            checkPermission(checkup, "/dev/snd/" + name + " (a camera's microphone)",
                            system / "dev/snd" / name, "join the group 'audio', and log in again");
    }
}

} // namespace

void checkKernelCameras(Checkup& checkup, const fs::path& system) {
    const std::vector<fs::path> nodes = entriesOf(system / "sys/class/video4linux");
    const std::optional<fs::path> rule = ruleOf(system);
    std::set<fs::path> seen; // a camera has several nodes
    for (const fs::path& node : nodes) {
        const std::string device = "/dev/" + node.filename().string();
        const std::string camera = device + " (" + Utils::visibleText(lineOf(node / "name")) + ")";
        checkup.about("camera-permission");
        checkPermission(checkup, camera, system / device.substr(1),
                        rule ? "join the group 'video', or add the camera to '" + rule->string() +
                                   "', and plug it in again"
                             : "join the group 'video', or install the rule for udev, and plug it in again");
        checkHolders(checkup, camera, device, system);
        const fs::path usb = usbDeviceOf(node);
        if (!usb.empty() && seen.insert(usb).second)
            checkSpeed(checkup, camera, usb);
    }
    checkMicrophones(checkup, seen, system);
    checkup.about("udev-rule");
    if (rule)
        checkup.well("'" + rule->string() + "'");
    else if (!nodes.empty())
        checkup.note("the rule that lets ordinary users use the cameras is not installed",
                     "copy share/zentara/70-zentara-cameras.rules to /etc/udev/rules.d/");
}

void checkSharedMemory(Checkup& checkup, const fs::path& system) {
    checkup.about("shared-memory");
    for (const fs::path& file : entriesOf(system / "dev/shm")) {
        const std::string name = "/dev/shm/" + file.filename().string();
        if (name.find("ZentaraSDK_") == std::string::npos || !Utils::Platform::mayReadAndWrite(file.string()))
            continue; // that of another user
        const std::vector<fs::path> all = processes(system);
        const bool isMapped = std::any_of(all.begin(), all.end(), [&name](const fs::path& process) {
            std::ifstream maps(process / "maps");
            for (std::string line; std::getline(maps, line);) {
                if (line.ends_with(" " + name))
                    return true;
            }
            return false;
        });
        std::error_code error;
        const auto bytes = static_cast<unsigned long long>(fs::file_size(file, error));
        if (isMapped)
            checkup.well(name + " is in use");
        else if (!error)
            checkup.note(Format("% bytes in '%' are nobody's: a program was killed") % bytes % name,
                         "the next program that shares frames removes them; so may you");
    }
}

} // namespace Zentara::Host
