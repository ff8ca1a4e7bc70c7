#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "plugins/devices/looking_enumerator.h"
#include "plugins/usb/camera_scan.h"
#include "plugins/usb/device_news.h"

namespace Zentara::Usb {

/// Finds real cameras: what has a video node, on USB or elsewhere, and the microphones of the same hardware. A camera that
/// a description names by its four identifying values has the nodes of the description, each on the video node that
/// delivers the described format; any other streams colour, sound and, where it delivers Z16, depth as a generic one. A
/// camera of USB of which there is no such node is a node without a type, whose name says why.
///
/// Its thread looks as the kernel's news come in, and once a second. A node that this user may not open is told of as it is plugged in, and fails when it is
/// opened. Without a store there are no nodes. Safe.
class UsbEnumerator final : public Devices::LookingEnumerator {
public:
    UsbEnumerator();
    explicit UsbEnumerator(CameraScan found);
    ~UsbEnumerator() override;

    [[nodiscard]] std::string getBackendName() override;
    void exit() override;

private:
    /// A camera as it was found, and the nodes that it has.
    struct Known {
        FoundCamera camera;
        std::vector<NodeEvent> nodes; ///< their numbers among cameras of one kind are not yet told
    };
    /// A node that a description has.
    struct Described {
        NodeEvent event; ///< as the description fills it
        std::uint32_t fourCC = 0;
    };

    void forget() override ZENTARA_REQUIRES(lock);
    [[nodiscard]] std::vector<NodeEvent> find() override ZENTARA_REQUIRES(lock);
    void awaitNews() override;
    [[nodiscard]] std::vector<NodeEvent> nodesOf(const FoundCamera& camera) ZENTARA_REQUIRES(lock);
    [[nodiscard]] std::vector<Described> describedNodes(const FoundCamera& camera) ZENTARA_REQUIRES(lock);
    void addDescribed(const FoundCamera& camera, std::vector<Described> described,
                      std::vector<NodeEvent>& nodes) ZENTARA_REQUIRES(lock);
    void addGeneric(const FoundCamera& camera, std::vector<NodeEvent>& nodes) ZENTARA_REQUIRES(lock);

    CameraScan scan ZENTARA_GUARDED_BY(lock);
    /// At the last look. A store is asked for hundreds of nodes a camera, so it is asked again for those alone that changed.
    std::vector<Known> known ZENTARA_GUARDED_BY(lock);
    DeviceNews news; ///< the thread's, but for waking it
};

} // namespace Zentara::Usb
