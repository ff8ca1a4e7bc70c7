// Finds the wall: one camera, which is always there.
#include <mutex>

#include <zentara/core/plugin_exports.h>
#include <zentara/io/enumerator_interface.h>
#include <zentara/utils/clock.h>
#include <zentara/utils/signal.h>

namespace {

using namespace Zentara;

constexpr GUID guid = {0x5F30D8A2, 0x1C6B, 0x4E94, {0x8A, 0x27, 0xD4, 0x0B, 0x71, 0xE8, 0x93, 0x4C}};

class WallEnumerator final : public IO::EnumeratorInterface {
public:
    WallEnumerator() : EnumeratorInterface(guid) {}
    ~WallEnumerator() override { dispose(); }

    std::string getBackendName() override { return "walls"; }
    bool isPresent(const NodeEvent& node) override { return node.path == path; }

    // Type, name and index come from the description with these four values; without one there is no camera. The
    // store is for one thread at a time, and both the host's and run() ask it.
    void enumerate(std::vector<NodeEvent>& nodes) override {
        NodeEvent wall;
        wall.path = path;
        wall.parentPath = "wall";
        wall.serialNumber = "WALL1";
        wall.vendorId = 0xFFFE;
        wall.productId = 0x0A11;
        wall.revision = 1;
        wall.interfaceNumber = 0;
        nodes.clear();
        const std::lock_guard hold(asking);
        if (!selectNodeDescriptor(&wall, Core::Profile_DEFAULT))
            return;
        fillEvent(&wall);
        nodes.push_back(wall);
    }

    void* run(void*) override {
        std::vector<NodeEvent> nodes;
        enumerate(nodes);
        for (const NodeEvent& node : nodes)
            getEventQueue()->push({ExternalEventType_NODE_ARRIVED, node, Utils::Clock::nowMicros()});
        while (!exitRequested())
            wake.wait();
        return nullptr;
    }

    void exit() override {
        EnumeratorInterface::exit();
        wake.set();
    }

private:
    static constexpr const char* path = "wall/depth";
    Utils::Threading::Signal wake;
    std::mutex asking;
};

} // namespace

ZENTARA_DEFINE_PLUGIN(WallEnumerator, guid, Core::ImplType_ENUMERATOR, 1, 0, 0)
