#include <zentara/core/plugin_probe.h>

#include <algorithm>
#include <iterator>
#include <random>

#include <gmock/gmock.h>

#include <zentara/core/plugin_manager.h>
#include <zentara/version.h>

#include "core/test_root.h"
#include "utils/platform/library_file.h"

using namespace Zentara::Core;

namespace {

const std::string ownVersion = ZENTARA_SDK_VERSION_STRING;
const std::string kinds = "one of 1, 2, 3, 4, 5, 6, 8, 9";
const std::string thrown = "exception: thrown by the fixture";

struct Row {
    const char* plugin;
    PluginScanStep step;
    std::string found;
    std::string wanted;
};

class PluginScan : public testing::TestWithParam<Row> {};

PluginProbe probeOnly(const TestRoot& root) {
    const auto probes = probePluginDirectory(root.pluginDirectory());
    EXPECT_EQ(1u, probes.size());
    return probes.empty() ? PluginProbe() : probes.front();
}

std::vector<GUID> registeredDevices() {
    ManagerHold manager;
    return manager->getGUIDs(ImplType_VIDEO_DEVICE);
}

TEST_P(PluginScan, TellsTheStepAndBothValues) {
    const Row& row = GetParam();
    const TestRoot root("scan");
    const std::string path = root.add(row.plugin);

    const PluginProbe probe = probeOnly(root);

    EXPECT_EQ(path, probe.path);
    EXPECT_EQ(row.step, probe.step) << pluginScanStepName(probe.step) << ": " << probe.text;
    EXPECT_EQ(row.found, probe.found);
    EXPECT_EQ(row.wanted, probe.wanted);
    EXPECT_EQ(probe.accepted(), probe.text.empty());
    EXPECT_FALSE(Zentara::Utils::Platform::isLibraryLoaded(path));
    if (std::string(row.plugin) == "good") {
        EXPECT_TRUE(Zentara::guidEquals(fixtureGuid(1), probe.guid));
        EXPECT_EQ(5, probe.type);
        EXPECT_EQ((std::array<std::int32_t, 3>{7, 8, -9}), probe.pluginVersion);
        EXPECT_EQ((std::array<std::int32_t, 4>{1, 4, 5, 2151}), probe.sdkVersion);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Fixtures, PluginScan,
    testing::Values(Row{"good", PluginScanStep::Accepted, "", ""},
                    Row{"interpreter", PluginScanStep::Accepted, "", ""},
                    Row{"no_factory", PluginScanStep::Accepted, "", ""},
                    Row{"no_guid", PluginScanStep::ImplGUID, "no such export", "getImplGUID"},
                    Row{"no_type", PluginScanStep::ImplType, "no such export", "getImplType"},
                    Row{"no_version", PluginScanStep::PluginVersion, "no such export", "getPluginVersion"},
                    Row{"no_sdk", PluginScanStep::SDKVersion, "no such export", "getSDKVersion"},
                    Row{"throwing_guid", PluginScanStep::ImplGUID, thrown, "an answer from getImplGUID"},
                    Row{"throwing_sdk", PluginScanStep::SDKVersion, thrown, "an answer from getSDKVersion"},
                    Row{"kind_0", PluginScanStep::ImplType, "0", kinds},
                    Row{"kind_7", PluginScanStep::ImplType, "7", kinds},
                    Row{"sdk_major", PluginScanStep::SDKVersion, "2.4.5.2151", ownVersion},
                    Row{"sdk_build", PluginScanStep::SDKVersion, "1.4.5.2150", ownVersion}),
    [](const auto& row) { return std::string(row.param.plugin); });

TEST(PluginScanFiles, TheMarkOfADebugBuildCountsAnywhereInThePath) {
    const TestRoot marked(std::string("all-d.") + pluginFileExtension());
    marked.add("good");
    EXPECT_EQ(PluginScanStep::Name, probeOnly(marked).step);
    EXPECT_TRUE(registeredDevices().empty());
    marked.removeDirectory();
    EXPECT_TRUE(registeredDevices().empty()) << "no directory has no plug-ins";
}

// A duplicate counts as one whatever else is wrong with it, and a refused file does not take the GUID.
TEST(PluginScanFiles, TheFirstFileWithAGuidWinsIfItIsGood) {
    const TestRoot root("order");
    root.add("kind_7_as_good", "a");
    const std::string first = root.add("good", "b");
    root.add("kind_7_as_good", "c");

    const auto probes = probePluginDirectory(root.pluginDirectory());

    ASSERT_EQ(3u, probes.size());
    EXPECT_EQ(PluginScanStep::ImplType, probes[0].step);
    EXPECT_TRUE(probes[1].accepted());
    EXPECT_EQ(PluginScanStep::Duplicate, probes[2].step);
    EXPECT_THAT(probes[2].text, testing::HasSubstr(first));
    EXPECT_EQ(1u, registeredDevices().size());
}

// Copies that were interrupted, some in a place that had been made for the whole file: the loader would read beyond
// the end of the file, and run zeros.
TEST(PluginScanFiles, SurvivesTornLibraries) {
    const TestRoot root("torn");
    const std::string whole = pluginBytes("good");
    std::minstd_rand noise; // NOLINT(cert-msc51-cpp): the same each time
    const auto random = [&] { return static_cast<char>(noise() >> 8); };
    constexpr std::size_t pieces = 64;
    int refused = 0;
    for (std::size_t piece = 1; piece < pieces; ++piece) {
        const std::string arrived = whole.substr(0, whole.size() * piece / pieces);
        std::string noisy = arrived;
        std::generate_n(std::back_inserter(noisy), whole.size() - arrived.size(), random);
        for (const std::string& torn :
             {arrived, arrived + std::string(whole.size() - arrived.size(), '\0'), noisy}) {
            root.addBytes("torn", torn);
            const PluginProbe probe = probeOnly(root);
            // The rest of some libraries is for debuggers alone.
            EXPECT_TRUE(probe.step == PluginScanStep::Open || probe.accepted()) << piece << probe.text;
            EXPECT_EQ(probe.accepted(), probe.found.empty()) << piece;
            refused += !probe.accepted();
        }
    }
    EXPECT_GT(refused, 9);
    root.addBytes("torn", whole);
    EXPECT_TRUE(probeOnly(root).accepted());
}

} // namespace
