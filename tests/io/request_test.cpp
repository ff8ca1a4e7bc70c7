#include <gmock/gmock.h>

#include <zentara/audio_configuration.h>
#include <zentara/color_configuration.h>
#include <zentara/depth_base_configuration.h>
#include <zentara/io/audio_requests.h>
#include <zentara/io/camera_control_requests.h>
#include <zentara/io/streaming_requests.h>
#include <zentara/io/thread_requests.h>
#include <zentara/io/transfer_requests.h>
#include <zentara/io/xu_device_requests.h>
#include <zentara/utils/smart_ptr.h>

#include "io/script.h"

namespace Testing {
namespace {

using namespace Zentara;
using namespace Zentara::IO;
using Utils::makeRefcounted;

TEST(RequestTypeTest, NamesAreKeptInTheirMixedCase) {
    EXPECT_STREQ("RequestType_NONE", RequestType_toString(RequestType_NONE));
    EXPECT_STREQ("RequestType_XUSEND", RequestType_toString(RequestType_XUSEND));
    EXPECT_STREQ("RequestType_GET_AUDIO_DEFAULT_CONFIGURATION",
                 RequestType_toString(RequestType_GET_AUDIO_DEFAULT_CONFIGURATION));
    EXPECT_STREQ("RequestType_ReadControlTransfer", RequestType_toString(RequestType(18)));
    EXPECT_STREQ("RequestType_OutputFormat", RequestType_toString(RequestType(24)));
    EXPECT_STREQ("RequestType_XUSETUP", RequestType_toString(RequestType(25)));
    for (const int unknown : {26, 99, -1})
        EXPECT_STREQ("RequestType_UNKNOWN", RequestType_toString(RequestType(unknown)));
}

TEST(DeviceRequestTest, EachClassCarriesItsType) {
    CameraControlRanges ranges;
    std::vector<Utils::SmartPtr<ColorConfiguration>> modes;
    const std::pair<int, deviceRequest*> requests[] = {
        {1, new threadInitializeRequest(nullptr)},
        {2, new threadUninitializeRequest(nullptr)},
        {3, new xuSendRequest(nullptr, 0, 0, 0, nullptr)},
        {4, new xuRecvRequest(nullptr, 0, 0, 0, nullptr, false)},
        {7, new enableDepthRequest(nullptr, nullptr)},
        {8, new enableColorRequest(nullptr, nullptr, {})},
        {9, new enableAudioRequest(nullptr, nullptr, 0, false)},
        {10, new disableRequest(nullptr, false)},
        {11, new setCameraControlRequest(nullptr, CameraControl_GAIN, {})},
        {12, new getCameraControlRangesRequest(nullptr, ranges)},
        {13, new getColorConfigurationsRequest(nullptr, modes)},
        {14, new getAudioDefaultConfigurationsRequest(nullptr, nullptr)},
        {15, new xuLenRequest(nullptr, 0, 0, nullptr)},
        {16, new setAudioLevelRequest(nullptr, 0)},
        {17, new setAudioMuteRequest(nullptr, false)},
        {18, new readControlTransferRequest(nullptr, 0, 0, 0, nullptr, 0)},
        {19, new writeControlTransferRequest(nullptr, 0, 0, 0, nullptr, 0)},
        {20, new writeBulkTransferRequest(nullptr, 0, nullptr, 0)},
        {21, new pauseStreamingRequest(nullptr)},
        {22, new resumeStreamingRequest(nullptr)},
        {23, new setDeviceRegionOfInterestRequest(nullptr, {})},
        {24, new setOutputFormatRequest(nullptr, setOutputFormatRequest::OutputFormat_DEPTH)},
        {25, new xuSetupRequest(nullptr, VIDEO_DEVICE)},
        {5, new xuProxyRequest(nullptr, RequestType_OPEN, 0, 0, 0, nullptr)},
    };
    for (const auto& [type, request] : requests) {
        EXPECT_EQ(type, request->type());
        EXPECT_EQ(nullptr, request->device());
        EXPECT_TRUE(request->decrefIfLastRef());
    }
}

TEST(DeviceRequestTest, TheTimeoutRunsFromTheStart) {
    const auto request = makeRefcounted<deviceRequest>(nullptr, RequestType_NONE);
    request->ackStartOfIO();
    EXPECT_EQ(-1, request->waitAck(0));
    request->ackStartOfIO();
    request->ack();
    EXPECT_EQ(0, request->waitAck(0));
    request->ack();
    request->waitAck();
}

TEST(DeviceRequestTest, CancellingWithoutATransferOnlyMarks) {
    const auto request = makeRefcounted<deviceRequest>(nullptr, RequestType_NONE);
    EXPECT_FALSE(request->getCancelled());
    EXPECT_FALSE(request->cancelIO());
    EXPECT_TRUE(request->getCancelled());
    request->setCancelled(false);
    request->setIOPending(true);
    EXPECT_TRUE(request->getIOPending());
    EXPECT_FALSE(request->cancelIO()) << "without a device";
    EXPECT_TRUE(request->getCancelled());
    // Devices lock it around their own updates.
    request->lock();
    EXPECT_FALSE(request->cancelIO());
    request->unlock();
}

TEST(DeviceRequestTest, AFailureIsKept) {
    const auto request = makeRefcounted<deviceRequest>(nullptr, RequestType_NONE);
    EXPECT_FALSE(request->failed());
    request->setFailure(Plugin::PluginExceptionType(42), "odd");
    EXPECT_TRUE(request->failed());
    EXPECT_EQ(42, request->getFailure().type);
    EXPECT_EQ("odd", request->getFailure().message);
}

} // namespace
} // namespace Testing
