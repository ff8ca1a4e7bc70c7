#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "plugins/linux/call_thread.h"
#include "plugins/linux/kernel.h"
#include "plugins/linux/sysfs.h"

namespace Zentara::Usb {

/// A video node that delivers pictures.
struct FoundVideo {
    std::string path;                   ///< "/dev/video0"
    std::vector<std::uint32_t> formats; ///< the kernel's four characters, the first one in the low byte
    /// It could not be asked, whatever the reason: the formats are those that its descriptors name.
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
    std::string refusal; ///< why it has no video that delivers pictures; empty unless that is so

    friend bool operator==(const FoundCamera&, const FoundCamera&) = default;
};

/// Looks at what is plugged in. Nodes are told apart by what they can do: those of metadata are left out. A node that
/// answers is opened once while it is there, one that does not at each look, and the log has each new reason. Each camera has
/// a thread for that: one that does not answer holds up no other. One that is being plugged in is waited for, so that it is
/// seen with all its nodes, or not yet; one that is being pulled out as well. A camera on USB of which nothing can be had is
/// there with the reason. Separate.
class CameraScan {
public:
    explicit CameraScan(std::shared_ptr<Linux::Kernel> kernel = Linux::systemKernel(),
                        Linux::Sysfs sysfs = {});

    /// In the order of the nodes' numbers; those that the kernel refused come last.
    [[nodiscard]] std::vector<FoundCamera> look();

private:
    using Path = std::filesystem::path;

    struct Node {
        std::string name; ///< "video0"
        Path hardware;
        std::string identity; ///< of its camera
    };

    /// What a node said when it was asked.
    struct Told {
        std::vector<std::uint32_t> formats;
        std::string failure;  ///< why it could not be asked
        bool forGood = false; ///< it says the same whenever it is asked
    };

    [[nodiscard]] std::vector<FoundCamera> lookOnce(bool& haveCome);
    [[nodiscard]] std::vector<Node> completeNodes();
    [[nodiscard]] std::string identify(const Path& hardware) const;
    [[nodiscard]] std::optional<FoundCamera> describe(const Path& hardware, const std::string& identity,
                                                      const std::string& label);
    void addVideo(const Node& node, FoundCamera& camera);
    [[nodiscard]] Told ask(const Node& node, const std::string& path, const std::string& before);
    [[nodiscard]] Linux::CallThread& threadOf(const std::string& camera, const std::string& label);
    [[nodiscard]] bool isEmpty(FoundCamera& camera);
    void addMicrophones(std::vector<FoundCamera>& cameras) const;
    void addRefused(std::vector<FoundCamera>& cameras, bool& haveCome);

    const std::shared_ptr<Linux::Kernel> kernel;
    const Linux::Sysfs sysfs;
    std::map<std::string, std::unique_ptr<Linux::CallThread>> threads; ///< by the camera's identity
    std::map<std::string, FoundCamera> complete; ///< what has all its nodes, without these, by its identity
    std::map<std::pair<std::string, std::string>, Told>
        asked; ///< by the camera's identity and the node's name
};

} // namespace Zentara::Usb
