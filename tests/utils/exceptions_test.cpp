#include <zentara/utils/exceptions.h>

#include <gmock/gmock.h>

#include <zentara/utils/dynamic_library.h>
#include <zentara/utils/files.h>

#include "support/failure.h"

namespace Zentara::Utils {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

TEST(UException, IsTheRootOfEveryKind) {
    const auto message = [](const auto& thrown) {
        return TestSupport::messageOf<UException>([&] { throw thrown; });
    };
    EXPECT_EQ(message(USystemException("a")) + message(UIOException("b")), "ab");
    EXPECT_EQ(message(UInvalidOperationException("c")) + message(UFormatException("d")), "cd");
    EXPECT_EQ(message(UNullMessageException()), "NULL message received");
    static_assert(std::is_base_of_v<std::exception, UException>);
}

TEST(ErrorText, NumbersErrorsInThirtyTwoBits) {
    const std::string text = formatError(2, "cannot open");
    EXPECT_THAT(text, testing::MatchesRegex("cannot open \\(error 0x2: .+\\)"));
    EXPECT_THAT(text, Not(HasSubstr("\n")));
    EXPECT_EQ(USystemException(2, "cannot open").message(), text);
    EXPECT_EQ(formatError(0x3FFFFFF7, "x"), "x (error 0x3ffffff7)");
    EXPECT_EQ(formatError(-9, "x"), "x (error 0xfffffff7)");
}

TEST(ErrorText, TellsWhyALibraryWasRefusedUntilTheNextFailure) {
    EXPECT_EQ(loadSharedLibrary("no-such-library-7313.dll", 2), nullptr);
    const std::string refused = getLastError();
    EXPECT_FALSE(refused.empty());
    EXPECT_EQ(getLastError(), refused);
    EXPECT_THROW(writeFile("no/such/directory/at-all", ""), UIOException);
    EXPECT_NE(getLastError(), refused);
    const std::string failed = formatLastError("cannot open device");
    EXPECT_THAT(failed, StartsWith("cannot open device ("));
    EXPECT_THAT(failed, Not(HasSubstr("\n")));
    EXPECT_THAT(formatLastWSAError("cannot connect"), StartsWith("cannot connect ("));
}

} // namespace
} // namespace Zentara::Utils
