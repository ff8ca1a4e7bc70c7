
#include <gmock/gmock.h>

#include <zentara/core/descriptor_details.h>
#include <zentara/core/descriptor_store_interface.h>
#include <zentara/core/device_descriptor.h>
#include <zentara/core/guids.h>
#include <zentara/utils/files.h>

#include "plugins/cameras/plugin_guids.h"
#include "support/log_capture.h"
#include "support/scoped_variable.h"
#include "tests/plugins/camera_host.h"
#include "tests/plugins/descriptions/shipped.h"

namespace Zentara {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;
using TestSupport::changed;
using TestSupport::shipped;

constexpr std::uint32_t vendor = 0xFFFE;
constexpr Core::Profile longRange = static_cast<Core::Profile>(1);

/// The store of the real plug-in library.
class DescriptorStore : public testing::Test {
protected:
    Core::DescriptorStoreRO& view() { return *store->getDescriptorStore(); }

    bool select(std::uint32_t product, std::uint32_t interfaceNumber,
                Core::Profile profile = Core::Profile_DEFAULT) {
        return store->selectNodeDescriptor({vendor, product, 1, interfaceNumber}, profile);
    }

    /// Reads the descriptions of a folder of our own.
    void describe(const std::vector<std::pair<std::string, std::string>>& files) {
        const TestSupport::TemporaryDirectory root;
        std::filesystem::create_directory(TestSupport::TemporaryDirectory::fromUtf8(root.path("cameras")));
        for (const auto& [name, text] : files)
            Utils::writeFile(root.path("cameras/" + name), text);
        const TestSupport::ScopedVariable variable("ZENTARASDK_ROOT", root.path());
        store->initialize();
    }

    Utils::SmartPtr<Core::DescriptorStoreInterface> store =
        TestSupport::makePlugin<Core::DescriptorStoreInterface>(Cameras::descriptorStoreGuid);
};

TEST_F(DescriptorStore, DescribesTheNodeThatIsSelected) {
    store->initialize();
    ASSERT_TRUE(select(0x0570, 0));
    EXPECT_EQ(view().getFourCC(), (FourCC{fourCCCode('Y', '1', '6', ' '), 16, 640}));
    SensorValueArray temperatures;
    EXPECT_FALSE(view().getTemperatureCalibration(DepthNode::CameraMode_NONE, temperatures));
    view().getDepthConfigurations()[1]->setCommands({});
    EXPECT_THAT(view().getDepthConfigurations()[1]->getCommands(), SizeIs(1)) << "callers get copies";

    ASSERT_TRUE(select(0x0345, 2));
    EXPECT_FALSE(select(0x0570, 3));
    EXPECT_FALSE(select(0x0571, 0));
    EXPECT_EQ(view().getNodeType(), NodeType_AUDIO) << "the selection stays as it was";
    EXPECT_TRUE(guidEquals(view().getNodeImplGUID(), Cameras::audioNodeGuid));
    EXPECT_EQ(view().getNodeIndex(), 2U);
    EXPECT_EQ(Core::controllerNameOf(view()), "VC0345");
    EXPECT_EQ(view().getNodeHardwareIDs(), (HardwareIDs{vendor, 0x0345, 1, 2}));
}

TEST_F(DescriptorStore, AProfileReplacesWhatItNamesAndLeavesTheUnitOfDepth) {
    std::string text = changed(shipped("ov0570"), "\"controller\": \"OV0570\",", "");
    text = changed(text, "\"flags\": 1,\n            \"reg",
                   "\"flags\": 5, \"depthUnit\": 250, \"depthAlong\": \"ray\",\n            \"reg");
    text = changed(text, "\"profile\": 1,", "\"profile\": 1, \"flags\": 6, \"depthAlong\": \"axis\",");
    describe({{"camera.json", text}});
    ASSERT_TRUE(select(0x0570, 0));
    EXPECT_EQ(view().getDeviceCapabilities(), 7);
    EXPECT_EQ(Core::controllerNameOf(view()), "");
    EXPECT_EQ(view().getDepthFlags(), 5U);
    EXPECT_EQ(Core::depthUnitOf(view()), 250U);
    EXPECT_EQ(Core::depthAlongOf(view()), Core::DepthAlong::Ray);
    ASSERT_TRUE(select(0x0570, 0, longRange));
    EXPECT_EQ(view().getProfile(), longRange);
    EXPECT_EQ(view().getDepthCapabilities(), 1U);
    EXPECT_EQ(view().getDepthConfigurations().at(0)->getName(), "DEFF2FR60CM0S1");
    EXPECT_EQ(view().getDepthFlags(), 6U);
    EXPECT_EQ(Core::depthUnitOf(view()), 250U) << "the node's";
    EXPECT_EQ(Core::depthAlongOf(view()), Core::DepthAlong::Axis);
    EXPECT_FALSE(select(0x0570, 1, longRange)) << "the colour node has no such profile";
}

TEST_F(DescriptorStore, HasAViewOnlyBetweenInitializeAndDispose) {
    EXPECT_EQ(store->getDescriptorStore(), nullptr);
    EXPECT_FALSE(select(0x0570, 0));
    store->initialize();
    EXPECT_EQ(view().getNodeType(), NodeType_NONE) << "nothing is selected";
    EXPECT_TRUE(guidEquals(view().getNodeImplGUID(), Core::Guids::NULL_IMPL));
    store->dispose();
    EXPECT_EQ(store->getDescriptorStore(), nullptr);
    store->dispose();
}

TEST_F(DescriptorStore, OneWrongDescriptionLeavesTheOthers) {
    const TestSupport::LogCapture log;
    const std::string whole = shipped("vc0258");
    describe({{"a.json", "{"},
              {"b.json", whole},
              {"c.json", changed(whole, "0x0258", "0x0259")},
              {"d.json", changed(whole, "\"ZS258\"", "\"ZS259\"")},
              {"e.txt", "not looked at"},
              {"f.json", shipped("vc0345")},
              {"g.json", changed(shipped("ov0570"), "\"SIM0570\"", "\"SIM0345\"")}});
    EXPECT_TRUE(select(0x0258, 0));
    EXPECT_TRUE(select(0x0345, 0));
    EXPECT_FALSE(select(0x0259, 0));
    EXPECT_THAT(log.warnings(), ElementsAre(HasSubstr("a.json, line 1: "),
                                            HasSubstr("c.json, line 3, model: 'ZS258' is described by"),
                                            HasSubstr("d.json, line 8, productId: "),
                                            HasSubstr("g.json, line 6, serialNumber: 'SIM0345' belongs to")));
}

} // namespace
} // namespace Zentara
