#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace Zentara::Linux {

/// Where the kernel tells of its devices. Whatever is looked up here may vanish at any moment; what is not there reads as
/// empty. Separate.
class Sysfs {
public:
    /// Names another place than "/sys" (UTF-8), for tests, containers and hosts that are to see no real camera.
    static constexpr const char* variable = "ZENTARA_SYSFS";

    Sysfs();
    explicit Sysfs(std::filesystem::path place) : root(std::move(place)) {}

    /// The names of a class: "video4linux", "sound". Sorted by their numbers.
    [[nodiscard]] std::vector<std::string> devicesOf(const std::string& className) const;

    /// The directory of one of them.
    [[nodiscard]] std::filesystem::path place(const std::string& className, const std::string& name) const;

    /// The first line of an attribute.
    [[nodiscard]] static std::string attribute(const std::filesystem::path& device, const std::string& name);
    /// The same as a number. \param base of its digits \return 0 for what is none
    [[nodiscard]] static std::uint32_t number(const std::filesystem::path& device, const std::string& name,
                                              int base = 16);

    /// The hardware that a class's device is a function of: the USB device for what hangs on that bus, else the device
    /// itself.
    [[nodiscard]] static std::filesystem::path hardwareOf(const std::filesystem::path& classDevice);
    [[nodiscard]] static bool isUsb(const std::filesystem::path& hardware);

    /// Names hardware for as long as it is plugged in: what is plugged in at its place later has another address.
    [[nodiscard]] static std::string pluggedIn(const std::string& hardware, std::uint32_t address) {
        return hardware + "@" + std::to_string(address);
    }
    [[nodiscard]] static std::string pluggedIn(const std::filesystem::path& hardware) {
        return pluggedIn(hardware.string(), number(hardware, "devnum", 10));
    }

    /// The hardware of "/dev/video0", or of a link to it.
    [[nodiscard]] std::filesystem::path hardwareOfVideo(const std::string& devicePath) const;
    /// The video nodes of some hardware: "/dev/video0".
    [[nodiscard]] std::vector<std::string> videoNodesOf(const std::filesystem::path& hardware) const;

    /// What the device says of itself; nothing for what does not hang on USB.
    [[nodiscard]] static std::vector<std::uint8_t> descriptors(const std::filesystem::path& hardware);

    /// All devices on USB.
    [[nodiscard]] std::vector<std::filesystem::path> usbDevices() const;

private:
    std::filesystem::path root;
};

} // namespace Zentara::Linux
