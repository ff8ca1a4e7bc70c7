#include "utils/platform/text_encoding.h"

#include <string>

#include <gmock/gmock.h>

namespace Zentara::Utils::Platform {
namespace {

TEST(TextEncoding, RejectsInvalidUtf8) {
    const char* rows[] = {
        "\x80",             // no lead byte
        "\xC3",             // cut short
        "\xE2\x82",         // cut short
        "\xF0\x9F\x93",     // cut short
        "\xC3(",            // no following byte
        "\xC0\xAF",         // overlong '/'
        "\xE0\x80\xAF",     // overlong '/'
        "\xF0\x80\x80\xAF", // overlong '/'
        "\xED\xA0\x80",     // encoded surrogate
        "\xF4\x90\x80\x80", // beyond 0x10FFFF
        "\xFF",
    };
    for (const char* text : rows) {
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
