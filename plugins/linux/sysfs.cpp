#include "plugins/linux/sysfs.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>

#include <zentara/utils/environment_variable.h>

namespace Zentara::Linux {

namespace fs = std::filesystem;

namespace {

constexpr int deepest = 32; // directories between a device and its bus

std::vector<std::string> namesIn(const fs::path& directory) {
    std::vector<std::string> names;
    std::error_code error;
    for (fs::directory_iterator entry(directory, error), end; !error && entry != end; entry.increment(error))
        names.push_back(entry->path().filename().string());
    return names;
}

/// "video10" comes behind "video9".
bool before(const std::string& left, const std::string& right) {
    return left.size() != right.size() ? left.size() < right.size() : left < right;
}

bool isThere(const fs::path& path) {
    std::error_code error;
    return fs::exists(path, error);
}

fs::path real(const fs::path& path) {
    std::error_code error;
    const fs::path found = fs::canonical(path, error);
    return error ? fs::path() : found;
}

} // namespace

Sysfs::Sysfs() : root("/sys") {
    Utils::EnvironmentVariable named{variable};
    if (named.isDefined())
        root = named.getValue();
}

std::vector<std::string> Sysfs::devicesOf(const std::string& className) const {
    std::vector<std::string> names = namesIn(root / "class" / className);
    std::sort(names.begin(), names.end(), before);
    return names;
}

fs::path Sysfs::place(const std::string& className, const std::string& name) const {
    return root / "class" / className / name;
}

std::string Sysfs::attribute(const fs::path& device, const std::string& name) {
    std::ifstream file(device / name);
    std::string line;
    std::getline(file, line);
    return line;
}

std::uint32_t Sysfs::number(const fs::path& device, const std::string& name, int base) {
    return static_cast<std::uint32_t>(std::strtoul(attribute(device, name).c_str(), nullptr, base));
}

bool Sysfs::isUsb(const fs::path& hardware) { return isThere(hardware / "idVendor"); }

fs::path Sysfs::hardwareOf(const fs::path& classDevice) {
    const fs::path device = real(classDevice / "device");
    fs::path place = device;
    for (int depth = 0; depth < deepest && place.has_relative_path(); ++depth, place = place.parent_path()) {
        if (isUsb(place))
            return place;
    }
    return device;
}

fs::path Sysfs::hardwareOfVideo(const std::string& devicePath) const {
    const fs::path device = real(devicePath); // it may be a link
    return hardwareOf(place("video4linux", (device.empty() ? fs::path(devicePath) : device).filename()));
}

std::vector<std::string> Sysfs::videoNodesOf(const fs::path& hardware) const {
    std::vector<std::string> nodes;
    for (const std::string& name : devicesOf("video4linux")) {
        if (name.rfind("video", 0) == 0 && hardwareOf(place("video4linux", name)) == hardware)
            nodes.push_back("/dev/" + name);
    }
    return nodes;
}

std::vector<std::uint8_t> Sysfs::descriptors(const fs::path& hardware) {
    std::ifstream file(hardware / "descriptors", std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::vector<fs::path> Sysfs::usbDevices() const {
    std::vector<fs::path> devices;
    for (const std::string& name : namesIn(root / "bus" / "usb" / "devices")) {
        const fs::path device = real(root / "bus" / "usb" / "devices" / name);
        if (isUsb(device))
            devices.push_back(device);
    }
    std::sort(devices.begin(), devices.end());
    return devices;
}

} // namespace Zentara::Linux
