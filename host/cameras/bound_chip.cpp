#include "host/cameras/bound_chip.h"

#include <algorithm>
#include <utility>

#include <zentara/core/descriptor_details.h>
#include <zentara/core/descriptor_store_ro.h>
#include <zentara/host/step_watcher.h>
#include <zentara/plugin/call_plugin.h>
#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/environment_variable.h>
#include <zentara/utils/format.h>
#include <zentara/utils/text.h>

#include "host/attempt.h"
#include "host/cameras/device_choice.h"
#include "host/guid_text.h"

namespace Zentara::Host {

namespace {

/// Devices made while it lives have the controller that the user named: a bare device is made by its GUID alone, so that
/// it looks for the rest in the environment. What stood in it before comes back.
class ChosenController {
public:
    explicit ChosenController(const std::string& name) {
        before = chip.isDefined() ? chip.getValue() : "";
        if (!name.empty())
            chip.setValue(name.c_str());
    }
    ~ChosenController() { chip.setValue(before.empty() ? nullptr : before.c_str()); }
    ChosenController(const ChosenController&) = delete;
    ChosenController& operator=(const ChosenController&) = delete;

private:
    Utils::EnvironmentVariable chip{IO::CameraChip::wantedVariable};
    std::string before;
};

/// A camera's video device as its node holds it, without the node.
class NodeDevice final : public IO::VideoDeviceProxy {
public:
    using VideoDeviceProxy::initialize;
    using VideoDeviceProxy::VideoDeviceProxy;
};

const NodeEvent& videoNodeOf(const CameraEntry& camera) {
    for (const NodeType type : {NodeType_DEPTH, NodeType_COLOR}) {
        if (const NodeEvent* node = camera.find(type))
            return *node;
    }
    throw Failure(Failure::NoDevice, "camera " + camera.label() +
                                         " has no video device, through which its controller is reached");
}

void checkController(const std::string& name) {
    const std::vector<std::string> known = IO::CameraChip::names();
    if (!name.empty() && std::find(known.begin(), known.end(), Utils::toUpper(name)) == known.end())
        throw Failure(Failure::Usage,
                      "there is no controller '" + name + "'; known: " + Utils::join(known, ", "));
}

} // namespace

void TransferWatch::set(IO::ChipListener newListener) {
    Utils::Threading::AutoLock hold(lock);
    listener = std::move(newListener);
}

void TransferWatch::operator()(const IO::ChipTransfer& transfer) {
    Utils::Threading::AutoLock hold(lock);
    if (listener)
        listener(transfer);
}

BoundChip::~BoundChip() {
    try {
        close();
    } catch (const Failure&) {
        // Whoever wants to know calls close() himself.
    }
}

void BoundChip::openDevice(const CameraEntry& camera) {
    if (binding && binding->isOpen)
        return;
    binding = std::make_shared<Binding>();
    NodeEvent& node = binding->node;
    node = videoNodeOf(camera);
    binding->store = std::make_unique<CameraStore>(); // its own: nobody else may select another node in it
    binding->store->select(node);
    Core::DescriptorStoreRO& store = binding->store->view();
    const GUID guid = Plugin::callPlugin([&store] { return store.getDeviceImplGUID(); });
    attempt(Utils::Format("open % through %") % cameraLabel(node) % guidLabel(guid), [&] {
        auto device = std::make_unique<NodeDevice>(guid, true);
        device->initialize(&node, &store);
        binding->proxy = std::move(device); // before it opens: close() lets go of it in any case
        binding->proxy->open();
        binding->isOpen = true;
    });
}

void BoundChip::open(const CameraEntry& camera, const std::string& controller) {
    if (chip())
        return;
    checkController(controller);
    openDevice(camera);
    const auto described = [this] { return Core::controllerNameOf(binding->store->view()); };
    bind(cameraLabel(binding->node), controller.empty() ? Plugin::callPlugin(described) : controller);
}

void BoundChip::open(const GUID& guid, const std::string& wanted, const std::string& controller) {
    if (chip())
        return;
    checkController(wanted);
    checkController(controller);
    binding = std::make_shared<Binding>();
    const ChosenController chosen(wanted.empty() ? controller : wanted);
    const std::string label = guidLabel(guid);
    attempt("open " + label, [&] {
        binding->proxy = std::make_unique<IO::VideoDeviceProxy>(guid, false);
        binding->proxy->open();
    });
    bind(label, controller);
}

/// A camera whose description does not name its controller is asked.
void BoundChip::bind(const std::string& label, const std::string& controller) {
    attempt("reach the controller of " + label, [&] {
        // Each transfer is a step of its own: what hangs is named by what it began with. The chip lives no longer than its
        // binding.
        const IO::ChipListener listener = [watch = transfers,
                                           &isClosed = binding->isClosed](const IO::ChipTransfer& transfer) {
            if (isClosed && !transfer.isOver)
                throw Plugin::InvalidOperationPluginException("the camera is closed, or was plugged in anew");
            StepWatcher* const steps = stepWatcher();
            if (transfer.isOver && steps != nullptr)
                steps->ends();
            (*watch)(transfer);
            if (!transfer.isOver && steps != nullptr)
                steps->begins(Utils::Format("% unit %, control %") % (transfer.isGet ? "GET" : "SET") %
                              transfer.unit % transfer.control);
        };
        binding->chip = controller.empty() ? IO::CameraChip::detect(*binding->proxy, listener)
                                           : IO::CameraChip::create(controller, *binding->proxy, listener);
        if (!binding->chip)
            throw Failure(Failure::NoDevice, "the camera has no controller that is known");
    });
}

void BoundChip::close() {
    const std::shared_ptr<Binding> last = std::move(binding); // closed or not, it goes
    if (!last || !last->proxy)
        return;
    last->isClosed = true;
    if (last->chip)
        ended.push_back(last);
    const Step watched("close the camera");
    attempt("close the camera", [&] { last->proxy->close(); });
}

} // namespace Zentara::Host
