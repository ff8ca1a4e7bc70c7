#include <gmock/gmock.h>

#include <map>

#include <zentara/calibration_internal.h>
#include <zentara/io/camera_chip.h>
#include <zentara/io/library_parameter_interpreter.h>

#include "plugins/cameras/plugin_guids.h"
#include "plugins/descriptions/wire.h"
#include "plugins/simulated/firmware/firmware_settings.h"
#include "plugins/simulated/firmware/vc0258_firmware.h"
#include "plugins/simulated/port.h"
#include "support/failure.h"

namespace Testing {
namespace {

using namespace Zentara;
using namespace Zentara::IO;
using namespace Zentara::Cameras;
using namespace Zentara::Simulated;
using testing::HasSubstr;
using Interpreter = Utils::SmartPtr<LibraryParameterInterpreter>;
using TestSupport::failure;
using Utils::makeRefcounted;

template<typename Operation>
ErrorCode transfer(Operation operation) {
    return failure(operation) == "nothing was thrown" ? ErrorCode_SUCCESS : ErrorCode_IO;
}

ErrorCode set(void* port, unsigned short unit, unsigned int selector, unsigned char* data,
              unsigned int length) {
    return transfer([&] { static_cast<Port*>(port)->set(unit, selector, data, length); });
}

ErrorCode get(void* port, unsigned short unit, unsigned int selector, unsigned char* data,
              unsigned int length) {
    return transfer([&] { static_cast<Port*>(port)->get(unit, selector, data, length); });
}

std::unique_ptr<Firmware> makeKind(const std::string& chip) {
    FirmwareSettings settings;
    settings.chip = chip;
    return makeFirmware(settings);
}

/// A camera with that controller in the list of its modules.
HardwareVersionInternal withController(const std::string& chip) {
    HardwareVersionInternal version;
    version.modules[1].productId = CameraChip::productOf(chip);
    return version;
}

/// The back-end plug-in over a simulated camera with each of the controllers.
class TofParameters : public testing::TestWithParam<std::string> {
protected:
    TofParameters() {
        camera.select(camera.model().guid());
        connect();
    }

    void connect() { parameters->initialize(&camera, set, get, {}, withController(GetParam())); }

    template<typename T>
    T read(ParameterType parameter) {
        T value{};
        parameters->read(parameter, &value);
        return value;
    }

