#include <zentara/utils/kv_logger.h>
#include <zentara/utils/logger.h>

#include <filesystem>
#include <regex>
#include <thread>

#include <gmock/gmock.h>

#include <zentara/utils/exceptions.h>
#include <zentara/utils/format.h>
#include <zentara/utils/text.h>
#include <zentara/utils/thread_base.h>

#include "support/log_capture.h"

namespace Zentara::Utils {
namespace {

using testing::HasSubstr;
using TestSupport::LogCapture;
using TestSupport::TemporaryDirectory;

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines = split(text, '\n');
    EXPECT_EQ(lines.back(), "");
    lines.pop_back();
    return lines;
}

/// Tag, label and message of each line between the start banner and the end, without the time.
std::vector<std::string> entriesOf(const std::string& text) {
    std::vector<std::string> entries;
    for (const std::string& line : linesOf(text)) {
        const std::size_t tag = line.find(": [");
        if (tag != std::string::npos)
            entries.push_back(line.substr(tag + 2));
    }
    return entries;
}

std::string ownTag() {
    return Format("[%{:x8}]: ") % static_cast<unsigned>(Threading::ThreadBase::getCurrentThreadId());
}

void logEveryLevel(KVLogger& logger) {
    logger.critical("c");
    logger.error("e");
    logger.warning("w");
    logger.info("i");
    logger.debug("d");
    logger.verbose("v");
    logger.log(KVLogLevel_OFF, "off");
    logger.log(static_cast<KVLogLevel>(-1), "below");
    logger.log(static_cast<KVLogLevel>(7), "above");
}

TEST(Logger, WritesTheLineInItsExactShapeUpToItsLevel) {
    const std::string tag = ownTag();
    std::vector<std::string> lines = {tag + "CRITICAL: c", tag + "ERROR:    e"};
    {
        const LogCapture log(KVLogLevel_ERROR);
        logEveryLevel(*log.logger);
        EXPECT_EQ(entriesOf(log.text()), lines);
    }
    lines.insert(lines.end(), {tag + "WARNING:  w", tag + "INFO:     i"});
    const LogCapture log(static_cast<KVLogLevel>(9)); // which is none, so as the last
    logEveryLevel(*log.logger);
    EXPECT_EQ(entriesOf(log.text()), lines);
}

TEST(Logger, FramesARunByBannersAndAppends) {
    const TemporaryDirectory directory;
    const std::string path = directory.path("l\xC3\xB6g.txt");
    for (int run = 0; run < 2; ++run) {
        KVLogger::createInstance(KVLogLevel_INFO, "camera host", path.c_str())->info("hello");
        KVLogger::release();
    }
    std::string text = readFile(path);
    std::erase(text, '\r');
    const std::vector<std::string> lines = linesOf(text);
    ASSERT_EQ(lines.size(), 14u);
    const std::string frame(65, '=');
    for (std::size_t index : {0, 2, 4, 6, 7, 9, 11, 13})
        EXPECT_EQ(lines[index], frame) << index;
    EXPECT_THAT(lines[1], testing::MatchesRegex("camera host log started .+"));
    EXPECT_THAT(lines[5], testing::MatchesRegex("camera host log ended .+"));
}

TEST(Logger, StaysOffWithoutLevelOrTarget) {
    const TemporaryDirectory directory;
    const std::string path = directory.path("log.txt");
    KVLogger::createInstance(KVLogLevel_OFF, "off", path.c_str())->error("nowhere");
    KVLogger::release();
    EXPECT_FALSE(std::filesystem::exists(TemporaryDirectory::fromUtf8(path)));
    for (const char* target : {static_cast<const char*>(nullptr), "no/such/directory/log.txt", ""}) {
        KVLogger::createInstance(KVLogLevel_INFO, nullptr, target)->error("nowhere");
        KVLogger::release();
    }
}

TEST(Logger, LeavesTheStandardStreamsOpen) {
    for (const char* target : {"-", "STDOUT"}) {
        testing::internal::CaptureStdout();
        KVLogger::createInstance(KVLogLevel_INFO, "out", target)->info("to standard output");
        KVLogger::release();
        EXPECT_NE(std::puts("still open"), EOF);
        EXPECT_THAT(testing::internal::GetCapturedStdout(),
                    testing::AllOf(HasSubstr("to standard output"), HasSubstr("still open")));
    }
    testing::internal::CaptureStderr();
    KVLogger::createInstance(KVLogLevel_INFO, "err", "STDERR")->info("to standard error");
    KVLogger::release();
    EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("to standard error"));
}

TEST(Logger, IsSharedAndNotCounted) {
    const TemporaryDirectory directory;
    Logger* logger = Logger::instance(KVLogLevel_WARNING, "one", directory.path("one.txt").c_str());
    EXPECT_EQ(Logger::instance(KVLogLevel_INFO, "two", directory.path("two.txt").c_str()), logger);
    logger->warning("written");
    logger->info("not written");
    logger->debug("never");
    logger->verbose("never");
    Logger::release();
    Logger::release();
    EXPECT_EQ(entriesOf(readFile(directory.path("one.txt"))).size(), 1u);
}

TEST(KVLogger, CountsItsUsers) {
    EXPECT_EQ(KVLogger::instance(), nullptr);
    KVLogger::release();
    const TemporaryDirectory directory;
    KVLogger* first = KVLogger::createInstance(KVLogLevel_INFO, "first", directory.path("first.txt").c_str());
    EXPECT_EQ(KVLogger::createInstance(KVLogLevel_OFF, "second", nullptr), first);
    EXPECT_EQ(KVLogger::instance(), first);
    KVLogger::release();
    KVLogger::release();
    first->info("still there");
    KVLogger::release();
    EXPECT_EQ(KVLogger::instance(), nullptr);
    EXPECT_THAT(readFile(directory.path("first.txt")), HasSubstr("still there"));
}

TEST(KVLogger, LeavesTheLastSystemErrorAlone) {
    const LogCapture log;
    EXPECT_EQ(readFile(log.path()).empty(), false);
    EXPECT_THROW(readFile("no/such/directory/at-all"), UIOException);
    const std::string before = getLastError();
    log.logger->error("a line between failure and report");
    EXPECT_EQ(getLastError(), before);
}

// Bytes that are no UTF-8 pass through the log and through each conversion, which warns, from several threads.
TEST(KVLogger, TakesInvalidTextFromSeveralThreadsWithoutMixingLines) {
    constexpr int threadCount = 8;
    constexpr int rounds = 50;
    const std::string invalid = "bad \xFF\xC3(";
    const LogCapture log;
    std::vector<std::thread> threads;
    for (int i = 0; i < threadCount; ++i)
        threads.emplace_back([&] {
            for (int round = 0; round < rounds; ++round) {
                log.logger->warning(invalid);
                EXPECT_EQ(stringToWString(invalid).size(), invalid.size());
                EXPECT_EQ(wstringToString(std::wstring(1, wchar_t(0xD800))), std::string(1, '\0'));
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    const std::vector<std::string> entries = entriesOf(log.text());
    EXPECT_EQ(entries.size(), static_cast<std::size_t>(3 * threadCount * rounds));
    const std::regex shape("\\[[0-9a-f]{8}\\]: WARNING:  (bad|coult not convert string ')[^\\[]*");
    for (const std::string& entry : entries)
        ASSERT_TRUE(std::regex_match(entry, shape)) << entry;
}

} // namespace
} // namespace Zentara::Utils
