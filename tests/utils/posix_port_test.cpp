#include "utils/platform/posix/shared_object.h"
#include "utils/platform/thread.h"

#include <zentara/utils/shared_memory.h>
#include <zentara/utils/wave_writer.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>

namespace Zentara::Utils::Platform {
namespace {

// Somebody who stops in the gate, in another process perhaps, must not hold up the others for ever.
TEST(PosixSharedObject, ABlockedGateIsGivenUp) {
    const std::string name = "/zentara_test_gate_" + std::to_string(currentProcessId());
    SharedObject first;
    ASSERT_TRUE(first.open(name));
    EXPECT_FALSE(SharedObject().open(name, 20));
    first.openGate();
    SharedObject second;
    ASSERT_TRUE(second.open(name, 20));
    EXPECT_TRUE(second.wasInUse());
    second.openGate();
}

// A child of fork has its parent's locks as they happened to be, and none of the threads that hold them.
TEST(PosixSharedObject, AChildOfForkEndsWhileItsParentMaps) {
    testing::GTEST_FLAG(death_test_style) = "fast";
    SharedMemory& memory = *SharedMemory::getSharedMemory();
    const std::string name = "fork" + std::to_string(currentProcessId());
    std::atomic<bool> stop{false};
    std::thread busy([&] {
        for (; !stop; memory.releaseAll(name, false))
            memory.getPtr(name, 0, 64, true);
    });
    for (int i = 0; i < 5; ++i)
        EXPECT_EXIT(std::exit(0), testing::ExitedWithCode(0), "");
    stop = true;
    busy.join();
}

TEST(PosixThread, NameIsCutToFifteenBytes) {
    std::string name;
    std::thread([&name] {
        nameCurrentThread("AVDeviceProxyThread");
        std::getline(std::ifstream("/proc/self/task/" + std::to_string(currentThreadId()) + "/comm"), name);
    }).join();
    EXPECT_EQ(name, "AVDeviceProxyTh");
}

TEST(PosixWaveWriter, AFullDiskIsToldWhenTheFileIsClosed) {
    WaveWriter writer;
    ASSERT_EQ(writer.open("/dev/full"), 0);
    EXPECT_EQ(writer.write("abcd", 4), 0);
    EXPECT_EQ(writer.close(), 3);
    EXPECT_FALSE(writer.isOpen());
}

} // namespace
} // namespace Zentara::Utils::Platform
