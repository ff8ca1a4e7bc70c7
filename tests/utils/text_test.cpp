#include <zentara/utils/text.h>

#include <climits>

#include <gmock/gmock.h>

#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/exceptions.h>

#include "support/failure.h"
#include "support/log_capture.h"
#include "utils/visible_text.h"

namespace Zentara::Utils {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

TEST(Text, ParsesWholeDecimalNumbers) {
    EXPECT_EQ(parseInt(" 42"), 42);
    EXPECT_EQ(parseInt("-7"), -7);
    EXPECT_EQ(parseInt("+010"), 10);
    EXPECT_EQ(parseInt("4294967297"), 1);
    EXPECT_EQ(parseInt("2147483648"), INT_MIN);
    const auto parseFailure = [](const std::string& text) {
        return TestSupport::messageOf<UFormatException>([&] { parseInt(text); });
    };
    EXPECT_EQ(parseFailure(""), "string is empty");
    for (const std::string text : {"42 ", "0x10", "-", " ", "4a", "--1"})
        EXPECT_EQ(parseFailure(text), "invalid number") << text;
    EXPECT_EQ(parseFailure(std::string("4\0", 2)), "invalid number");
}

TEST(Text, ConvertsBetweenNarrowAndWide) {
    EXPECT_EQ(stringToWString(""), L"");
    const std::string narrow = std::string("a\0\xC3\xA9\xE2\x82\xAC", 7) + "\xF0\x9F\x93\xB7";
    const std::wstring wide = std::wstring(L"a\0\u00E9\u20AC", 4) + L"\U0001F4F7";
    EXPECT_EQ(stringToWString(narrow), wide);
    EXPECT_EQ(wstringToString(wide), narrow);
}

TEST(Text, WarnsOfInvalidTextAndTakesItByteByByte) {
    const TestSupport::LogCapture log;
    EXPECT_EQ(stringToWString("a\xFF"), L"a\u00FF");
    EXPECT_EQ(wstringToString(std::wstring(L"b") + wchar_t(0xDC41)), "bA");
    EXPECT_THAT(log.text(), HasSubstr("coult not convert string 'a\\xff' to UTF-8, reverting to ASCII: "));
    EXPECT_THAT(log.text(), HasSubstr("coult not convert string 'bA' to UTF-8, reverting to ASCII: "));
}

TEST(Text, ShowsWhatCouldActOnATerminal) {
    const std::string ordinary = "C:\\caf\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x93\xB7 \xD9\x81\xE2\x80\x8C 100%";
    EXPECT_EQ(visibleText(ordinary), ordinary);
    EXPECT_EQ(visibleText(std::string("a\0\r\n\t\x1B[2J\x7F", 10)), "a\\x00\\r\\n\\t\\x1b[2J\\x7f");
    EXPECT_EQ(visibleText("\xC2\x9B\xE2\x80\xAE\xE2\x81\xA6\xE2\x80\xA8\xEF\xBB\xBF\xF3\xA0\x81\x81"),
              "\\u{9b}\\u{202e}\\u{2066}\\u{2028}\\u{feff}\\u{e0041}");
    EXPECT_EQ(visibleText("\xE2\x82(\xC0\xAF\xED\xA0\x80\xE2\x82"),
              "\\xe2\\x82(\\xc0\\xaf\\xed\\xa0\\x80\\xe2\\x82");
    const TestSupport::LogCapture log;
    const Plugin::IOPluginException failure("no\nforged\x1B[2J");
    EXPECT_EQ(failure.message(), "no\nforged\x1B[2J") << "the caller gets what was thrown";
    EXPECT_THAT(log.text(), HasSubstr("I/O Exception: no\\nforged\\x1b[2J\n"));
}

TEST(Text, CutsWhatIsTooLongBehindAWholeCharacter) {
    EXPECT_EQ(visibleText(std::string(1024, 'x')), std::string(1024, 'x'));
    EXPECT_EQ(visibleText(std::string(1 << 20, 'x')), std::string(1018, 'x') + " [cut]");
    std::string wide(1017, 'x'); // the next character would end one byte too far
    for (int i = 0; i < 8; ++i)
        wide += "\xC3\xA9";
    EXPECT_EQ(visibleText(wide), std::string(1017, 'x') + " [cut]");
    EXPECT_EQ(visibleText(std::string(1016, 'x') + std::string(9, '\n')),
              std::string(1016, 'x') + "\\n [cut]");
}

TEST(Text, CutsAtTheLastLineEnd) {
    EXPECT_EQ(removeNewline("a\r\nb\r\n"), "a\r\nb");
    EXPECT_EQ(removeNewline("a\r\nb\nc"), "a");
    EXPECT_EQ(removeNewline("a\rb\nc\rd"), "a\rb");
    EXPECT_EQ(removeNewline("a\r"), "a");
    EXPECT_EQ(removeNewline(std::wstring(L"a\r\n")), L"a");
}

TEST(Text, SplitsAndJoins) {
    EXPECT_THAT(split("a,,b,", ','), ElementsAre("a", "", "b", ""));
    EXPECT_THAT(split("", ','), ElementsAre(""));
    EXPECT_THAT(split("a,b,c", ',', 2), ElementsAre("a", "b,c"));
    EXPECT_THAT(split("a,b,c", ',', 1), ElementsAre("a,b,c"));
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
    EXPECT_EQ(gcd(0, 0), 0);
    EXPECT_EQ(gcd(INT_MIN, 6), 2);
    EXPECT_EQ(gcd(INT_MIN, 0), INT_MIN) << "2^31 is no int";
}

} // namespace
} // namespace Zentara::Utils
