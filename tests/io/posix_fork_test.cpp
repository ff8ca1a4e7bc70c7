#include <gtest/gtest.h>

#include "io/script.h"
#include "support/failure.h"

namespace Testing {
namespace {

using namespace Zentara;

/// Runs code in a child of fork, which has this process's worker but not its thread. True when all went well there.
void expectInChild(const std::function<bool()>& code) {
    testing::GTEST_FLAG(death_test_style) = "fast";
    EXPECT_EXIT(std::_Exit(code() ? 0 : 1), testing::ExitedWithCode(0), "");
}

template<typename Operation>
bool isRefused(Operation operation) {
    return TestSupport::messageOf<Plugin::InvalidOperationPluginException>(operation) != "nothing was thrown";
}

// Nobody waits there for a thread that did not come along, and nothing of the parent's is touched.
TEST_F(DeviceTest, AChildOfForkIsRefusedAndEndsAtOnceOrMakesAWorkerOfItsOwn) {
    expectInChild([] {
        VideoProxy proxy(VIDEO_DEVICE, true);
        proxy.open();
        return true;
    });
    std::optional<VideoProxy> proxy(std::in_place, VIDEO_DEVICE, true);
    Worker worker;
    expectInChild([&] {
        script.takeCalls();
        const bool refused = isRefused([&] { proxy->open(); }) && isRefused([&] { worker.exit(); }) &&
                             isRefused([] { VideoProxy another(VIDEO_DEVICE, true); });
        proxy->dispose();
        worker.detach()->release();
        return refused && script.takeCalls().empty() && script.livingDevices() == 1;
    });
    EXPECT_NO_THROW(proxy->open());
}

} // namespace
} // namespace Testing
