#include <gtest/gtest.h>

#include <zentara/depth_configuration.h>
#include <zentara/io/audio_device_interface.h>
#include <zentara/io/audio_device_proxy.h>
#include <zentara/io/device_request.h>
#include <zentara/io/enumerator_interface.h>
#include <zentara/io/uvc_command_request.h>
#include <zentara/io/video_device_interface.h>
#include <zentara/io/video_device_proxy.h>

#include "support/virtual_slots.h"

namespace Testing {
namespace {

using namespace Zentara;
using namespace Zentara::IO;

#define SLOT(type, operation, wanted)                                                                        \
    { #operation, virtualSlot(&type::operation), wanted }

// The destructor takes two slots, here and below.
TEST(SlotsTest, Devices) {
    expectSlots("AVDeviceInterface",
                {SLOT(AVDeviceInterface, dispose, 5), SLOT(AVDeviceInterface, initialize, 6),
                 SLOT(AVDeviceInterface, threadInitialize, 7), SLOT(AVDeviceInterface, threadUninitialize, 8),
                 SLOT(AVDeviceInterface, cancelIO, 9), SLOT(AVDeviceInterface, readBuffer, 10),
                 SLOT(AVDeviceInterface, open, 11), SLOT(AVDeviceInterface, close, 12),
                 SLOT(AVDeviceInterface, disableStreaming, 13)});
    expectSlots("AudioDeviceInterface", {SLOT(AudioDeviceInterface, getDefaultConfiguration, 14),
                                         SLOT(AudioDeviceInterface, enableStreaming, 15),
                                         SLOT(AudioDeviceInterface, setInputMixerLevel, 16),
                                         SLOT(AudioDeviceInterface, setMute, 17)});
    EXPECT_EQ(18, virtualSlotCount<AudioDeviceInterface>());
    using Bulk = void (VideoDeviceInterface::*)(writeBulkTransferRequest*);
    using Control = void (VideoDeviceInterface::*)(writeControlTransferRequest*);
    expectSlots("VideoDeviceInterface",
                {SLOT(VideoDeviceInterface, getCameraControlRanges, 14),
                 SLOT(VideoDeviceInterface, getConfigurations, 15),
                 SLOT(VideoDeviceInterface, enableColorStreaming, 16),
                 SLOT(VideoDeviceInterface, enableDepthStreaming, 17),
                 SLOT(VideoDeviceInterface, setCameraControl, 18),
                 SLOT(VideoDeviceInterface, send, 19),
                 SLOT(VideoDeviceInterface, recv, 20),
                 SLOT(VideoDeviceInterface, len, 21),
                 SLOT(VideoDeviceInterface, xuSetup, 22),
                 SLOT(VideoDeviceInterface, read, 23),
                 {"write bulk", virtualSlot(static_cast<Bulk>(&VideoDeviceInterface::write)), 24},
                 {"write control", virtualSlot(static_cast<Control>(&VideoDeviceInterface::write)), 25},
                 SLOT(VideoDeviceInterface, pauseStreaming, 26),
                 SLOT(VideoDeviceInterface, resumeStreaming, 27),
                 SLOT(VideoDeviceInterface, setRegionOfInterest, 28),
                 SLOT(VideoDeviceInterface, setOutputFormat, 29)});
    EXPECT_EQ(30, virtualSlotCount<VideoDeviceInterface>());
}

TEST(SlotsTest, Enumerator) {
    expectSlots("EnumeratorInterface",
                {SLOT(EnumeratorInterface, initialize, 5), SLOT(EnumeratorInterface, dispose, 6),
                 SLOT(EnumeratorInterface, execute, 7), SLOT(EnumeratorInterface, enumerate, 8),
                 SLOT(EnumeratorInterface, isPresent, 9), SLOT(EnumeratorInterface, getBackendName, 10),
                 SLOT(EnumeratorInterface, exit, 11)});
    EXPECT_EQ(12, virtualSlotCount<EnumeratorInterface>());
}

TEST(SlotsTest, Proxies) {
    struct Open : VideoDeviceProxy {
        using AVDeviceProxy::dispose;
    };
    expectSlots("AVDeviceProxy",
                {SLOT(AVDeviceProxy, threadInitialize, 2), SLOT(AVDeviceProxy, threadUninitialize, 3),
                 SLOT(AVDeviceProxy, readBuffer, 4), SLOT(AVDeviceProxy, open, 5),
                 SLOT(AVDeviceProxy, close, 6), SLOT(AVDeviceProxy, disableStreaming, 7),
                 SLOT(Open, dispose, 8)});
    expectSlots("VideoDeviceProxy", {SLOT(VideoDeviceProxy, setOutputFormat, 9)});
    EXPECT_EQ(10, virtualSlotCount<VideoDeviceProxy>());
    EXPECT_EQ(9, virtualSlotCount<AudioDeviceProxy>());
}

TEST(SlotsTest, RequestsAndConfigurations) {
    EXPECT_EQ(4, virtualSlotCount<deviceRequest>());
    expectSlots("xuRequest", {SLOT(xuRequest, clone, 4)});
    EXPECT_EQ(5, virtualSlotCount<UVCCommandRequest>());
    expectSlots("DepthBaseConfiguration", {SLOT(DepthBaseConfiguration, isEqual, 4)});
    EXPECT_EQ(5, virtualSlotCount<DepthConfiguration>());
}

} // namespace
} // namespace Testing
