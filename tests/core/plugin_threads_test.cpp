#include <atomic>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "core/test_root.h"
#include "utils/platform/library_file.h"

using Zentara::Utils::SmartPtr;

namespace {

constexpr int makers = 64;
constexpr int rounds = 20;

/// Objects made, shared and dropped; every other time the object goes after the manager was given back.
void makeObjects(int maker) {
    for (int round = 0; round < rounds; ++round) {
        ManagerHold manager;
        SmartPtr<TestObject> object = manager.create(fixtureGuid(1 + (maker + round) % 2));
        const SmartPtr<TestObject> copy = object;
        if (round % 2 == 0)
            manager.release();
        object.reset();
    }
}

TEST(PluginThreads, ObjectsComeAndGoWhileTheManagerDoes) {
    const TestRoot root("threads");
    const std::string first = root.add("good");
    const std::string second = root.add("other");
    std::atomic<bool> done = false;
    std::thread cycling([&] {
        while (!done)
            ManagerHold();
    });
    std::vector<std::thread> threads;
    for (int maker = 0; maker < makers; ++maker)
        threads.emplace_back(makeObjects, maker);
    for (std::thread& thread : threads)
        thread.join();
    done = true;
    cycling.join();

    EXPECT_FALSE(Zentara::Utils::Platform::isLibraryLoaded(first));
    EXPECT_FALSE(Zentara::Utils::Platform::isLibraryLoaded(second));
}

} // namespace
