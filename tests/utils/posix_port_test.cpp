#include "support/temporary_directory.h"
#include "utils/platform/files.h"
#include "utils/platform/new_file.h"
#include "utils/platform/part_name.h"
#include "utils/platform/posix/shared_object.h"
#include "utils/platform/thread.h"

#include <zentara/utils/shared_memory.h>
#include <zentara/utils/wave_writer.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
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
    const std::string name = "fork" + std::to_string(currentThreadId());
    std::atomic<bool> stop{false};
    std::thread busy([&] {
        for (; !stop; memory.releaseAll(name, false))
            memory.getPtr(name, 0, 64, true);
    });
    for (int i = 0; i < 5; ++i)
        EXPECT_EXIT(std::exit(currentThreadId() == currentProcessId() ? 0 : 1), testing::ExitedWithCode(0),
                    "");
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

/// Numbers that the system's source of chance gives first, in this program.
std::vector<unsigned> foreseen;

// Somebody who can tell the name before, and has put a link or a file of his own there.
TEST(PosixNewFile, TakesNoNameThatIsThere) {
    namespace fs = std::filesystem;
    const TestSupport::TemporaryDirectory directory;
    const std::string name = directory.path("image");
    const std::string victim = directory.path("victim");
    std::ofstream(victim) << "precious";
    fs::create_symlink(victim, PartName::make(name, 1, 1));
    fs::create_symlink(directory.path("nowhere"), PartName::make(name, 2, 2));
    fs::copy_file(victim, PartName::make(name, 3, 3));
    foreseen = {3, 3, 2, 2, 1, 1};
    Owned<NewFile> file(NewFile::create(name, {}));
    ASSERT_TRUE(file && file->append("new", 3) && file->take(name, false, 0));
    EXPECT_TRUE(foreseen.empty());
    std::string kept;
    std::getline(std::ifstream(victim), kept);
    EXPECT_EQ(kept, "precious");
    EXPECT_TRUE(fs::is_symlink(PartName::make(name, 1, 1)));
    EXPECT_FALSE(fs::exists(directory.path("nowhere")));
    EXPECT_EQ(fs::file_size(PartName::make(name, 3, 3)), 8U);
    EXPECT_FALSE(fs::is_symlink(name));
}

} // namespace
} // namespace Zentara::Utils::Platform

// In the place of the standard library's own.
std::random_device::result_type std::random_device::_M_getval() {
    auto& next = Zentara::Utils::Platform::foreseen;
    static unsigned count = static_cast<unsigned>(Zentara::Utils::Platform::currentProcessId()) << 12;
    if (next.empty())
        return ++count;
    const unsigned number = next.back();
    next.pop_back();
    return number;
}
