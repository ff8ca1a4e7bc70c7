#include <zentara/utils/format.h>

#include <cstdint>
#include <iomanip>
#include <locale>

#include <gmock/gmock.h>

#include <zentara/utils/exceptions.h>

#include "support/failure.h"

namespace Zentara::Utils {
namespace {

enum Plain { PlainSeven = 7 };
enum class Scoped { One = 1 };

struct Point {
    int x;
    friend std::ostream& operator<<(std::ostream& stream, const Point& point) {
        return stream << '<' << std::setw(2) << point.x << '>';
    }
};

template<typename T>
concept Formattable = requires(Format& format, const T& value) {
    format % value;
};

static_assert(Formattable<Plain> && Formattable<Point> && Formattable<std::size_t>);
static_assert(!Formattable<Scoped> && !Formattable<wchar_t> && !Formattable<char8_t> &&
              !Formattable<char16_t> && !Formattable<char32_t> && !Formattable<const wchar_t*> &&
              !Formattable<std::wstring>);

template<typename... Values>
std::string text(const char* format, const Values&... values) {
    Format formatted(format);
    (void)(formatted % ... % values);
    return formatted;
}

/// The same through a stream, which a first value of a streamed type opens.
template<typename... Values>
std::string streamed(const char* format, const Values&... values) {
    return text((std::string("% ") + format).c_str(), Point{0}, values...).substr(5);
}

template<typename... Values>
void expectText(const std::string& expected, const char* format, const Values&... values) {
    EXPECT_EQ(text(format, values...), expected) << format;
    EXPECT_EQ(streamed(format, values...), expected) << format << " through a stream";
}

void expectEveryText() {
    expectText("", "");
    expectText("plain", "plain");
    expectText("100%", "100%%");
    expectText("%7", "%%%", 7);
    expectText("x", "%{}", 'x');
    expectText("affb", "a%{:x}b", 255);
    expectText("0000BEEF", "%{:X8}", 0xBEEF);
    expectText("ff 255", "%{:x} %", 255, 255);
    expectText("00000042 42", "%{:08} %", 42, 42);
    expectText("5", "%{:0}", 5);
    expectText("00-5", "%{:4}", -5);
    expectText("0042 00000042", "%{:+4} %{: 8}", 42, 42);
    expectText("123456", "%{:4}", 123456);

    // Each value in its own type.
    expectText("ffff", "%{:x}", static_cast<short>(-1));
    expectText("ffffffff", "%{:x}", -1);
    expectText("ffffffffffffffff", "%{:x}", static_cast<std::int64_t>(-1));
    expectText("ffffffffffffffff", "%{:x}", static_cast<std::uint64_t>(-1));
    expectText("FFFFFFFFFFFFFFFF", "%{:X}", std::numeric_limits<std::size_t>::max());
    expectText(sizeof(long) == 4 ? "ffffffff" : "ffffffffffffffff", "%{:x}", -1L);
    expectText("-32768 65535", "% %", std::numeric_limits<short>::min(), static_cast<unsigned short>(65535));
    expectText("-9223372036854775808 18446744073709551615", "% %", std::numeric_limits<long long>::min(),
               std::numeric_limits<unsigned long long>::max());

    // Bytes are characters, padded, with the code of no effect.
    expectText("A000B", "%{}%{:x4}", static_cast<unsigned char>(65), static_cast<signed char>(66));

    expectText("true false", "% %", true, false);
    expectText("7", "%", PlainSeven);
    expectText("1.23457e+06 0.1 1e-05", "% % %", 1234567.0, 0.1f, 0.00001);
    expectText("1e+06 999999 -0 1e+100", "% % % %", 999999.5, 999999.4, -0.0, 1e100);
    expectText("0.0001 9.99999e-05 0.0001", "% % %", 1e-4, 9.99999e-5, 9.9999995e-5);
    expectText("inf", "%", std::numeric_limits<double>::infinity());
    expectText("[< 9>]", "[%]", Point{9});
    expectText("0042 < 9>", "%{:4} %", 42, Point{9}); // the fill character is back
    expectText("[]", "[%]", static_cast<const char*>(nullptr));
    expectText("[]", "[%]", static_cast<char*>(nullptr));
    expectText("[]", "[%]", static_cast<const unsigned char*>(nullptr));
    expectText("50% {} %s", "%", "50% {} %s");
    expectText(std::string("a\0b", 3), "%", std::string("a\0b", 3));
}

TEST(Format, PrintsEachValueInItsPlace) { expectEveryText(); }

TEST(Format, IgnoresTheGlobalLocale) {
    struct Grouping : std::numpunct<char> {
        char do_thousands_sep() const override { return '\''; }
        std::string do_grouping() const override { return "\3"; }
        char do_decimal_point() const override { return ','; }
        std::string do_truename() const override { return "yes"; }
    };
    struct Restorer {
        ~Restorer() { std::locale::global(saved); }
        const std::locale saved;
    };
    const Restorer restorer{std::locale::global(std::locale(std::locale::classic(), new Grouping))};
    expectEveryText();
}

TEST(Format, LeavesMarksOfAStreamedValueOnLaterOnes) {
    EXPECT_EQ(text("% %", std::hex, 255), " ff");
    EXPECT_EQ(text("% % %", std::showbase, std::hex, 255), "  0xff");
}

TEST(Format, RejectsMalformedStrings) {
    const std::pair<const char*, const char*> rows[]{
        {"%{:x", "unterminated format item"},
        {"%{", "unterminated format item"},
        {"%{x}", "invalid format item \"x\": \":\" expected"},
        {"%{:}", "invalid format item \":\": format code or width expected after \":\""},
        {"%{:-2}", "invalid format item \":-2\": negative width"},
        {"%{:x-1}", "invalid format item \":x-1\": negative width"},
        {"%{:4a}", "invalid format item \":4a\": invalid width \"4a\""},
        {"%{:%}", "invalid format item \":%\": invalid width \"%\""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(TestSupport::messageOf<UFormatException>([&row] { Format rejected(row.first); }),
                  row.second)
            << row.first;
}

TEST(Format, RejectsValuesThatDoNotFit) {
    const auto refusal = [](auto use) { return TestSupport::messageOf<UFormatException>(use); };
    const auto onlyFor = [](const std::string& what) { return what + " for integer arguments"; };
    const std::string width = onlyFor("the format width can only be specified");
    EXPECT_EQ(refusal([] { Format("%") % 1 % 2; }), "too many format arguments");
    EXPECT_EQ(refusal([] { Format("none") % 1; }), "too many format arguments");
    EXPECT_EQ(refusal([] { text("% %", 1); }), "not enough format arguments");
    EXPECT_EQ(refusal([] { Format("%{:x}") % 1.5; }), onlyFor("format code \"x\" is only valid"));
    EXPECT_EQ(refusal([] { Format("%{:X4}") % true; }), onlyFor("format code \"X\" is only valid"));
    EXPECT_EQ(refusal([] { Format("%{:4}") % "text"; }), width);
    EXPECT_EQ(refusal([] { Format("%{:4}") % Point{1}; }), width);
}

TEST(Format, RepeatsItsTextInASecondConversion) {
    Format formatted("a%c");
    formatted % 1;
    EXPECT_EQ(static_cast<std::string>(formatted), "a1c");
    formatted % 2;
    EXPECT_EQ(static_cast<std::string>(formatted), "a1ca2c");
}

} // namespace
} // namespace Zentara::Utils
