#include <zentara/utils/text.h>

#include <climits>
#include <string>

#include <gmock/gmock.h>

#include <zentara/utils/exceptions.h>

#include "support/log_capture.h"

namespace Zentara::Utils {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

std::string parseFailure(const std::string& text) {
    try {
        return std::to_string(parseInt(text));
    } catch (const UFormatException& failure) {
        return failure.message();
    }
}

TEST(Text, ParsesWholeDecimalNumbers) {
    EXPECT_EQ(parseInt(" 42"), 42);
    EXPECT_EQ(parseInt("-7"), -7);
    EXPECT_EQ(parseInt("+010"), 10);
    EXPECT_EQ(parseInt("4294967297"), 1);
    EXPECT_EQ(parseInt("2147483648"), INT_MIN);
    EXPECT_EQ(parseFailure(""), "string is empty");
    for (const std::string text : {"42 ", "0x10", "-", " ", "4a", "--1"})
        EXPECT_EQ(parseFailure(text), "invalid number") << text;
    EXPECT_EQ(parseFailure(std::string("4\0", 2)), "invalid number");
}

TEST(Text, ConvertsBetweenNarrowAndWide) {
    EXPECT_EQ(stringToWString(""), L"");
    EXPECT_EQ(wstringToString(L""), "");
    const std::string narrow = std::string("a\0\xC3\xA9\xE2\x82\xAC", 7) + "\xF0\x9F\x93\xB7";
    const std::wstring wide = std::wstring(L"a\0\u00E9\u20AC", 4) + L"\U0001F4F7";
    EXPECT_EQ(stringToWString(narrow), wide);
    EXPECT_EQ(wstringToString(wide), narrow);
}

TEST(Text, WarnsOfInvalidTextAndTakesItByteByByte) {
    const TestSupport::LogCapture log;
    EXPECT_EQ(stringToWString("a\xFF"), L"a\u00FF");
    EXPECT_EQ(wstringToString(std::wstring(L"b") + wchar_t(0xDC41)), "bA");
    EXPECT_THAT(log.text(), HasSubstr("coult not convert string 'a\xFF' to UTF-8, reverting to ASCII: "));
    EXPECT_THAT(log.text(), HasSubstr("coult not convert string 'bA' to UTF-8, reverting to ASCII: "));
}

TEST(Text, CutsAtTheLastLineEnd) {
    EXPECT_EQ(removeNewline("a\r\nb\r\n"), "a\r\nb");
    EXPECT_EQ(removeNewline("a\r\nb\nc"), "a");
    EXPECT_EQ(removeNewline("a\nb"), "a");
    EXPECT_EQ(removeNewline("a\rb\nc\rd"), "a\rb");
    EXPECT_EQ(removeNewline("a\r"), "a");
    EXPECT_EQ(removeNewline("plain"), "plain");
    EXPECT_EQ(removeNewline(std::wstring(L"a\r\n")), L"a");
}

TEST(Text, SplitsAndJoins) {
    EXPECT_THAT(split("a,,b,", ','), ElementsAre("a", "", "b", ""));
    EXPECT_THAT(split("", ','), ElementsAre(""));
    EXPECT_THAT(split("a,b,c", ',', 2), ElementsAre("a", "b,c"));
    EXPECT_THAT(split("a,b,c", ',', 1), ElementsAre("a,b,c"));
    EXPECT_THAT(split("a,b,c", ',', -1), ElementsAre("a", "b", "c"));
    EXPECT_THAT(split("a,b,c", ',', INT_MIN), ElementsAre("a", "b", "c"));
    EXPECT_EQ(join({"a", "", "b"}, ", "), "a, , b");
    EXPECT_EQ(join({}, ","), "");
}

TEST(Text, HandlesCasePrefixesAndDivisors) {
    EXPECT_EQ(toLower("AbZ\xC3\x89["), "abz\xC3\x89[");
    EXPECT_EQ(toUpper("aBz\xC3\xA9{"), "ABZ\xC3\xA9{");
    EXPECT_EQ(removePrefix("prefix text", "prefix "), "text");
    EXPECT_EQ(removePrefix("text", "texts"), "text");
    EXPECT_EQ(gcd(12, -18), 6);
    EXPECT_EQ(gcd(0, 5), 5);
    EXPECT_EQ(gcd(0, 0), 0);
    EXPECT_EQ(gcd(INT_MIN, 6), 2);
    EXPECT_EQ(gcd(INT_MIN, 0), INT_MIN) << "2^31 is no int";
}

} // namespace
} // namespace Zentara::Utils
