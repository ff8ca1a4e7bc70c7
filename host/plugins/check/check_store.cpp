#include <string>

#include <zentara/audio_configuration.h>
#include <zentara/color_configuration.h>
#include <zentara/core/descriptor_store_interface.h>
#include <zentara/core/descriptor_store_ro.h>
#include <zentara/depth_base_configuration.h>
#include <zentara/host/failure.h>
#include <zentara/utils/format.h>

#include "host/guid_text.h"
#include "host/plugins/check/check_subject.h"

namespace Zentara::Host::Check {
namespace {

using Utils::Format;

/// All that the view is asked, whatever it answers. Returns the first mode's name.
std::string askView(const Core::DescriptorStoreRO& view) {
    for (const auto& mode : view.getDepthConfigurations())
        static_cast<void>(mode->getName());
    for (const auto& mode : view.getColorConfigurations())
        static_cast<void>(mode->getName());
    for (const auto& mode : view.getAudioConfigurations())
        static_cast<void>(mode->getName());
    static_cast<void>(view.getNodeImplGUID());
    static_cast<void>(view.getDeviceImplGUID());
    static_cast<void>(view.getDeviceHardwareIDs());
    static_cast<void>(view.getPreCommonSettings());
    static_cast<void>(view.getSpecificSettings());
    static_cast<void>(view.getPostCommonSettings());
    static_cast<void>(view.getStopCommonSettings());
    static_cast<void>(view.getDepthCapabilities());
    static_cast<void>(view.getFourCC());
    static_cast<void>(view.getDeviceDescriptor());
    static_cast<void>(view.getNodeDescriptor());
    static_cast<void>(view.getParameters());
    static_cast<void>(view.getParameterInterpreterGUID());
    static_cast<void>(view.getHardwareVersion());
    static_cast<void>(view.getDefaultRegionOfInterest());
    CyclicErrorRecord record;
    SensorValueArray values;
    static_cast<void>(view.getCyclicErrorRecord(DepthNode::CameraMode_0, record));
    static_cast<void>(view.getTemperatureCalibration(DepthNode::CameraMode_0, values));
    return Format("'%' of '%'") % view.getNodeName() % view.getProductName();
}

class StoreCheck {
public:
    StoreCheck(Subject& checked, Core::DescriptorStoreInterface& object)
        : subject(checked), run(checked.run), store(object) {}

    void all() {
        select("selectNodeDescriptor before initialize", {1, 2, 3, 4}, Wanted::Either);
        run.step({operationsPart, "initialize"}, Wanted::Success, [this] { store.initialize(); });
        if (!takeView())
            return;
        run.step({operationsPart, "all questions while nothing is selected"}, Wanted::Success,
                 [this]() -> std::string { return askView(*view); });
        unknown({0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF});
        tryCameras();
        run.step({operationsPart, "getROMElement of an unknown number"}, Wanted::Refusal,
                 [this] { static_cast<void>(view->getROMElement(0xFFFFFFFFFFFFFFFF)); });
        run.step({operationsPart, "getValue of a register that nothing writes"}, Wanted::Success,
                 [this]() -> std::string {
                     std::uint32_t value = 0;
                     return std::string(view->getValue(0xFFFFFFFF, value) ? "true" : "false");
                 });
        run.step({threadsPart, "a second store beside the first, on another thread"}, Wanted::Success,
                 [this] {
                     OtherThread().run([this] {
                         const auto other = makePlugin<Core::DescriptorStoreInterface>(subject.guid);
                         other->initialize();
                         if (other->getDescriptorStore() != nullptr)
                             static_cast<void>(askView(*other->getDescriptorStore()));
                         other->dispose();
                     });
                 });
        run.step({endingPart, "dispose"}, Wanted::Success, [this] { store.dispose(); });
        run.step({endingPart, "dispose a second time"}, Wanted::Success, [this] { store.dispose(); });
        run.step({endingPart, "initialize once more"}, Wanted::Success, [this] { store.initialize(); });
        run.step({endingPart, "dispose once more"}, Wanted::Success, [this] { store.dispose(); });
    }

private:
    void select(const char* name, const HardwareIDs& ids, Wanted wanted) {
        run.step({operationsPart, name}, wanted, [&]() -> std::string {
            return std::string(store.selectNodeDescriptor(ids, Core::Profile_DEFAULT) ? "true" : "false");
        });
    }

    bool takeView() {
        run.step({operationsPart, "getDescriptorStore"}, Wanted::Success, [this]() -> std::string {
            view = store.getDescriptorStore();
            if (view == nullptr)
                throw Finding{StepVerdict::Failed, "nothing", "no host reads a description",
                              "return the view, which lives as long as the store"};
            return {};
        });
        return view != nullptr;
    }

    void unknown(const HardwareIDs& ids) {
        run.step({operationsPart, "selectNodeDescriptor of a node that nobody has"}, Wanted::Success,
                 [this, &ids]() -> std::string {
                     if (store.selectNodeDescriptor(ids, Core::Profile_DEFAULT))
                         throw Finding{StepVerdict::Failed, "true",
                                       "a host takes every camera for one that this store describes",
                                       "compare all four values, and return false"};
                     return "false";
                 });
    }

    /// With the nodes that enumerators have found.
    void tryCameras() {
        run.step(
            {operationsPart, "selectNodeDescriptor and all questions for each camera of the install root"},
            Wanted::Success, [this]() -> std::string {
                std::size_t known = 0;
                std::size_t all = 0;
                try {
                    CameraBus bus({});
                    for (const CameraEntry& camera : bus.cameras()) {
                        for (const NodeEvent& node : camera.nodes) {
                            ++all;
                            if (!store.selectNodeDescriptor(node.hardwareIds(), node.profile))
                                continue;
                            ++known;
                            static_cast<void>(askView(*view));
                        }
                    }
                } catch (const Failure& failure) {
                    throw Finding{StepVerdict::NotRun, failure.what(), "",
                                  "put an enumerator beside it that finds its cameras"};
                }
                return Format("describes % of % nodes") % known % all;
            });
    }

    Subject& subject;
    CheckRun& run;
    Core::DescriptorStoreInterface& store;
    Core::DescriptorStoreRO* view = nullptr;
};

} // namespace

void checkStore(Subject& subject, Core::Plugin& object) {
    if (auto* const store = dynamic_cast<Core::DescriptorStoreInterface*>(&object))
        StoreCheck(subject, *store).all();
}

} // namespace Zentara::Host::Check
