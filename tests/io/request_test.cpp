#include <gmock/gmock.h>

#include <zentara/io/device_request.h>
#include <zentara/utils/smart_ptr.h>

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

} // namespace
} // namespace Testing