    Port camera{makeKind(GetParam())};
    Interpreter parameters = LibraryParameterInterpreter::create(parameterBackEndGuid);
};

INSTANTIATE_TEST_SUITE_P(Chips, TofParameters, testing::ValuesIn(CameraChip::names()),
                         [](const auto& chip) { return chip.param; });

TEST_P(TofParameters, EveryParameterBeginsWithinItsRange) {
    for (int number = 0; number <= 15; ++number) {
        const auto parameter = static_cast<ParameterType>(number);
        static_cast<void>(parameters->getUnitType(parameter));
        const auto range = parameters->getParameterRange(parameter);
        if (const auto* floats = dynamic_cast<const ParameterRangeInternal<float>*>(range.get())) {
            EXPECT_GE(read<float>(parameter), floats->getMin()) << number;
            EXPECT_LE(read<float>(parameter), floats->getMax()) << number;
        } else if (const auto* ints = dynamic_cast<const ParameterRangeInternal<int>*>(range.get())) {
            EXPECT_GE(read<int>(parameter), ints->getMin()) << number;
            EXPECT_LE(read<int>(parameter), ints->getMax()) << number;
        }
    }
    EXPECT_EQ(parameters->getRegionOfInterest(), (RegionOfInterestInternal{0, 0, 320, 240}));
    const auto region = parameters->getParameterRange(ParameterType_REGION_OF_INTEREST);
    EXPECT_EQ(dynamic_cast<const RegionOfInterestRangeInternal&>(*region).getHeightRange()->getMax(), 240);
    EXPECT_NEAR(read<float>(ParameterType_FLOAT_3), 36.5F, 0.1F) << "the temperature";
    for (const Transfer& made : camera.log())
        EXPECT_EQ(made.failure, "") << "a start makes no call that must fail";
}

TEST_P(TofParameters, ValuesStayInTheCamera) {
    parameters->write(ParameterType_FLOAT_0, 42.5F);
    parameters->write(ParameterType_INT_15, 0xFEDC);
    parameters->write(ParameterType_BOOL_7, false);
    parameters->setRegionOfInterest({16, 8, 256, 200});
    connect(); // a new instance finds the camera as it was left
    EXPECT_EQ(read<float>(ParameterType_FLOAT_0), 42.5F);
    EXPECT_EQ(read<int>(ParameterType_INT_15), 0xFEDC);
    EXPECT_FALSE(read<bool>(ParameterType_BOOL_7));
    EXPECT_EQ(parameters->getRegionOfInterest(), (RegionOfInterestInternal{16, 8, 256, 200}));
}

TEST_P(TofParameters, RangeFollowsTheModulationFrequency) {
    parameters->write(ParameterType_FLOAT_2, 30.0F);
    EXPECT_NEAR(parameters->getRange(), 4.9965F, 0.0001F);
    EXPECT_NEAR(parameters->getPhaseScaling(), 4996.5F / 65536, 0.0001F);
    EXPECT_EQ(parameters->getAccessMode(ParameterType_RANGE), AccessMode_READ);
    EXPECT_FALSE(parameters->getParameterRange(ParameterType_RANGE));
    EXPECT_EQ(failure([&] { parameters->write(ParameterType_RANGE, 1.0F); }), "4: Failed to write parameter");

    camera.model().tofRegisters()->change(registerOf(ParameterType_FLOAT_2), 0);
    EXPECT_EQ(failure([&] { static_cast<void>(parameters->getRange()); }), "4: Failed to get range");
    EXPECT_EQ(failure([&] { static_cast<void>(parameters->getPhaseScaling()); }),
              "4: Failed to get phase scaling");
}

TEST_P(TofParameters, ValuesOutsideTheRangeAreRefused) {
    const std::function<void()> writes[] = {
        [&] { parameters->write(ParameterType_FLOAT_0, 100.5F); },
        [&] { parameters->write(ParameterType_FLOAT_0, -0.5F); },
        [&] { parameters->write(ParameterType_FLOAT_0, std::numeric_limits<float>::quiet_NaN()); },
        [&] { parameters->write(ParameterType_FLOAT_2, 25.0F); }, // none of the choices
        [&] { parameters->write(ParameterType_INT_4, 3); },
        [&] { parameters->write(ParameterType_INT_15, 65536); },
        [&] { parameters->write(ParameterType_INT_15, -1); },
    };
    int row = 0;
    for (const auto& write : writes)
        EXPECT_EQ(failure(write), "3: value out of range") << "row " << row++;
    const RegionOfInterestInternal regions[]{{200, 0, 121, 240}, {0, 0, 0, 240}, {0xFFFFFFFF, 0, 2, 2}};
    for (const auto& region : regions)
        EXPECT_EQ(failure([&] { parameters->setRegionOfInterest(region); }), "3: value out of range");
    EXPECT_EQ(read<float>(ParameterType_FLOAT_0), 80.0F);
    // The ends of the ranges, which no float meets exactly, are inside.
    for (const float end : {0.1F, 10.0F}) {
        parameters->write(ParameterType_FLOAT_1, end);
        EXPECT_NEAR(read<float>(ParameterType_FLOAT_1), end, 1e-5F);
    }
}

ParameterRequestMap stateOf(float power, int filter, bool light, const RegionOfInterestInternal& region) {
    return {
        {ParameterType_FLOAT_0, makeRefcounted<setFloatParameterRequest>(ParameterType_FLOAT_0, power)},
        {ParameterType_INT_9, makeRefcounted<setIntParameterRequest>(ParameterType_INT_9, filter)},
        {ParameterType_BOOL_7, makeRefcounted<setBoolParameterRequest>(ParameterType_BOOL_7, light)},
        {ParameterType_REGION_OF_INTEREST, makeRefcounted<setRegionOfInterestRequest>(region)},
        // Read-only: read with the others, skipped when they are written back.
        {ParameterType_RANGE, makeRefcounted<setFloatParameterRequest>(ParameterType_RANGE, 99.0F)},
    };
}

template<typename Request>
const Request& in(const ParameterRequestMap& state, ParameterType parameter) {
    return dynamic_cast<const Request&>(*state.at(parameter));
}

TEST_P(TofParameters, SystemStateIsWrittenWholeOrNotAtAll) {
    parameters->write(stateOf(10, 7, false, {1, 2, 3, 4}));
    ParameterRequestMap state = stateOf(0, 0, true, {});
    parameters->read(state);
    EXPECT_EQ(in<setFloatParameterRequest>(state, ParameterType_FLOAT_0).getValue(), 10.0F);
    EXPECT_EQ(in<setIntParameterRequest>(state, ParameterType_INT_9).getValue(), 7);
    EXPECT_FALSE(in<setBoolParameterRequest>(state, ParameterType_BOOL_7).getValue());
    EXPECT_EQ(in<setRegionOfInterestRequest>(state, ParameterType_REGION_OF_INTEREST).getRegion(),
              (RegionOfInterestInternal{1, 2, 3, 4}));
    EXPECT_NEAR(in<setFloatParameterRequest>(state, ParameterType_RANGE).getValue(), 7.4948F, 0.001F);

    const ParameterRequestMap wrong = stateOf(90, 8, true, {5, 5, 5, 5});
    EXPECT_EQ(failure([&] { parameters->write(wrong); }),
              "4: Failed to set system state: spatial filter takes 0 to 7, not 8");
    EXPECT_EQ(read<float>(ParameterType_FLOAT_0), 10.0F);
    EXPECT_FALSE(read<bool>(ParameterType_BOOL_7));
    EXPECT_EQ(parameters->getRegionOfInterest(), (RegionOfInterestInternal{1, 2, 3, 4}));
}

TEST_P(TofParameters, CalibrationBeginsWithTheFlashAndIsKept) {
    CalibrationInternal calibration;
    camera.clearFaults();
    camera.addFault(3, Fault::Kind::Fail);
    EXPECT_THAT(failure([&] { parameters->readCalibration(&calibration); }), HasSubstr("of extension unit "));
    EXPECT_EQ(calibration, CalibrationInternal());
    camera.clearFaults();
    parameters->readCalibration(&calibration);
    const std::map<std::string, int> made{{"OV0570", 0x57}, {"VC0258", 0x82}, {"VC0345", 0x45}};
    EXPECT_EQ(calibration.getPhaseDelay(), made.at(GetParam()));
    EXPECT_EQ(calibration.getPhaseDelay2(), -24);
    calibration.setPhaseDelay(77);
    parameters->writeCalibration(&calibration);
    CalibrationInternal again;
    parameters->readCalibration(&again);
    EXPECT_EQ(again.getPhaseDelay(), 77);
    EXPECT_EQ(again.getPhaseDelay2(), -24);
}

/// A bridge whose byte order somebody else turns over, right after it was asked for.
struct RestlessBridge {
    Port& camera;
    int turns; ///< still to come

