#include "utils/platform/posix/shared_object.h"
#include "utils/platform/thread.h"

#include <gtest/gtest.h>

#include <string>

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

} // namespace
} // namespace Zentara::Utils::Platform
