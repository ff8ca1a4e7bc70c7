// What each chip does with each kind of extension-unit request.
#include <gmock/gmock.h>

#include <zentara/io/gpio_requests.h>
#include <zentara/io/hardware_requests.h>
#include <zentara/io/i2c_requests.h>
#include <zentara/io/parameter_requests.h>

#include "io/chips/wired_camera.h"

namespace Zentara::Test {

namespace {

using namespace IO;
using Plugin::NotSupportedPluginException;

template<typename Camera>
Lines execute(Camera& camera, const SmartPtr<xuRequest>& request) {
    return camera.sent([&](auto& chip) { chip.processCommand(request); });
}

std::vector<SmartPtr<xuRequest>> otherKinds() {
    return {makeRefcounted<setGPIOStateRequest>(1U, true),
            makeRefcounted<getGPIOStateRequest>(1U, static_cast<bool*>(nullptr)),
            makeRefcounted<setFloatParameterRequest>(ParameterType{}, 1.0F),
            makeRefcounted<setBoolParameterRequest>(ParameterType{}, true),
            makeRefcounted<setIntParameterRequest>(ParameterType{}, 1),
            makeRefcounted<setRegionOfInterestRequest>(RegionOfInterestInternal{}),
            makeRefcounted<setHardwareVersionRequest>(),
            makeRefcounted<setSystemCalibrationRequest>(),
            makeRefcounted<setSystemStateRequest>()};
}

/// Claims to be a raw command, and is none.
class ImpostorRequest final : public xuRequest {
public:
    ImpostorRequest() : xuRequest(XU_UVC_COMMAND) {}
    SmartPtr<xuRequest> clone() const override { return makeRefcounted<ImpostorRequest>(); }
};

TEST(OV0570RequestsTest, I2cKindsReachTheirDevice) {
    OV0570Camera camera;
    static_cast<void>(camera.chip.getInfoLocked());
    EXPECT_THAT(execute(camera, makeRefcounted<setI2CRegisterRequest>(0x21U, 29U, 4U, 9U, 9U)),
                ElementsAre("SET 2  11 1D 00 05 00 00 00"));
    unsigned value = 0;
    EXPECT_THAT(execute(camera, makeRefcounted<getI2CRegisterRequest>(0x21U, 29U, &value, 1U, 2U)),
                ElementsAre("GET 2  91 1D 00 00 00 00 00"));
    EXPECT_EQ(value, 5U);
    EXPECT_THAT(execute(camera, makeRefcounted<setI2CArrayRequest>(0x21U, std::vector<unsigned char>{7, 8})),
                ElementsAre("SET 2  11 00 00 07 00 00 00", "SET 2  11 01 00 08 00 00 00"));
    std::vector<unsigned char> bytes(2);
    EXPECT_THAT(execute(camera, makeRefcounted<getI2CArrayRequest>(0x21U, bytes)),
                ElementsAre("GET 2  91 00 00 00 00 00 00", "GET 2  91 01 00 00 00 00 00"));
    EXPECT_THAT(bytes, ElementsAre(7, 8));
    std::vector<unsigned char> none;
    EXPECT_THAT(execute(camera, makeRefcounted<getI2CArrayRequest>(0x21U, none)), IsEmpty());
    EXPECT_EQ(messageOf<IOPluginException>(
                  [&] { execute(camera, makeRefcounted<setI2CRegisterRequest>(0x9711U, 0U, 0U, 1U, 1U)); }),
              "deviceAddress not found")
        << "I2C addresses have 8 bits";
}

TEST(VC0258RequestsTest, I2cKindsTakeTheOrdersOfTheController) {
    VC0258Camera camera;
    EXPECT_THAT(
        execute(camera, makeRefcounted<setI2CRegisterRequest>(0x60U, 7U, 0xABCDU, 1U, 2U)),
        ElementsAre("SET 4  20 39 B4 01", "SET 4  20 02 81 09", "SET 16  C1 01 12 07 00 00 CD AB 00"));
    unsigned value = 0;
    EXPECT_THAT(execute(camera, makeRefcounted<getI2CRegisterRequest>(0x60U, 7U, &value, 1U, 2U)),
                ElementsAre("SET 4  20 39 B4 00", "GET 16  C0 01 02 07 00 00 00 00 00"));
    EXPECT_EQ(value, 0xABCDU);
    EXPECT_THAT(execute(camera, makeRefcounted<setI2CArrayRequest>(0x30U, std::vector<unsigned char>{7, 8})),
                ElementsAre("SET 16  61 01 01 00 00 00 07 00 00", "SET 16  61 01 01 01 00 00 08 00 00"));
    std::vector<unsigned char> bytes(2);
    execute(camera, makeRefcounted<getI2CArrayRequest>(0x30U, bytes));
    EXPECT_THAT(bytes, ElementsAre(7, 8));
    // Widths and addresses are judged before they are cut to bytes.
    EXPECT_EQ(messageOf<IOPluginException>(
                  [&] { execute(camera, makeRefcounted<setI2CRegisterRequest>(0x60U, 7U, 0U, 257U, 2U)); }),
              "addressBytes must be equal to 1");
    EXPECT_THROW(execute(camera, makeRefcounted<setI2CRegisterRequest>(0x160U, 7U, 0U, 1U, 2U)),
                 ArgumentPluginException);
}

template<typename Camera>
class RequestRefusalTest : public testing::Test {};
using Executors = testing::Types<OV0570Camera, VC0258Camera>;
TYPED_TEST_SUITE(RequestRefusalTest, Executors);

TYPED_TEST(RequestRefusalTest, OtherKindsAreRefusedByNameBeforeAnyTransfer) {
    TypeParam camera;
    for (const auto& request : otherKinds()) {
        SCOPED_TRACE(request->type());
        EXPECT_THAT(messageOf<NotSupportedPluginException>([&] { camera.chip.processCommand(request); }),
                    HasSubstr("XU_"));
    }
    EXPECT_THAT(messageOf<NotSupportedPluginException>(
                    [&] { camera.chip.processCommand(makeRefcounted<setGPIOStateRequest>(1U, true)); }),
                HasSubstr("does not execute XU_SET_GPIO_STATE requests"));
    EXPECT_THAT(messageOf<NotSupportedPluginException>(
                    [&] { camera.chip.processCommand(makeRefcounted<ImpostorRequest>()); }),
                HasSubstr("type XU_UVC_COMMAND that is not of the class"));
    EXPECT_THROW(camera.chip.processCommand(nullptr), ArgumentPluginException);
    EXPECT_THROW(camera.chip.processCommand(makeRefcounted<getI2CRegisterRequest>()),
                 ArgumentPluginException);
    EXPECT_THROW(camera.chip.processCommand(makeRefcounted<getI2CArrayRequest>()), ArgumentPluginException);
    EXPECT_THAT(camera.port.log(), IsEmpty());
}

TYPED_TEST(RequestRefusalTest, AnArrayIsTransferredWholeOrNotAtAll) {
    TypeParam camera;
    std::vector<unsigned char> bytes{1, 2, 3};
    camera.port.addFault(4, Simulated::Fault::Kind::Fail);
    EXPECT_THROW(camera.chip.processCommand(makeRefcounted<getI2CArrayRequest>(0x21U, bytes)),
                 IOPluginException);
    EXPECT_THAT(bytes, ElementsAre(1, 2, 3));
    camera.port.clearFaults();
    camera.chip.processCommand(makeRefcounted<setI2CArrayRequest>(0x21U, std::vector<unsigned char>(256)));
    EXPECT_THROW(camera.chip.processCommand(
                     makeRefcounted<setI2CArrayRequest>(0x21U, std::vector<unsigned char>(257))),
                 ArgumentPluginException);
}

TEST(VC0345RequestsTest, OtherKindsDoNothingAndDoNotWait) {
    VC0345Camera camera;
    auto requests = otherKinds();
    requests.push_back(makeRefcounted<setI2CRegisterRequest>(0x21U, 29U, 4U, 1U, 2U));
    for (const auto& request : requests)
        EXPECT_NO_THROW(camera.chip.processCommand(request));
    EXPECT_THROW(camera.chip.processCommand(makeRefcounted<ImpostorRequest>()), NotSupportedPluginException);
    EXPECT_THAT(camera.port.log(), IsEmpty());
    EXPECT_THAT(camera.clock.waits, IsEmpty());
    EXPECT_THROW(camera.chip.processCommand(nullptr), ArgumentPluginException);
}

} // namespace

} // namespace Zentara::Test
