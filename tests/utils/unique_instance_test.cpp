#include "support/program.h"

#include <zentara/utils/shared_memory_manager.h>
#include <zentara/utils/unique_instance.h>

#include <gtest/gtest.h>

namespace Zentara::Utils {
namespace {

class UniqueInstanceTest : public testing::Test {
protected:
    std::unique_ptr<UniqueInstance> take() { return std::make_unique<UniqueInstance>(name.c_str()); }

    bool isHeldForAnotherProcess(const std::string& how = "die") {
        const int code = Tests::runProgram("utils_peer", "instance " + name + " " + how);
        EXPECT_TRUE(code == 0 || code == 1) << code;
        return code == 0;
    }

    const std::string name = "zentara.test." + std::to_string(SharedMemoryManager::getUniqueID());
};

TEST_F(UniqueInstanceTest, HoldsWithinOneProcess) {
    auto first = take();
    EXPECT_FALSE(first->isAnotherInstanceRunning());
    auto second = take();
    EXPECT_TRUE(second->isAnotherInstanceRunning());
    EXPECT_FALSE(first->isAnotherInstanceRunning());
    first.reset();
    EXPECT_TRUE(take()->isAnotherInstanceRunning()) << "the name is held while any handle lives";
    second.reset();
    EXPECT_FALSE(take()->isAnotherInstanceRunning());
}

TEST_F(UniqueInstanceTest, HoldsBetweenProcessesAndEndsWithAKilledOne) {
    EXPECT_FALSE(isHeldForAnotherProcess());
    EXPECT_FALSE(isHeldForAnotherProcess()) << "the first one ended without cleaning up";
    EXPECT_EQ(Tests::runProgram("utils_peer", "instance " + name + ".other leave"), 1);
    EXPECT_FALSE(Tests::isNameLeft(name)) << "the next process has swept";
    auto instance = take();
    EXPECT_FALSE(instance->isAnotherInstanceRunning());
    EXPECT_TRUE(isHeldForAnotherProcess());
    EXPECT_TRUE(isHeldForAnotherProcess());
    instance.reset();
    EXPECT_FALSE(isHeldForAnotherProcess("leave"));
}

TEST(UniqueInstance, OnlyAnExistingNameMeansAnotherInstance) {
    for (const char* name : {"", static_cast<const char*>(nullptr)}) {
        const UniqueInstance first(name);
        const UniqueInstance second(name);
        EXPECT_FALSE(second.isAnotherInstanceRunning());
    }
    const UniqueInstance odd("zentara test: \xC3\xA4\xF0\x9F\x93\xB7/..");
    const UniqueInstance sameOdd("zentara test: \xC3\xA4\xF0\x9F\x93\xB7/..");
    EXPECT_FALSE(odd.isAnotherInstanceRunning());
    EXPECT_TRUE(sameOdd.isAnotherInstanceRunning());
    // Longer than the name of a file, in the form that a file's name has.
    for (const int letters : {27, 90, 3000}) {
        std::string text;
        for (int i = 0; i < letters; ++i)
            text += "\xE6\xA9\x9F";
        const UniqueInstance lengthy(text.c_str());
        const UniqueInstance another((text + "1").c_str());
        const UniqueInstance same(text.c_str());
        EXPECT_FALSE(lengthy.isAnotherInstanceRunning() || another.isAnotherInstanceRunning()) << letters;
        EXPECT_TRUE(same.isAnotherInstanceRunning()) << letters;
    }
}

} // namespace
} // namespace Zentara::Utils
