#include "plugins/simulated/settings.h"

#include <gmock/gmock.h>

#include <zentara/utils/files.h>

#include "support/failure.h"
#include "support/simulated_faults.h"
#include "support/temporary_directory.h"

namespace Zentara::Simulated {
namespace {

using testing::HasSubstr;

std::string complaint(const std::string& text) {
    return TestSupport::messageOf<Plugin::ConfigurationPluginException>(
        [&] { (void)Settings::parse(text, "faults.txt"); });
}

TEST(Settings, SaysWhatIsWrongAndInWhichLine) {
    const std::pair<const char*, const char*> cases[]{
        {"seed 1\nsnooze 5", "faults.txt, line 2: unknown statement 'snooze'; known: seed throw hang refuse"},
        {"seed -1", "line 1: the seed must be a whole number from 0 to 4294967295, not '-1'"},
        {"seed 1 2", "line 1: unexpected '2' at the end of the line"},
        {"hang 5 open", "line 1: expected 'at', found 'open'"},
        {"hang 5 at lunch", "unknown operation 'lunch'; known: create initialize"},
        {"hang 5 at radio.open", "unknown device 'radio'; known: video audio"},
        {"throw tantrum at open", "unknown kind of exception 'tantrum'; known: streaming"},
        {"transfer 0 fail", "the number of the transfer must be 1 to 4294967295, not 0"},
        {"transfer 1 explode", "unknown transfer fault 'explode'; known: hang fail late short long corrupt"},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_THAT(complaint(text), HasSubstr(expected)) << text;
}

TEST(Settings, ComeFromTheEnvironmentOrTheFileItNames) {
    {
        const TestSupport::SimulatedFaults set("seed 3; refuse cancel");
        EXPECT_EQ(Settings::fromEnvironment().seed, 3U);
        EXPECT_TRUE(Settings::fromEnvironment().refuseCancel);
    }
    const TestSupport::TemporaryDirectory directory;
    const std::string path = directory.path("faults.txt");
    Utils::writeFile(path, "# tired\r\n\nseed 9 # lucky\n\thang 1 at open; throw\n");
    const auto complains = [] {
        return TestSupport::messageOf<Plugin::ConfigurationPluginException>(
            [] { (void)Settings::fromEnvironment(); });
    };
    const TestSupport::SimulatedFaults set("@" + path);
    EXPECT_THAT(complains(), HasSubstr(path + ", line 4: unknown operation 'open;'"));
    const TestSupport::SimulatedFaults missing("@" + directory.path("nowhere.txt"));
    EXPECT_THAT(complains(), HasSubstr("nowhere.txt"));
}

} // namespace
} // namespace Zentara::Simulated
