#include "utils/platform/clock.h"
#include "utils/platform/event.h"
#include "utils/platform/shared_memory.h"
#include "utils/platform/single_instance.h"
#include "utils/platform/text_encoding.h"
#include "utils/platform/thread.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace Zentara::Utils::Platform {
namespace {

std::string uniqueName(const std::string& purpose) {
    return "/zentara_test_" + purpose + "_" + std::to_string(currentProcessId());
}

Owned<SharedMapping> open(const std::string& name, std::size_t size = 256, bool writable = true) {
    return Owned<SharedMapping>(SharedMapping::create(name, size, writable));
}

std::atomic<int>& cell(const Owned<SharedMapping>& mapping, int index = 0) {
    return static_cast<std::atomic<int>*>(mapping->address())[index];
}

TEST(PlatformSharedMapping, RefusesWhatCannotBe) {
    EXPECT_FALSE(open(uniqueName("empty"), 0));
    for (const char* name : {"", "/", "/a/b", "a\\b", "/a/"})
        EXPECT_FALSE(open(name)) << name;
}

/// Two mappings held at the same time always are the same memory, however often the last user just went.
TEST(PlatformSharedMapping, ChurnNeverSplitsAName) {
    const std::string name = uniqueName("churn");
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&name, i] {
            for (int round = 1; round <= 500; ++round) {
                const auto first = open(name);
                ASSERT_TRUE(first);
                cell(first, i) = round;
                const auto second = open(name);
                ASSERT_TRUE(second);
                ASSERT_EQ(cell(second, i), round);
            }
        });
    }
    for (auto& thread : threads)
        thread.join();
}

TEST(PlatformSingleInstance, OneFirstAmongMany) {
    const std::string name = uniqueName("instance").substr(1);
    for (int round = 0; round < 100; ++round) {
        std::atomic<int> firsts{0};
        std::vector<Owned<SingleInstance>> held(4);
        std::vector<std::thread> threads;
        for (auto& instance : held) {
            threads.emplace_back([&] {
                bool existed = true;
                instance.reset(SingleInstance::create(name.c_str(), existed));
                EXPECT_TRUE(instance);
                firsts += existed ? 0 : 1;
            });
        }
        for (auto& thread : threads)
            thread.join();
        ASSERT_EQ(firsts, 1);
    }
}

TEST(PlatformWaits, LastAsLongAsTold) {
    Owned<Event> event(Event::create(Event::Reset::automatic));
    const std::int64_t before = monotonicMicroseconds();
    EXPECT_FALSE(event->wait(20));
    const std::int64_t between = monotonicMicroseconds();
    EXPECT_GE(between - before, 15'000);
    sleepMilliseconds(20);
    EXPECT_GE(monotonicMicroseconds() - between, 15'000);
}

TEST(TextEncoding, RejectsInvalidUtf8) {
    // No lead byte, cut short (three), no following byte, overlong '/' (three), an encoded surrogate, beyond
    // 0x10FFFF, and what is no byte of a text.
    for (const char* text : {"\x80", "\xC3", "\xE2\x82", "\xF0\x9F\x93", "\xC3(", "\xC0\xAF", "\xE0\x80\xAF",
                             "\xF0\x80\x80\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xFF"}) {
        std::wstring wide = L"untouched";
        EXPECT_FALSE(utf8ToWide(text, wide)) << testing::PrintToString(std::string(text));
        EXPECT_EQ(wide, L"untouched");
        EXPECT_EQ(utf8ToWideOrWidened(text).size(), std::string(text).size());
    }
    EXPECT_EQ(utf8ToWideOrWidened("\xFF"), L"\u00FF");
}

TEST(TextEncoding, RejectsLoneSurrogates) {
    for (const std::wstring& wide :
         {std::wstring(1, wchar_t(0xD83D)), std::wstring(1, wchar_t(0xDCF7)),
          std::wstring{wchar_t(0xDCF7), wchar_t(0xD83D)}, std::wstring{wchar_t(0xD800), L'x'}}) {
        std::string text = "untouched";
        EXPECT_FALSE(wideToUtf8(wide, text));
        EXPECT_EQ(text, "untouched");
        EXPECT_EQ(wideToUtf8OrNarrowed(wide).size(), wide.size());
    }
}

TEST(TextEncoding, KeepsTheEdgesOfEveryLength) {
    for (const char* text : {"", "\x7F", "\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF",
                             "\xEE\x80\x80", "\xEF\xBF\xBF", "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF"}) {
        std::wstring wide = L"replaced";
        std::string back = "replaced";
        ASSERT_TRUE(utf8ToWide(text, wide));
        ASSERT_TRUE(wideToUtf8(wide, back));
        EXPECT_EQ(back, text);
    }
}

} // namespace
} // namespace Zentara::Utils::Platform
