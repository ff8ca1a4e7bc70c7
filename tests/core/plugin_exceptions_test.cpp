#include <zentara/plugin/plugin_exceptions.h>

#include <typeinfo>

#include <gmock/gmock.h>

#include "support/log_capture.h"

using namespace Zentara::Plugin;
using testing::HasSubstr;
using testing::Not;
using Zentara::TestSupport::LogCapture;

namespace {

const std::pair<std::string, const std::type_info&> rows[] = {
    {"Streaming Exception: ", typeid(StreamingPluginException)},
    {"Configuration Exception: ", typeid(ConfigurationPluginException)},
    {"Timeout Exception: ", typeid(TimeoutPluginException)},
    {"Argument Exception: ", typeid(ArgumentPluginException)},
    {"I/O Exception: ", typeid(IOPluginException)},
    {"Not Supported Exception: ", typeid(NotSupportedPluginException)},
    {"Initialization Exception: ", typeid(InitializationPluginException)},
    {"Invalid Operation Exception: ", typeid(InvalidOperationPluginException)},
    {"Unauthorized Access Exception: ", typeid(UnauthorizedAccessPluginException)},
};

TEST(PluginExceptions, AreThrownByKindAndLogOneLine) {
    const LogCapture capture;
    for (int type = 0; type <= 8; ++type) {
        // The percent signs are part of the message, not of a format.
        const std::string message = "100% of kind " + std::to_string(type) + " %{:x}";
        try {
            throwPluginException(static_cast<PluginExceptionType>(type), message);
            ADD_FAILURE() << "kind " << type << " threw nothing";
        } catch (const PluginException& exception) {
            EXPECT_EQ(type, exception.type());
            EXPECT_EQ(message, exception.what());
            EXPECT_EQ(message, exception.message());
            EXPECT_TRUE(rows[type].second == typeid(exception)) << type;
        }
        EXPECT_THAT(capture.text(), HasSubstr(rows[type].first + message));
    }
}

TEST(PluginExceptions, CopiesAndTheBaseLogNothing) {
    const LogCapture capture;
    const PluginException base(PluginExceptionType_IO, "quiet base");
    EXPECT_STREQ("quiet base", base.what());
    const IOPluginException original("once");
    IOPluginException copy = original;
    const PluginException sliced = copy;
    copy = IOPluginException("assigned");
    EXPECT_EQ(PluginExceptionType_IO, sliced.type());
    EXPECT_STREQ("once", sliced.what());
    EXPECT_STREQ("assigned", copy.what());

    const std::string log = capture.text();
    EXPECT_THAT(log, Not(HasSubstr("quiet base")));
    EXPECT_EQ(log.find("I/O Exception: once"), log.rfind("I/O Exception: once"));
    EXPECT_NE(std::string::npos, log.find("I/O Exception: once"));
}

} // namespace
