#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "plugins/linux/call_thread.h"
#include "plugins/linux/kernel.h"
#include "plugins/linux/sysfs.h"

namespace Zentara::Usb {

/// A video node that delivers pictures.
struct FoundVideo {
    std::string path;                   ///< "/dev/video0"
    std::vector<std::uint32_t> formats; ///< the kernel's four characters, the first one in the low byte
    /// This user may not open it, it is busy, or its camera does not answer: the formats are those that its descriptors name.
    bool closed = false;

    friend bool operator==(const FoundVideo&, const FoundVideo&) = default;
};

/// A camera as the system tells of it.
struct FoundCamera {
    std::string path; ///< of the hardware: "/sys/devices/..."
    std::string name; ///< what it calls itself
    std::string serialNumber;
    std::uint32_t vendorId = 0; ///< these three are 0 for one that is not on USB
    std::uint32_t productId = 0;
    std::uint32_t revision = 0;
    std::uint32_t busNumber = 0; ///< these as the system counts them, from 1; 0 for one that is not on USB
    std::uint32_t deviceAddress = 0; ///< another one after each plugging in
    std::uint32_t portNumber = 0;
    std::vector<FoundVideo> videos;
    std::vector<std::string> microphones; ///< "hw:1,0"
    std::string refusal;                  ///< why there is no video node of it; empty unless that is so

    friend bool operator==(const FoundCamera&, const FoundCamera&) = default;
};

/// Looks at what is plugged in. Nodes are told apart by what they can do: those of metadata are left out. A node is opened
/// once while it is there, to be asked. Each camera has a thread for that: one that does not answer holds up no other. One
/// that is being plugged in is waited for, so that it is seen with all its nodes, or not yet. Separate.
class CameraScan {
public:
    explicit CameraScan(std::shared_ptr<Linux::Kernel> kernel = Linux::systemKernel(),
                        Linux::Sysfs sysfs = {});

    /// In the order of the nodes' numbers; those that the kernel refused come last.
    [[nodiscard]] std::vector<FoundCamera> look();

private:
    using Formats = std::vector<std::uint32_t>;
    using Path = std::filesystem::path;

    struct Node {
        std::string name; ///< "video0"
        Path hardware;
        std::string identity; ///< of its camera
    };

    [[nodiscard]] std::vector<Node> completeNodes();
    [[nodiscard]] std::optional<FoundCamera> describe(const Path& hardware, const std::string& label);
    void addVideo(const std::string& name, const Path& hardware, FoundCamera& camera);
    [[nodiscard]] Linux::CallThread& threadOf(const std::string& camera, const std::string& label);
    [[nodiscard]] Formats ask(const std::string& camera, const std::string& path, bool& closed);
    void addMicrophones(std::vector<FoundCamera>& cameras) const;
    void addRefused(std::vector<FoundCamera>& cameras);

    const std::shared_ptr<Linux::Kernel> kernel;
    const Linux::Sysfs sysfs;
    std::map<std::string, std::unique_ptr<Linux::CallThread>> threads; ///< by the camera's identity
    std::map<std::string, FoundCamera> complete; ///< what has all its nodes, without these, by its identity
    std::map<std::string, Formats> asked;        ///< by the node's name and when it was plugged in
};

} // namespace Zentara::Usb
