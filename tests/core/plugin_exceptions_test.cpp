#include <zentara/plugin/plugin_exceptions.h>

#include <functional>

#include <gmock/gmock.h>

#include <zentara/utils/files.h>
#include <zentara/utils/kv_logger.h>

using namespace Zentara::Plugin;
using testing::HasSubstr;
using testing::Not;
using Zentara::Utils::KVLogger;

namespace {

struct Row {
    PluginExceptionType type;
    std::string logged;
    std::function<bool(const PluginException&)> isOwnClass;
};

template<typename Class>
bool isA(const PluginException& exception) {
    return dynamic_cast<const Class*>(&exception) != nullptr;
}

const Row rows[] = {
    {PluginExceptionType_STREAMING, "Streaming Exception: ", isA<StreamingPluginException>},
    {PluginExceptionType_CONFIGURATION, "Configuration Exception: ", isA<ConfigurationPluginException>},
    {PluginExceptionType_TIMEOUT, "Timeout Exception: ", isA<TimeoutPluginException>},
    {PluginExceptionType_ARGUMENT, "Argument Exception: ", isA<ArgumentPluginException>},
    {PluginExceptionType_IO, "I/O Exception: ", isA<IOPluginException>},
    {PluginExceptionType_NOT_SUPPORTED, "Not Supported Exception: ", isA<NotSupportedPluginException>},
    {PluginExceptionType_INITIALIZATION, "Initialization Exception: ", isA<InitializationPluginException>},
    {PluginExceptionType_INVALID_OPERATION,
     "Invalid Operation Exception: ", isA<InvalidOperationPluginException>},
    {PluginExceptionType_UNAUTHORIZED_ACCESS,
     "Unauthorized Access Exception: ", isA<UnauthorizedAccessPluginException>},
};

/// The log in a file, read once it is closed.
class PluginExceptions : public testing::Test {
protected:
    void SetUp() override {
        Zentara::Utils::writeFile(target, "");
        KVLogger::createInstance(Zentara::Utils::KVLogLevel_INFO, "core_tests", target.c_str());
    }
    void TearDown() override {
        if (logging)
            closeLog();
    }

    std::string closeLog() {
        KVLogger::release();
        logging = false;
        return Zentara::Utils::readFile(target);
    }

    const std::string target = ZENTARA_TEST_ROOTS ".log";
    bool logging = true;
};

TEST_F(PluginExceptions, AreThrownByKindAndLogOneLine) {
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
            EXPECT_TRUE(rows[type].isOwnClass(exception)) << type;
        }
    }
    const std::string log = closeLog();
    for (int type = 0; type <= 8; ++type) {
        EXPECT_EQ(type, rows[type].type);
        EXPECT_THAT(log, HasSubstr(rows[type].logged + "100% of kind " + std::to_string(type) + " %{:x}"));
    }
}

TEST_F(PluginExceptions, CopiesAndTheBaseLogNothing) {
    const PluginException base(PluginExceptionType_IO, "quiet base");
    EXPECT_STREQ("quiet base", base.what());
    const IOPluginException original("once");
    IOPluginException copy = original;
    const PluginException sliced = copy;
    copy = IOPluginException("assigned");
    EXPECT_EQ(PluginExceptionType_IO, sliced.type());
    EXPECT_STREQ("once", sliced.what());
    EXPECT_STREQ("assigned", copy.what());

    const std::string log = closeLog();
    EXPECT_THAT(log, Not(HasSubstr("quiet base")));
    EXPECT_EQ(log.find("I/O Exception: once"), log.rfind("I/O Exception: once"));
    EXPECT_NE(std::string::npos, log.find("I/O Exception: once"));
}

TEST_F(PluginExceptions, NeedNoLogger) {
    closeLog();
    EXPECT_THROW(throwPluginException(PluginExceptionType_TIMEOUT, "unheard"), TimeoutPluginException);
}

TEST_F(PluginExceptions, AnUnknownKindThrowsNothing) {
    EXPECT_NO_THROW(throwPluginException(static_cast<PluginExceptionType>(9), "x"));
    EXPECT_NO_THROW(throwPluginException(static_cast<PluginExceptionType>(-1), "x"));
}

} // namespace