    static ErrorCode get(void* self, unsigned short unit, unsigned int selector, unsigned char* data,
                         unsigned int length) {
        auto& bridge = *static_cast<RestlessBridge*>(self);
        const ErrorCode code = Testing::get(&bridge.camera, unit, selector, data, length);
        if (unit == 4 && selector == 4 && bridge.turns > 0) {
            --bridge.turns;
            const std::uint8_t turned[] = {0x20, 0x39, 0xB4, static_cast<std::uint8_t>(data[3] ^ 1)};
            bridge.camera.set(4, 4, turned, sizeof turned);
        }
        return code;
    }
    static ErrorCode set(void* self, unsigned short unit, unsigned int selector, unsigned char* data,
                         unsigned int length) {
        return Testing::set(&static_cast<RestlessBridge*>(self)->camera, unit, selector, data, length);
    }
};

TEST(TofParametersOfAVC0258, AreWholeThoughTheByteOrderChangesMeanwhile) {
    Port camera(std::make_unique<VC0258Firmware>(VC0258Firmware::Settings()));
    camera.select(camera.model().guid());
    RestlessBridge bridge{camera, 0};
    const Interpreter parameters = LibraryParameterInterpreter::create(parameterBackEndGuid);
    parameters->initialize(&bridge, RestlessBridge::set, RestlessBridge::get, {}, withController("VC0258"));
    const auto order = [&] {
        return static_cast<VC0258Firmware&>(camera.model()).bridge().value(VCBridgeRegisters::lastByteOrder);
    };
    for (int turns = 0; turns < 4; ++turns) {
        bridge.turns = turns;
        const int before = order();
        parameters->write(ParameterType_INT_15, 0x1234 + turns);
        EXPECT_EQ(camera.tofRegister(0x5F), 0x1234 + turns);
        bridge.turns = turns;
        int value = 0;
        parameters->read(ParameterType_INT_15, &value);
        EXPECT_EQ(value, 0x1234 + turns);
        EXPECT_EQ(order(), before) << "left as whoever else uses the bridge has set it, here twice as often";
    }
    bridge.turns = 1'000'000;
    EXPECT_EQ(failure([&] { parameters->write(ParameterType_INT_15, 1); }), "4: Failed to write parameter")
        << "nobody waits for ever";
}

TEST(TofParametersOfOddCameras, AreRefused) {
    const Interpreter parameters = LibraryParameterInterpreter::create(parameterBackEndGuid);
    const auto refusal = [&](OV0570Firmware::Settings settings) {
        Port camera(std::make_unique<OV0570Firmware>(settings));
        camera.select(camera.model().guid());
        return failure([&] { parameters->initialize(&camera, set, get, {}, withController("OV0570")); });
    };
    const char* const refused = "6: Failed to initialize plugin";
    OV0570Firmware::Settings settings;
    settings.devices = {{0, 0, 0x0021}};
    EXPECT_EQ(refusal(settings), refused) << "registers of one byte";
    settings.devices = {{0, 1, 0x0022}};
    EXPECT_EQ(refusal(settings), refused) << "no time-of-flight controller";
    EXPECT_EQ(
        failure([&] { parameters->initialize(nullptr, nullptr, nullptr, {}, withController("VC0258")); }),
        refused);
    int calls = 0;
    const auto dead = [](void* asked, unsigned short, unsigned int, unsigned char*, unsigned int) {
        ++*static_cast<int*>(asked);
        return ErrorCode_IO;
    };
    EXPECT_EQ(failure([&] { parameters->initialize(&calls, dead, dead, {}, {}); }), refused);
    EXPECT_EQ(calls, 0) << "nothing is tried out on a camera that names no controller";
    EXPECT_EQ(failure([&] { parameters->initialize(&calls, dead, dead, {}, withController("VC0345")); }),
              refused)
        << "no answer at all";
    EXPECT_EQ(calls, 1);
}

} // namespace
} // namespace Testing
