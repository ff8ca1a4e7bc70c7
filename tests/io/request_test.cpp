#include <gmock/gmock.h>

#include <zentara/io/device_request.h>
#include <zentara/io/gpio_requests.h>
#include <zentara/io/hardware_requests.h>
#include <zentara/io/i2c_requests.h>
#include <zentara/io/parameter_requests.h>
#include <zentara/io/uvc_command_request.h>

namespace Testing {
namespace {

using namespace Zentara;
using namespace Zentara::IO;
using Utils::makeRefcounted;
using Utils::SmartPtr;

template<typename Request>
SmartPtr<Request> cloneOf(const Request& original) {
    return SmartPtr<Request>(&dynamic_cast<Request&>(*original.clone()));
}

// The number that tells a kind apart. Fields of the kinds that something executes are read where that is tested.
TEST(XuRequestTest, KindsAndClones) {
    unsigned int value = 0;
    bool level = false;
    std::vector<unsigned char> bytes;
    const std::pair<int, SmartPtr<xuRequest>> kinds[] = {
        {1, makeRefcounted<UVCCommandRequest>(UVC_ADC_VALUE, 1000U, 0xFFFFFFFFU)},
        {30, makeRefcounted<setParameterRequest>(XU_SET_INT_PARAMETER, ParameterType_INT_4)},
        {26, makeRefcounted<setFloatParameterRequest>(ParameterType_RANGE, 1.5F)},
        {28, makeRefcounted<setBoolParameterRequest>(ParameterType_BOOL_7, true)},
        {30, makeRefcounted<setIntParameterRequest>(ParameterType_INT_9, -5)},
        {36, makeRefcounted<setRegionOfInterestRequest>(RegionOfInterestInternal{1, 2, 3, 4})},
        {32, makeRefcounted<setI2CRegisterRequest>(1U, 2U, 3U, 4U, 5U)},
        {33, makeRefcounted<getI2CRegisterRequest>(1U, 2U, &value, 4U, 5U)},
        {34, makeRefcounted<setGPIOStateRequest>(7U, true)},
        {35, makeRefcounted<getGPIOStateRequest>(6U, &level)},
        {38, makeRefcounted<setSystemCalibrationRequest>()},
        {40, makeRefcounted<getI2CArrayRequest>(8U, bytes)},
        {41, makeRefcounted<setI2CArrayRequest>(8U, bytes)},
    };
    for (const auto& [type, request] : kinds) {
        const SmartPtr<xuRequest> clone = request->clone();
        EXPECT_EQ(type, request->type());
        EXPECT_EQ(type, clone->type());
        const xuRequest& original = *request;
        const xuRequest& copy = *clone;
        EXPECT_TRUE(typeid(original) == typeid(copy)) << type;
    }
    const auto modules = cloneOf(*makeRefcounted<setHardwareVersionRequest>(
        ModuleIdInternal{1}, ModuleIdInternal{2}, ModuleIdInternal{3}, ModuleIdInternal{4},
        ModuleIdInternal{5}));
    EXPECT_EQ(37, modules->type());
    for (std::uint32_t i = 0; i < 5; ++i)
        EXPECT_EQ(i + 1, modules->getModules()[i].vendorId);
}

TEST(XuRequestTest, AClonesDataIsItsOwn) {
    // The constructor shares the requests of the map; a clone has its own.
    const auto entry = makeRefcounted<setIntParameterRequest>(ParameterType_INT_4, 1);
    const auto state = makeRefcounted<setSystemStateRequest>(
        ParameterRequestMap{{ParameterType_INT_4, entry}, {ParameterType_BOOL_7, nullptr}});
    EXPECT_EQ(39, state->type());
    EXPECT_EQ(entry.get(), state->getState().at(ParameterType_INT_4).get());
    const auto copy = cloneOf(*state);
    EXPECT_EQ(nullptr, copy->getState().at(ParameterType_BOOL_7));
    dynamic_cast<setIntParameterRequest&>(*copy->getState().at(ParameterType_INT_4)).setValue(2);
    EXPECT_EQ(1, entry->getValue());
}

TEST(RequestTypeTest, NamesAreKeptInTheirMixedCase) {
    EXPECT_STREQ("RequestType_NONE", RequestType_toString(RequestType_NONE));
    EXPECT_STREQ("RequestType_ReadControlTransfer", RequestType_toString(RequestType(18)));
    EXPECT_STREQ("RequestType_XUSETUP", RequestType_toString(RequestType(25)));
    for (const int unknown : {26, 99, -1})
        EXPECT_STREQ("RequestType_UNKNOWN", RequestType_toString(RequestType(unknown)));
}

TEST(DeviceRequestTest, CancellingWithoutATransferOnlyMarks) {
    const auto request = makeRefcounted<deviceRequest>(nullptr, RequestType_NONE);
    EXPECT_FALSE(request->cancelIO() || !request->getCancelled());
    request->setIOPending(true);
    request->lock(); // as devices do around their own updates
    EXPECT_FALSE(request->cancelIO()) << "without a device";
    request->unlock();
}

} // namespace
} // namespace Testing
