#include <zentara/core/descriptor_store_ro.h>

#include <gmock/gmock.h>

#include <zentara/cyclic_error_correction.h>
#include <zentara/io/hardware_requests.h>
#include <zentara/io/i2c_requests.h>
#include <zentara/io/parameter_requests.h>
#include <zentara/io/uvc_command_request.h>
#include <zentara/plugin/plugin_exceptions.h>

#include "core/nodes/record_store.h"
#include "support/failure.h"
#include "support/log_capture.h"

namespace Testing {
namespace {

using namespace Zentara::IO;
using Core::RequestList;
using Utils::makeRefcounted;

RequestList write(std::uint32_t id, std::uint32_t value, UVCPrefix prefix = UVC_TOF_CONTROLLER_REGISTER) {
    return {makeRefcounted<UVCCommandRequest>(prefix, id, value)};
}

TEST(DescriptorStore, WithoutRecordsReadsAsEmpty) {
    const RecordStore store;
    EXPECT_EQ(store.getNodeHardwareIDs(), HardwareIDs());
    EXPECT_EQ(store.getStopCommonSettings(), nullptr);
    using TestSupport::failure;
    EXPECT_EQ(failure([&] { static_cast<void>(store.getROMElement(0x1122334455)); }),
              "5: undefined ROMElement id 73588229205");
    EXPECT_EQ(failure([&] { static_cast<void>(store.getDefaultExtrinsics()); }),
              "5: Extrinsics are not defined");
    EXPECT_EQ(failure([&] { static_cast<void>(store.getDefaultDepthIntrinsicsArray()); }),
              "5: Depth Intrinsics are not defined");
    EXPECT_EQ(failure([&] { static_cast<void>(store.getDefaultColorIntrinsicsArray()); }),
              "5: Color Intrinsics are not defined");
}

/// The value of register 40, or -1 when nothing writes it.
std::int64_t register40(const RecordStore& store) {
    std::uint32_t value = 0xDEAD;
    if (store.getValue(40, value))
        return value;
    EXPECT_EQ(value, 0xDEADU) << "changed without a match";
    return -1;
}

TEST(DescriptorStore, LastWriteOfTheLastListGivesTheValue) {
    RecordStore store;
    store.node.emplace();
    EXPECT_EQ(register40(store), -1);
    store.node->preCommonSettings = write(40, 5);
    store.node->stopCommonSettings = write(40, 6);
    EXPECT_EQ(register40(store), 5) << "the stop settings do not count";
    RequestList specific = write(40, 8);
    specific.push_back(makeRefcounted<UVCCommandRequest>(UVC_TOF_CONTROLLER_REGISTER, 40U, 9U));
    store.setConfigurationSettings(&specific);
    EXPECT_EQ(register40(store), 9);
    store.node->postCommonSettings = write(40, 7);
    EXPECT_EQ(register40(store), 7);
    store.setConfigurationSettings(nullptr);
    store.node->postCommonSettings = write(41, 1);
    EXPECT_EQ(register40(store), 5);
}

TEST(DescriptorStore, ValueReadsTheFirstThreeWordsOfEveryKindThatHasThem) {
    const ModuleIdInternal module{1, 40, 9, 0};
    const std::tuple<const char*, Utils::SmartPtr<xuRequest>, std::int64_t> rows[]{
        {"null", nullptr, -1},
        {"raw command", makeRefcounted<UVCCommandRequest>(UVC_TOF_CONTROLLER_REGISTER, 40U, 9U), 9},
        {"raw command of another prefix", makeRefcounted<UVCCommandRequest>(UVC_ADC_VALUE, 40U, 9U), -1},
        {"I2C register", makeRefcounted<setI2CRegisterRequest>(1U, 40U, 9U, 2U, 2U), 9},
        {"I2C register of another device", makeRefcounted<setI2CRegisterRequest>(2U, 40U, 9U, 2U, 2U), -1},
        {"hardware version",
         makeRefcounted<setHardwareVersionRequest>(module, module, module, module, module), 9},
        {"int", makeRefcounted<setIntParameterRequest>(ParameterType(1), 40), -1},
    };
    RecordStore store;
    store.node.emplace();
    for (const auto& [kind, request, value] : rows) {
        store.node->preCommonSettings = RequestList{request};
        EXPECT_EQ(register40(store), value) << kind;
    }
}

class CyclicStore final : public RecordStore {
public:
    bool getCyclicErrorRecord(DepthNode::CameraMode mode, CyclicErrorRecord& record) const override {
        record = {65, {1.0F, 2.0F}};
        if (throws && mode == DepthNode::CameraMode_1)
            throw Plugin::IOPluginException("unplugged");
        return throws || mode == DepthNode::CameraMode_1;
    }
    bool throws = false;
};

TEST(DescriptorStore, CyclicErrorCorrectionTakesTheRecordsOfTheStore) {
    CyclicStore store;
    CyclicErrorCorrection correction(&store);
    EXPECT_FALSE(correction.comesFromRom());
    correction.setCurrentMode(DepthNode::CameraMode_0);
    EXPECT_EQ(correction.getParameterCount(), 0U) << "a record that was refused is not used";
    correction.setCurrentMode(DepthNode::CameraMode_1);
    EXPECT_EQ(correction.getAlgorithm(), 65);
    EXPECT_EQ(correction.getParameterCount(), 2U);
    EXPECT_EQ(correction.getParameter(1), 2.0F);

    const TestSupport::LogCapture log;
    store.throws = true;
    CyclicErrorCorrection empty(&store);
    empty.setCurrentMode(DepthNode::CameraMode_0);
    EXPECT_EQ(empty.getParameterCount(), 0U) << "a store that throws has no record of either mode";
    EXPECT_FALSE(CyclicErrorCorrection(static_cast<Core::DescriptorStoreRO*>(nullptr)).comesFromRom());
    EXPECT_THAT(log.text(), testing::HasSubstr("unplugged"));
}

} // namespace
} // namespace Testing
