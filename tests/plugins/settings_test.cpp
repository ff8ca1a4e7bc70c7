#include "plugins/simulated/settings.h"

#include <string>

#include <gmock/gmock.h>

#include <zentara/utils/files.h>

#include "support/simulated_faults.h"
#include "support/temporary_directory.h"

namespace Zentara::Simulated {
namespace {

using testing::HasSubstr;

std::string complaint(const std::string& text) {
    try {
        (void)Settings::parse(text, "faults.txt");
    } catch (const Plugin::ConfigurationPluginException& failure) {
        return failure.message();
    }
    return "accepted";
}

TEST(Settings, ReadsEveryStatement) {
    const Settings settings =
        Settings::parse("# a camera that is tired\r\n"
                        "\n"
                        "seed 7   # lucky\n"
                        "refuse cancel\n"
                        "throw timeout at video.readBuffer after 30 times 2 saying no light here\n"
                        "\tthrow foreign at open\n"
                        "hang 250 at audio.close",
                        "faults.txt");
    EXPECT_EQ(settings.seed, 7U);
    EXPECT_TRUE(settings.refuseCancel);
    ASSERT_EQ(settings.faults.size(), 3U);

    const Fault& thrown = settings.faults[0];
    EXPECT_EQ(thrown.kind, Fault::Kind::Throw);
    EXPECT_EQ(thrown.exception, Plugin::PluginExceptionType_TIMEOUT);
    EXPECT_EQ(thrown.device, Device::Video);
    EXPECT_EQ(thrown.at, Operation::ReadBuffer);
    EXPECT_EQ(thrown.after, 30U);
    EXPECT_EQ(thrown.times, 2U);
    EXPECT_EQ(thrown.message, "no light here");

    EXPECT_EQ(settings.faults[1].kind, Fault::Kind::Foreign);
    EXPECT_EQ(settings.faults[1].device, Device::Any);
    EXPECT_EQ(settings.faults[2].kind, Fault::Kind::Hang);
    EXPECT_EQ(settings.faults[2].milliseconds, 250U);
    EXPECT_EQ(settings.faults[2].at, Operation::Close);
}

TEST(Settings, KnowsEveryOperationByItsName) {
    for (int number = 0; number <= static_cast<int>(Operation::SetMute); ++number) {
        const auto operation = static_cast<Operation>(number);
        const Settings settings =
            Settings::parse(std::string("hang 1 at ") + operationName(operation), "test");
        ASSERT_EQ(settings.faults.size(), 1U);
        EXPECT_EQ(settings.faults[0].at, operation) << operationName(operation);
    }
    EXPECT_STREQ(operationName(Operation::Create), "create");
    EXPECT_STREQ(operationName(Operation::SetMute), "setMute");
    EXPECT_STREQ(operationName(Operation::ControlRead), "controlRead");
}

TEST(Settings, SaysWhatIsWrongAndInWhichLine) {
    const struct {
        const char* text;
        const char* expected;
    } cases[]{
        {"seed 1\nsnooze 5", "faults.txt, line 2: unknown statement 'snooze'; known: seed throw hang refuse"},
        {"seed", "line 1: the seed is missing at the end of the line"},
        {"seed -1", "line 1: the seed must be a whole number from 0 to 4294967295, not '-1'"},
        {"seed 4294967296", "not '4294967296'"},
        {"seed 1 2", "line 1: unexpected '2' at the end of the line"},
        {"hang soon at open", "the time in milliseconds must be a whole number"},
        {"hang 5 open", "line 1: expected 'at', found 'open'"},
        {"hang 5 at", "line 1: the operation is missing at the end of the line"},
        {"hang 5 at lunch", "unknown operation 'lunch'; known: create initialize"},
        {"hang 5 at radio.open", "unknown device 'radio'; known: video audio"},
        {"hang 5 at open saying boo", "unexpected 'saying'"},
        {"throw tantrum at open", "unknown kind of exception 'tantrum'; known: streaming"},
        {"throw io at open times", "the count after 'times' is missing"},
        {"throw io at open saying", "unexpected 'saying'"},
        {"\n\n\nrefuse dinner", "line 4: expected 'cancel', found 'dinner'"},
    };
    for (const auto& row : cases)
        EXPECT_THAT(complaint(row.text), HasSubstr(row.expected)) << row.text;
}

TEST(Settings, ComeFromTheEnvironmentOrTheFileItNames) {
    EXPECT_TRUE(Settings::fromEnvironment().faults.empty());
    {
        const TestSupport::SimulatedFaults set("seed 3; refuse cancel");
        EXPECT_EQ(Settings::fromEnvironment().seed, 3U);
        EXPECT_TRUE(Settings::fromEnvironment().refuseCancel);
    }
    const TestSupport::TemporaryDirectory directory;
    const std::string path = directory.path("faults.txt");
    Utils::writeFile(path, "seed 9\nhang 1 at open; throw\n");
    const TestSupport::SimulatedFaults set("@" + path);
    EXPECT_THAT(
        [] { (void)Settings::fromEnvironment(); },
        testing::Throws<Plugin::ConfigurationPluginException>(testing::Property(
            &Plugin::PluginException::message, HasSubstr(path + ", line 2: unknown operation 'open;'"))));
    const TestSupport::SimulatedFaults missing("@" + directory.path("nowhere.txt"));
    EXPECT_THAT([] { (void)Settings::fromEnvironment(); },
                testing::Throws<Plugin::ConfigurationPluginException>(
                    testing::Property(&Plugin::PluginException::message, HasSubstr("nowhere.txt"))));
}

} // namespace
} // namespace Zentara::Simulated
