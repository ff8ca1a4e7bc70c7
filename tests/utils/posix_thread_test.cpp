#include "utils/platform/thread.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <thread>

namespace Zentara::Utils::Platform {
namespace {

TEST(PosixThread, NameIsCutToFifteenBytes) {
    std::string name;
    std::thread([&name] {
        nameCurrentThread("AVDeviceProxyThread");
        std::getline(std::ifstream("/proc/self/task/" + std::to_string(currentThreadId()) + "/comm"), name);
    }).join();
    EXPECT_EQ(name, "AVDeviceProxyTh");
}

} // namespace
} // namespace Zentara::Utils::Platform
