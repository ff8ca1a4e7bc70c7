#include "support/program.h"

#include <zentara/utils/shared_memory.h>
#include <zentara/utils/shared_memory_manager.h>

#include "utils/platform/files.h"
#include "utils/platform/thread.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <new>

namespace Zentara::Utils {
namespace {

/// Memory under a name that no other test, and no other run, uses.
class SharedMemoryTest : public testing::Test {
protected:
    ~SharedMemoryTest() override { memory().releaseAll(true); }

    static SharedMemory& memory() { return *SharedMemory::getSharedMemory(); }

    int* map(unsigned int index = 0, unsigned int size = 4096, bool writable = true) {
        return static_cast<int*>(memory().getPtr(name, index, size, writable));
    }

    /// The other process expects `before`, leaves `after` and ends without cleaning up, or with it.
    int exchangeElsewhere(int before, int after, const std::string& how = "die", unsigned int size = 4096,
                          const std::string& suffix = "") {
        return Tests::runProgram("utils_peer", "memory " + name + suffix + " " + std::to_string(size) + " " +
                                                   std::to_string(before) + " " + std::to_string(after) +
                                                   " " + how);
    }

    const std::string name = SharedMemoryManager::getName(SharedMemoryManager::getUniqueID());
};

TEST_F(SharedMemoryTest, SlotsAreSeparateAndKeepWhatTheyHold) {
    int* first = map(0);
    int* last = map(127);
    EXPECT_EQ(*first, 0);
    *first = 1;
    *last = 2;
    EXPECT_EQ(*map(0), 1);
    EXPECT_EQ(map(0, 1 << 30, false), first) << "a filled slot ignores size and access";
    memory().releasePtr(name, 0, false);
    EXPECT_EQ(*map(0), 0) << "went with its last user";
    EXPECT_EQ(*map(127), 2);
    memory().releaseAll(name, false);
    EXPECT_EQ(*map(127), 0);
    std::string usual = memory().getBaseName();
    EXPECT_EQ(usual, "/ZentaraSDK_");
    std::string other = "/ZentaraTest_"; // names under another base are others
    *map(0) = 5;
    memory().setBaseName(other);
    EXPECT_EQ(*map(1), 0);
    memory().setBaseName(usual);
    EXPECT_EQ(*map(0), 5);
}

TEST_F(SharedMemoryTest, RefusalsAreOutOfMemory) {
    EXPECT_THROW(map(128), std::bad_alloc);
    EXPECT_THROW(map(0, 0), std::bad_alloc);
    for (const std::string& bad : {std::string("a/b"), std::string("a\\b"), std::string("a\0b", 3)})
        EXPECT_THROW(memory().getPtr(bad, 0, 64, true), std::bad_alloc) << bad;
    memory().releasePtr(name, 200, false);
    memory().releasePtr("never mapped", 0, false);
    memory().releaseAll("never mapped", false);
    EXPECT_EQ(*map(0), 0);
}

TEST_F(SharedMemoryTest, TwoProcessesShareIt) {
    int* cell = map();
    *cell = 10;
    EXPECT_EQ(exchangeElsewhere(10, 11, "leave"), 0);
    EXPECT_EQ(*cell, 11);
    EXPECT_EQ(exchangeElsewhere(11, 12, "die"), 0);
    EXPECT_EQ(*cell, 12) << "a killed user takes nothing along";
    EXPECT_EQ(exchangeElsewhere(12, 13, "leave"), 0);
    EXPECT_EQ(*cell, 13) << "and the last but one does not either";
    EXPECT_EQ(exchangeElsewhere(13, 14, "leave", 1 << 20), 2) << "memory never grows";
    memory().releasePtr(name, 0, false);
    const int* readOnly = map(0, 4096, false);
    EXPECT_EQ(exchangeElsewhere(0, 15, "leave"), 0) << "went with its last user";
    EXPECT_EQ(*readOnly, 15);
}

TEST_F(SharedMemoryTest, AReturnFromMainGivesItBack) {
    EXPECT_EQ(exchangeElsewhere(0, 20, "return"), 0);
    EXPECT_FALSE(Tests::isNameLeft(name));
    *map() = 21;
    EXPECT_EQ(exchangeElsewhere(21, 22, "return"), 0);
    EXPECT_EQ(exchangeElsewhere(22, 23, "return"), 0) << "not from whoever else has it";
}

TEST_F(SharedMemoryTest, WhatAKilledProcessLeftIsReplacedOrSweptAway) {
    const bool namesAreFiles = !Platform::isSeparator('\\');
    EXPECT_EQ(exchangeElsewhere(0, 20, "die", 64), 0);
    EXPECT_EQ(*map(0, 1 << 20), 0);
    exchangeElsewhere(0, 21, "kill", 64, "killed");
    EXPECT_EQ(Tests::isNameLeft(name + "killed"), namesAreFiles);
    const std::string foreign = "/dev/shm/ZentaraSDK_" + name + "_notes";
    std::ofstream(foreign) << "not ours";
    // The first mapping of a process looks what nobody holds; this one is held here.
    EXPECT_EQ(exchangeElsewhere(0, 22, "leave"), 0);
    EXPECT_FALSE(Tests::isNameLeft(name + "killed"));
    EXPECT_EQ(*map(), 22);
    const bool kept = Tests::isNameLeft(name + "_notes");
    EXPECT_EQ(std::filesystem::remove(foreign), kept);
}

TEST_F(SharedMemoryTest, ManagerCountsAndNames) {
    const auto first = SharedMemoryManager::getUniqueID();
    EXPECT_EQ(SharedMemoryManager::getUniqueID(), first + 1);
    EXPECT_EQ(first >> 32, Platform::currentProcessId());
    EXPECT_EQ(Tests::runProgram("utils_peer", "identifiers"), 12) << "each process counts from 1";
    EXPECT_EQ(SharedMemoryManager::getName(12884901889), "12884901889");

    SharedMemoryManager::initialize(true);
    SharedMemoryManager::incref();
    auto* cell = static_cast<int*>(SharedMemoryManager::get(name, 3, 64));
    *cell = 40;
    SharedMemoryManager::decref();
    EXPECT_EQ(*static_cast<int*>(SharedMemoryManager::get(name, 3, 64)), 40);
    SharedMemoryManager::decref();
    EXPECT_EQ(*static_cast<int*>(SharedMemoryManager::get(name, 3, 64)), 0) << "the last count releases";
    *static_cast<int*>(SharedMemoryManager::get(name, 3, 64)) = 41;
    SharedMemoryManager::release(name);
    EXPECT_EQ(*static_cast<int*>(SharedMemoryManager::get(name, 3, 64)), 0);
    SharedMemory::release();
    EXPECT_EQ(*static_cast<int*>(SharedMemoryManager::get(name, 3, 64)), 0) << "obtains a new table";
}

} // namespace
} // namespace Zentara::Utils
