#include <zentara/utils/environment_variable.h>

#include <gmock/gmock.h>

#include <zentara/utils/exceptions.h>

namespace Zentara::Utils {
namespace {

class EnvironmentVariableTest : public testing::Test {
protected:
    static constexpr const char* name = "ZENTARA_TEST_VARIABLE";

    EnvironmentVariableTest() { variable.setValue(nullptr); }
    ~EnvironmentVariableTest() override { variable.setValue(nullptr); }

    EnvironmentVariable variable{name};
};

TEST_F(EnvironmentVariableTest, CachesItsValueUntilUpdated) {
    EXPECT_EQ(variable.getValue(), nullptr);
    EXPECT_FALSE(variable.isDefined());
    EnvironmentVariable(name).setValue("\xC3\xBCx");
    EXPECT_EQ(variable.getValue(), nullptr);
    variable.update();
    EXPECT_STREQ(variable.getValue(), "\xC3\xBCx");
    EXPECT_TRUE(variable.isDefined());
    variable.setValue(-12);
    EXPECT_STREQ(variable.getValue(), "-12");
    EXPECT_EQ(EnvironmentVariable(name).getIntValue(), -12);
    for (const char* empty : {"", static_cast<const char*>(nullptr)}) {
        variable.setValue("set");
        variable.setValue(empty);
        EXPECT_EQ(variable.getValue(), nullptr);
        EXPECT_EQ(EnvironmentVariable(name).getValue(), nullptr) << "it is removed";
    }
}

TEST_F(EnvironmentVariableTest, ReadsNumbersOfEveryBaseAndNothingElse) {
    const std::pair<const char*, int> rows[]{{"0x10", 16}, {"010", 8},         {" 10", 10},
                                             {"-3", -3},   {"0xFFFFFFFF", -1}, {"4294967297", 1}};
    for (const auto& [value, number] : rows) {
        variable.setValue(value);
        EXPECT_EQ(variable.getIntValue(), number) << value;
    }
    variable.setValue(nullptr);
    EXPECT_THROW(variable.getIntValue(), EnvironmentVariable::ConversionException);
    for (const char* value : {"12abc", "abc", "1 ", " ", "0x", "08"}) {
        variable.setValue(value);
        EXPECT_THROW(variable.getIntValue(), EnvironmentVariable::ConversionException) << value;
        EXPECT_EQ(variable.getIntValue(5), 5) << value;
    }
}

TEST_F(EnvironmentVariableTest, RefusesNamesThatTheSystemCannotHold) {
    for (const std::string& bad : {std::string(), std::string("A=B"), std::string("A\0B", 3)}) {
        EnvironmentVariable refused(bad);
        EXPECT_THROW(refused.setValue("x"), USystemException) << bad;
        EXPECT_EQ(refused.getValue(), nullptr) << "what was not written is not remembered";
    }
}

} // namespace
} // namespace Zentara::Utils
