#include <gmock/gmock.h>

#include <zentara/io/gpio_requests.h>
#include <zentara/io/hardware_requests.h>
#include <zentara/io/i2c_requests.h>
#include <zentara/io/parameter_requests.h>
#include <zentara/io/uvc_command_request.h>

namespace Testing {
namespace {

using namespace Zentara;
using namespace Zentara::IO;
using testing::ElementsAre;
using Utils::makeRefcounted;
using Utils::SmartPtr;

template<typename Request>
SmartPtr<Request> cloneOf(const Request& original) {
    const SmartPtr<xuRequest> copy = original.clone();
    EXPECT_NE(&original, copy.get());
    EXPECT_EQ(original.type(), copy->type());
    auto* const same = dynamic_cast<Request*>(copy.get());
    EXPECT_NE(nullptr, same);
    return SmartPtr<Request>(same);
}

// Each kind: its number, its fields in the order of the arguments, and the same from a clone.
TEST(XuRequestTest, KindsAndClones) {
    const auto command = cloneOf(*makeRefcounted<UVCCommandRequest>(UVC_ADC_VALUE, 1000U, 0xFFFFFFFFU));
    EXPECT_EQ(1, command->type());
    EXPECT_EQ(3, command->getPrefix());
    EXPECT_EQ(1000U, command->getA());
    EXPECT_EQ(0xFFFFFFFFU, command->getB());

    const auto base =
        cloneOf(*makeRefcounted<setParameterRequest>(XU_SET_INT_PARAMETER, ParameterType_INT_4));
    EXPECT_EQ(30, base->type());
    EXPECT_EQ(4, base->getParameter());
    const auto number = cloneOf(*makeRefcounted<setFloatParameterRequest>(ParameterType_RANGE, 1.5F));
    EXPECT_EQ(26, number->type());
    EXPECT_EQ(12, number->getParameter());
    EXPECT_EQ(1.5F, number->getValue());
    const auto flag = cloneOf(*makeRefcounted<setBoolParameterRequest>(ParameterType_BOOL_7, true));
    EXPECT_EQ(28, flag->type());
    EXPECT_TRUE(flag->getValue());
    const auto integer = cloneOf(*makeRefcounted<setIntParameterRequest>(ParameterType_INT_9, -5));
    EXPECT_EQ(30, integer->type());
    EXPECT_EQ(-5, integer->getValue());
    const auto region =
        cloneOf(*makeRefcounted<setRegionOfInterestRequest>(RegionOfInterestInternal{1, 2, 3, 4}));
    EXPECT_EQ(36, region->type());
    EXPECT_EQ(13, region->getParameter());
    EXPECT_EQ((RegionOfInterestInternal{1, 2, 3, 4}), region->getRegion());

    bool level = false;
    const auto getPin = cloneOf(*makeRefcounted<getGPIOStateRequest>(6U, &level));
    EXPECT_EQ(35, getPin->type());
    EXPECT_EQ(6U, getPin->getGPIO());
    EXPECT_EQ(&level, getPin->getState());
    const auto setPin = cloneOf(*makeRefcounted<setGPIOStateRequest>(7U, true));
    EXPECT_EQ(34, setPin->type());
    EXPECT_EQ(7U, setPin->getGPIO());
    EXPECT_TRUE(setPin->getState());

    const auto write = cloneOf(*makeRefcounted<setI2CRegisterRequest>(1U, 2U, 3U, 4U, 5U));
    EXPECT_EQ(32, write->type());
    EXPECT_THAT(
        (std::vector<std::uint32_t>{write->getDeviceAddress(), write->getRegisterAddress(), write->getValue(),
                                    write->getAddressWidth(), write->getDataWidth()}),
        ElementsAre(1, 2, 3, 4, 5));
    unsigned int value = 0;
    const auto read = cloneOf(*makeRefcounted<getI2CRegisterRequest>(1U, 2U, &value, 4U, 5U));
    EXPECT_EQ(33, read->type());
    EXPECT_EQ(&value, read->getValue());
    EXPECT_THAT((std::vector<std::uint32_t>{read->getDeviceAddress(), read->getRegisterAddress(),
                                            read->getAddressWidth(), read->getDataWidth()}),
                ElementsAre(1, 2, 4, 5));
    std::vector<unsigned char> bytes{1, 2};
    const auto readBytes = cloneOf(*makeRefcounted<getI2CArrayRequest>(8U, bytes));
    EXPECT_EQ(40, readBytes->type());
    EXPECT_EQ(&bytes, readBytes->getData());

    const auto modules = cloneOf(*makeRefcounted<setHardwareVersionRequest>(
        ModuleIdInternal{1}, ModuleIdInternal{2}, ModuleIdInternal{3}, ModuleIdInternal{4},
        ModuleIdInternal{5}));
    EXPECT_EQ(37, modules->type());
    for (std::uint32_t i = 0; i < 5; ++i)
        EXPECT_EQ(i + 1, modules->getModules()[i].vendorId);
}

TEST(XuRequestTest, DefaultsAreEmpty) {
    const UVCCommandRequest* const command = new UVCCommandRequest;
    EXPECT_EQ(0U, static_cast<unsigned>(command->getPrefix()) | command->getA() | command->getB());
    const_cast<UVCCommandRequest*>(command)->decref();
    EXPECT_EQ(nullptr, makeRefcounted<getI2CArrayRequest>()->getData());
    EXPECT_EQ(nullptr, makeRefcounted<getGPIOStateRequest>()->getState());
    EXPECT_EQ(13, makeRefcounted<setRegionOfInterestRequest>()->getParameter());
    EXPECT_EQ(38, makeRefcounted<setSystemCalibrationRequest>()->type());
    EXPECT_TRUE(makeRefcounted<setSystemStateRequest>()->getState().empty());
}

TEST(XuRequestTest, AClonesDataIsItsOwn) {
    const auto bytes = makeRefcounted<setI2CArrayRequest>(8U, std::vector<unsigned char>{1, 2});
    EXPECT_EQ(41, bytes->type());
    cloneOf(*bytes)->getData()[0] = 9;
    EXPECT_THAT(bytes->getData(), ElementsAre(1, 2));

    const auto calibration =
        makeRefcounted<setSystemCalibrationRequest>(std::vector<IntrinsicParametersInternal>(1));
    cloneOf(*calibration)->getIntrinsics()[0].fx = 9;
    EXPECT_EQ(0, calibration->getIntrinsics()[0].fx);

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

} // namespace
} // namespace Testing
