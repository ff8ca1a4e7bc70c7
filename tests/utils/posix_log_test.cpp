#include <zentara/utils/kv_logger.h>

#include <regex>

#include <gmock/gmock.h>

#include <zentara/utils/format.h>
#include <zentara/utils/thread_base.h>

#include "support/temporary_directory.h"
#include "utils/platform/posix/log_service.h"

namespace Zentara::Utils {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A logger without a file, whose entries go to a log service of the test's own.
class SystemLogTest : public testing::Test {
protected:
    SystemLogTest() { logger = KVLogger::createInstance(KVLogLevel_OFF, "test", nullptr); }
    ~SystemLogTest() override { KVLogger::release(); }

    /// Priority, tag and message of each entry that has come; the time and the process are left out.
    std::vector<std::string> entries() {
        const std::regex shape(
            "<(\\d+)>[A-Z][a-z]{2} [ 123]\\d \\d\\d:\\d\\d:\\d\\d ZentaraSDK\\[\\d+\\]: ([^]*)");
        std::vector<std::string> found;
        for (std::string entry = service.receive(); !entry.empty(); entry = service.receive()) {
            std::smatch parts;
            EXPECT_TRUE(std::regex_match(entry, parts, shape)) << entry;
            found.push_back(parts[1].str() + ' ' + parts[2].str());
        }
        return found;
    }

    const std::string tag =
        Format("[%{:x8}] ") % static_cast<unsigned>(Threading::ThreadBase::getCurrentThreadId());
    const TestSupport::TemporaryDirectory directory;
    Platform::LogService service{directory.path("log")};
    KVLogger* logger = nullptr;
};

// Facility "user"; also with the logger itself off.
TEST_F(SystemLogTest, GetsFourLevelsAsThreePriorities) {
    logger->critical("c");
    logger->error("e");
    logger->warning("w\xC3\xA4");
    logger->info("i");
    logger->debug("d");
    logger->verbose("v");
    logger->log(KVLogLevel_OFF, "off");
    EXPECT_THAT(entries(), ElementsAre("11 " + tag + "c", "11 " + tag + "e", "12 " + tag + "w\xC3\xA4",
                                       "14 " + tag + "i"));
}

TEST_F(SystemLogTest, IsFoundAgainAfterARestart) {
    logger->error("before");
    EXPECT_THAT(entries(), ElementsAre("11 " + tag + "before"));
    service.restart();
    logger->error("after");
    EXPECT_THAT(entries(), ElementsAre("11 " + tag + "after"));
    logger->error(std::string(1 << 20, 'x')); // more than the service would take
    const std::string entry = service.receive();
    EXPECT_EQ(entry.size(), 8192u);
    EXPECT_EQ(entry.back(), 'x');
}

// A service that does not read must not hold up who logs.
TEST_F(SystemLogTest, NeverBlocks) {
    for (int entry = 0; entry < 20000; ++entry)
        logger->error("flood");
    EXPECT_THAT(entries(), testing::Not(IsEmpty()));
}

} // namespace
} // namespace Zentara::Utils
