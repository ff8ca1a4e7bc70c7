#pragma once

#include <memory>
#include <string>
#include <vector>

#include <zentara/io/enumerator_interface.h>
#include <zentara/utils/mutex.h>
#include <zentara/utils/thread_annotations.h>

#include "plugins/usb/camera_scan.h"
#include "plugins/usb/device_news.h"

namespace Zentara::Usb {

/// Finds real cameras: what has a video node, on USB or elsewhere, and the microphones of the same hardware. A camera that
/// a description names by its four identifying values has the nodes of the description, each on the video node that
/// delivers the described format; any other streams colour, sound and, where it delivers Z16, depth as a generic one. A
/// camera of USB that the kernel made no node of is a node without a type, whose name says so.
///
/// Its thread puts what is there at first into the host's queue, then tells what went and what came, as the kernel's news
/// come in and once a second. A node that this user may not open is told of as it is plugged in, and fails when it is
/// opened. Without a store there are no nodes. Safe.
class UsbEnumerator final : public IO::EnumeratorInterface {
public:
    UsbEnumerator();
    explicit UsbEnumerator(CameraScan found);
    ~UsbEnumerator() override;

    void initialize(Utils::Collection::Queue<ExternalEvent>* events, Core::DescriptorStoreRO* store) override;
    void dispose() override;
    void enumerate(std::vector<NodeEvent>& nodes) override;
    [[nodiscard]] bool isPresent(const NodeEvent& node) override;
    [[nodiscard]] std::string getBackendName() override;
    void exit() override;
    void* run(void* argument) override;

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

    void look() ZENTARA_REQUIRES(lock);
    [[nodiscard]] std::vector<NodeEvent> nodesOf(const FoundCamera& camera) ZENTARA_REQUIRES(lock);
    [[nodiscard]] std::vector<Described> describedNodes(const FoundCamera& camera) ZENTARA_REQUIRES(lock);
    void addDescribed(const FoundCamera& camera, std::vector<Described> described,
                      std::vector<NodeEvent>& nodes) ZENTARA_REQUIRES(lock);
    void addGeneric(const FoundCamera& camera, std::vector<NodeEvent>& nodes) ZENTARA_REQUIRES(lock);
    std::vector<ExternalEvent> changes() ZENTARA_REQUIRES(lock);

    Utils::Threading::Mutex lock; ///< never held while the queue is used
    CameraScan scan ZENTARA_GUARDED_BY(lock);
    /// At the last look. A store is asked for hundreds of nodes a camera, so it is asked again for those alone that changed.
    std::vector<Known> known ZENTARA_GUARDED_BY(lock);
    std::vector<NodeEvent> present ZENTARA_GUARDED_BY(lock);   ///< at the last look
    std::vector<NodeEvent> announced ZENTARA_GUARDED_BY(lock); ///< what the host was told
    DeviceNews news;
};

} // namespace Zentara::Usb
