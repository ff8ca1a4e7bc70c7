#include "support/program.h"
#include "utils/platform/environment.h"
#include "utils/platform/error_text.h"
#include "utils/platform/shared_memory.h"
#include "utils/platform/single_instance.h"
#include "utils/platform/thread.h"

#include <gtest/gtest.h>

namespace Zentara::Utils::Platform {
namespace {

constexpr std::uint32_t invalidParameter = 87;

TEST(WindowsEnvironment, RefusalsTellTheirOwnError) {
    const std::string tooLong(32767, 'x');
    const std::pair<std::string, std::string> refused[] = {
        {"", "x"}, {"A=B", "x"}, {std::string("A\0B", 3), "x"}, {"ZENTARA_TEST", tooLong}, {tooLong, "x"}};
    for (const auto& [name, value] : refused) {
        setLastError(5);
        EXPECT_FALSE(writeEnvironment(name, value));
        EXPECT_EQ(lastError(), invalidParameter);
    }
    EXPECT_TRUE(writeEnvironment("ZENTARA_TEST", std::string(32766 - 13, 'x')));
    EXPECT_TRUE(writeEnvironment("ZENTARA_TEST", ""));
}

// Something of another kind has the name: nobody can hold it, so nobody does.
TEST(WindowsSingleInstance, ANameOfAnotherKindIsNotHeld) {
    const std::string name = "zentara_test_" + std::to_string(currentProcessId());
    const Owned<SharedMapping> mapping(SharedMapping::create(name, 64, true));
    ASSERT_TRUE(mapping);
    bool existed = true;
    EXPECT_EQ(SingleInstance::create(name.c_str(), existed), nullptr);
    EXPECT_FALSE(existed);
}

TEST(WindowsSharedMapping, NamesMayChooseTheirNamespace) {
    const std::string name = "zentara_test_" + std::to_string(currentProcessId());
    const auto open = [](const std::string& fullName) {
        return Owned<SharedMapping>(SharedMapping::create(fullName, 64, true));
    };
    for (const char* prefix : {"Global\\", "Local\\", "Local\\/"}) {
        const auto first = open(prefix + name);
        const auto second = open(prefix + name);
        ASSERT_TRUE(first && second) << prefix;
        *static_cast<int*>(first->address()) = 7;
        EXPECT_EQ(*static_cast<int*>(second->address()), 7) << prefix;
    }
    for (const char* refused : {"Global\\", "Local\\a\\b", "Other\\a", "Global\\\\a", "Global\\a/b"})
        EXPECT_FALSE(open(refused)) << refused;
}

// Its threads have gone, and with them whoever might have woken this one.
TEST(WindowsWord, AnEndingProcessWaitsForNobody) {
    EXPECT_EQ(Tests::runProgram("utils_peer", "sleep \"" ZENTARA_TEST_LIBRARY "\""), int(0xC000004B));
}

} // namespace
} // namespace Zentara::Utils::Platform
