#include <zentara/io/library_parameter_interpreter.h>

#include <gmock/gmock.h>

#include <cstdint>
#include <cstring>
#include <stdexcept>

#include <zentara/calibration_internal.h>
#include <zentara/core/plugin_manager.h>
#include <zentara/io/uvc_command_request.h>
#include <zentara/io/video_device_proxy.h>
#include <zentara/io/xu_device_requests.h>
#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/format.h>

#include "core/nodes/fixtures/back_end_script.h"
#include "core/nodes/fixtures/guids.h"
#include "io/script.h"
#include "support/failure.h"
#include "support/scoped_variable.h"

namespace Testing {
namespace {

using namespace Zentara::IO;
using testing::_;
using testing::AnyNumber;
using testing::DoAll;
using testing::Return;
using testing::SetArgPointee;
using testing::StartsWith;
using Bytes = std::vector<unsigned char>;
using Interpreter = Utils::SmartPtr<LibraryParameterInterpreter>;
using TestSupport::failure;
using Utils::makeRefcounted;

constexpr auto failed = ErrorCode_FAILED;
constexpr auto tooSmall = ErrorCode_BUFFER_TOO_SMALL;
constexpr auto outOfRange = ErrorCode_OUT_OF_RANGE;
constexpr auto success = ErrorCode_SUCCESS;

class MockBackEnd : public BackEndScript {
public:
    MOCK_METHOD(ErrorCode, initialize,
                (int, void*, Transfer*, Transfer*, const HardwareIDs*, const HardwareVersionInternal*),
                (override));
    MOCK_METHOD(ErrorCode, dispose, (), (override));
    MOCK_METHOD(void, destroyed, (), (override));
#define MOCKED(function, arguments, ...) MOCK_METHOD(ErrorCode, function, (__VA_ARGS__), (override));
    BACK_END_OPERATIONS(MOCKED)
    BACK_END_REPORTS(MOCKED)
#undef MOCKED

private:
    const TestSupport::ScopedVariable address{
        scriptVariable,
        Utils::Format("%{:x}") % reinterpret_cast<std::uintptr_t>(static_cast<BackEndScript*>(this))};
};

/// An answer of a two-call function: the length first, then the bytes.
template<typename Byte>
auto answer(std::vector<Byte> bytes) {
    return [bytes](auto... arguments) {
        const auto all = std::make_tuple(arguments...);
        constexpr std::size_t count = sizeof...(arguments);
        Byte* const buffer = std::get<count - 2>(all);
        unsigned int* const length = std::get<count - 1>(all);
        const bool fits = buffer && *length >= bytes.size();
        if (fits && !bytes.empty())
            std::memcpy(buffer, bytes.data(), bytes.size());
        *length = static_cast<unsigned int>(bytes.size());
        return fits ? success : tooSmall;
    };
}

std::vector<char> text(const std::string& words) { return {words.begin(), words.end()}; }

ErrorCode noTransfer(void*, unsigned short, unsigned int, unsigned char*, unsigned int) { return failed; }

/// An interpreter over the fixture back-end, whose behaviour is the mock's.
class ParameterInterpreterTest : public testing::Test {
protected:
    ParameterInterpreterTest() {
        EXPECT_CALL(backEnd, initialize).Times(AnyNumber()).WillRepeatedly(Return(success));
        EXPECT_CALL(backEnd, dispose).Times(AnyNumber()).WillRepeatedly(Return(success));
        EXPECT_CALL(backEnd, destroyed).Times(AnyNumber());
        EXPECT_CALL(backEnd, getLastError).Times(AnyNumber()).WillRepeatedly(answer(text("overheated")));
        start();
    }

    void start() { parameters->initialize(nullptr, noTransfer, noTransfer, {}, {}); }

    std::string rangeFailure(ParameterType parameter) {
        return failure([&] { static_cast<void>(parameters->getParameterRange(parameter)); });
    }
    void access(AccessMode mode) {
        EXPECT_CALL(backEnd, getAccessMode).WillRepeatedly(DoAll(SetArgPointee<1>(mode), Return(success)));
    }

    struct Operation {
        const char* function; ///< of the back-end
        std::function<void()> call;
        const char* failure = nullptr; ///< when the function fails, for those that say the same each time
    };
    std::vector<Operation> operationsOf(const Interpreter& on) {
        const char* const unwritten = "4: Failed to write parameter";
        const char* const unread = "4: Failed to read parameter";
        return {
            {"writeFloat", [=] { on->write(ParameterType_FLOAT_0, 1.0F); }, unwritten},
            {"writeInt", [=] { on->write(ParameterType_INT_4, 1); }, unwritten},
            {"writeBool", [=] { on->write(ParameterType_BOOL_7, true); }, unwritten},
            {"setRegionOfInterest", [=] { on->setRegionOfInterest({}); },
             "4: Failed to set region of interest"},
            {"readFloat", [=, this] { on->read(ParameterType_FLOAT_0, &aFloat); }, unread},
            {"readInt", [=, this] { on->read(ParameterType_INT_4, &anInt); }, unread},
            {"readBool", [=, this] { on->read(ParameterType_BOOL_7, &aBool); }, unread},
            {"getRegionOfInterest", [=] { static_cast<void>(on->getRegionOfInterest()); },
             "4: Failed to get region of interest"},
            {"readFloat", [=] { static_cast<void>(on->getRange()); }, "4: Failed to get range"},
            {"readInt", [=] { static_cast<void>(on->getRawOutputMode()); },
             "4: Failed to get raw output mode"},
            {"getPhaseScaling", [=] { static_cast<void>(on->getPhaseScaling()); },
             "4: Failed to get phase scaling"},
            {"getUnitType", [=] { static_cast<void>(on->getUnitType(ParameterType_INT_15)); },
             "5: Failed to get unit type from plugin for 15"},
            {"getAccessMode", [=] { static_cast<void>(on->getAccessMode(ParameterType_INT_15)); },
             "5: Parameter 15 is not supported"},
            {"getAccessMode", [=] { static_cast<void>(on->getParameterRange(ParameterType_FLOAT_0)); }},
            {"readSystemState", [=, this] { on->read(state); }},
            {"writeSystemState", [=, this] { on->write(state); }},
            {"writeCalibration", [=, this] { on->writeCalibration(&calibration); }},
            {"readCalibration", [=, this] { on->readCalibration(&calibration); }},
        };
    }

    float aFloat = 5;
    int anInt = 6;
    bool aBool = true;
    CalibrationInternal calibration;
    ParameterRequestMap state;
    testing::StrictMock<MockBackEnd> backEnd;
    Interpreter parameters = LibraryParameterInterpreter::create(BACK_END);
};

TEST_F(ParameterInterpreterTest, LibraryStaysLoadedOnlyWhileAnInterpreterLives) {
    Core::PluginManager* const manager = Core::PluginManager::instance();
    const auto instanceNumber = [this] {
        int number = 0;
        EXPECT_CALL(backEnd, initialize).WillOnce([&](int instance, auto...) {
            number = instance;
            return success;
        });
        start();
        return number;
    };
    Interpreter second = LibraryParameterInterpreter::create(BACK_END);
    EXPECT_EQ(instanceNumber(), 2);
    parameters = second;
    EXPECT_EQ(instanceNumber(), 3) << "the library was unloaded too soon";
    parameters.reset();
    second.reset();
    parameters = LibraryParameterInterpreter::create(BACK_END);
    EXPECT_EQ(instanceNumber(), 1) << "the library was not unloaded";
    manager->release();
}

TEST_F(ParameterInterpreterTest, AnInstanceThatFailsIsDestroyedAtOnce) {
    int destroyed = 0;
    EXPECT_CALL(backEnd, destroyed).WillRepeatedly([&] { ++destroyed; });
    EXPECT_CALL(backEnd, dispose).WillOnce(testing::Throw(std::runtime_error("worn out")));
    EXPECT_ANY_THROW(parameters->dispose());
    EXPECT_EQ(1, destroyed);
    EXPECT_CALL(backEnd, initialize)
        .WillOnce(testing::Throw(std::runtime_error("worn out")))
        .WillOnce(Return(failed))
        .WillOnce(Return(success));
    EXPECT_ANY_THROW(start());
    EXPECT_EQ(2, destroyed);
    const char* const refused = "6: Failed to initialize plugin";
    EXPECT_EQ(failure([&] { start(); }), refused);
    EXPECT_EQ(3, destroyed);
    start();
    EXPECT_CALL(backEnd, dispose).WillOnce(Return(success)).WillOnce(Return(failed));
    EXPECT_CALL(backEnd, initialize).WillOnce([&](auto...) {
        EXPECT_EQ(4, destroyed) << "the one before is ended first";
        return success;
    });
    start();
    parameters.reset();
    EXPECT_EQ(5, destroyed) << "with the interpreter";

    const Interpreter empty = LibraryParameterInterpreter::create(BACK_END_WITHOUT_INSTANCE);
    EXPECT_EQ(failure([&] { empty->initialize(nullptr, noTransfer, noTransfer, {}, {}); }), refused);
}

TEST_F(ParameterInterpreterTest, NeedsALibraryThatIsAParameterBackEnd) {
    struct NoLibrary final : ParameterInterpreter {
        NoLibrary() : ParameterInterpreter(BACK_END, nullptr) {}
    } interpreter;
    EXPECT_EQ(failure([&] { interpreter.initialize(nullptr, nullptr, nullptr, {}, {}); }),
              "6: Invalid shared library handle");
    EXPECT_EQ(failure([] { static_cast<void>(LibraryParameterInterpreter::create(VIDEO_DEVICE)); }),
              "6: ImplType mismatch");
    EXPECT_THAT(failure([] { static_cast<void>(LibraryParameterInterpreter::create(testGuid(99))); }),
                StartsWith("6: "));
}

TEST_F(ParameterInterpreterTest, EveryMissingFunctionIsNamedByTheCallThatNeedsIt) {
    const Interpreter poor = LibraryParameterInterpreter::create(BACK_END_WITHOUT_OPERATIONS);
    poor->initialize(nullptr, noTransfer, noTransfer, {}, {});
    for (const Operation& operation : operationsOf(poor))
        EXPECT_EQ(failure(operation.call),
                  std::string("5: the parameter back-end does not export the function ") +
                      operation.function);

    const Interpreter silent = LibraryParameterInterpreter::create(BACK_END_WITHOUT_REPORTS);
    silent->initialize(nullptr, noTransfer, noTransfer, {}, {});
    EXPECT_CALL(backEnd, writeSystemState).WillOnce(Return(failed));
    EXPECT_EQ(failure([&] { silent->write(state); }),
              "4: Failed to set system state: couldn't retrieve last error")
        << "where an error has no text, it is still the error that is reported";
    access(AccessMode_READ_WRITE);
    EXPECT_EQ(failure([&] { static_cast<void>(silent->getParameterRange(ParameterType_INT_4)); }),
              "5: the parameter back-end does not export the function getParameterRange");
    EXPECT_EQ(failure([&] { silent->dispose(); }),
              "5: the parameter back-end does not export the function destroyInstance");
    silent->dispose();

    const Interpreter lifeless = LibraryParameterInterpreter::create(BACK_END_WITHOUT_LIFE);
    EXPECT_EQ(failure([&] { lifeless->initialize(nullptr, noTransfer, noTransfer, {}, {}); }),
              "5: the parameter back-end does not export the function initialize");
}

// The other values pass through in the tests of the cameras' own back-end.
TEST_F(ParameterInterpreterTest, PassesModesAndAnyTruthThrough) {
    EXPECT_CALL(backEnd, readInt(ParameterType_RAW_OUTPUT_MODE, _))
        .WillOnce(DoAll(SetArgPointee<1>(2), Return(success)));
    EXPECT_EQ(parameters->getRawOutputMode(), RawOutputMode_TAPS);
    EXPECT_CALL(backEnd, readBool(ParameterType_BOOL_7, _)).WillOnce([](ParameterType, bool* value) {
        std::memset(value, 0x40, 1); // a C back-end's idea of true
        return success;
    });
    aBool = false;
    parameters->read(ParameterType_BOOL_7, &aBool);
    EXPECT_TRUE(aBool);
}

TEST_F(ParameterInterpreterTest, ErrorCodesBecomeTheStatedExceptions) {
    const std::function<void()> withoutPlace[] = {
        [&] { parameters->read(ParameterType_FLOAT_0, static_cast<float*>(nullptr)); },
        [&] { parameters->read(ParameterType_INT_4, static_cast<int*>(nullptr)); },
        [&] { parameters->read(ParameterType_BOOL_7, static_cast<bool*>(nullptr)); },
        [&] { parameters->writeCalibration(nullptr); }, [&] { parameters->readCalibration(nullptr); }};
    for (const auto& call : withoutPlace)
        EXPECT_THAT(failure(call), StartsWith("3: "));
    ErrorCode code = success;
    const auto fails = [&](auto...) { return code; };
#define FAILS(function, ...) EXPECT_CALL(backEnd, function).Times(AnyNumber()).WillRepeatedly(fails);
    BACK_END_OPERATIONS(FAILS)
#undef FAILS
    for (const Operation& operation : operationsOf(parameters)) {
        if (!operation.failure)
            continue;
        // Only for writes does "out of range" differ from any other failure.
        const std::string name = operation.function;
        const bool isWrite = name.rfind("write", 0) == 0 || name.rfind("set", 0) == 0;
        for (const ErrorCode failing : {outOfRange, failed, tooSmall, ErrorCode(1)}) {
            code = failing;
            EXPECT_EQ(failure(operation.call),
                      isWrite && code == outOfRange ? "3: value out of range" : operation.failure)
                << operation.failure << ", code " << code;
        }
    }
    EXPECT_EQ(aFloat, 5);
    EXPECT_EQ(anInt, 6);
    EXPECT_TRUE(aBool);
    parameters->dispose();
    EXPECT_EQ(failure([&] { parameters->write(ParameterType_INT_4, 1); }),
              "7: cannot call writeInt: the parameter interpreter is not initialized");
    EXPECT_THAT(failure([&] { parameters->read(state); }), StartsWith("7: "));
}

TEST_F(ParameterInterpreterTest, ParameterNumbersHaveTheirValueTypes) {
    std::string types;
    for (int number = -2; number <= 16; ++number)
        types += std::to_string(ParameterInterpreter::getParameterValueType(ParameterType(number)));
    EXPECT_EQ(types, "00"
                     "1111211312221432"
                     "0");
}

TEST_F(ParameterInterpreterTest, LastErrorIsRetrievedOrReplaced) {
    const auto silent = [](ErrorCode first, unsigned int length, ErrorCode second) {
        return [=](char* buffer, unsigned int* size) {
            *size = buffer ? *size : length;
            return buffer ? second : first;
        };
    };
    const std::tuple<const char*, std::function<ErrorCode(char*, unsigned int*)>, const char*> rows[]{
        {"text", answer(text("overheated")), "overheated"},
        {"text up to its NUL", answer(text(std::string("hot\0cold", 8))), "hot"},
        {"empty text", answer(text(std::string("\0", 1))), ""},
        {"no length needed", silent(success, 4, success), "couldn't retrieve last error"},
        {"no text", silent(tooSmall, 0, success), "couldn't retrieve last error"},
        {"incredible length", silent(tooSmall, std::numeric_limits<unsigned int>::max(), success),
         "couldn't retrieve last error"},
        {"second call fails", silent(tooSmall, 4, failed), "couldn't retrieve last error"},
    };
    for (const auto& [name, getLastError, text] : rows) {
        EXPECT_CALL(backEnd, writeSystemState).WillOnce(Return(failed));
        EXPECT_CALL(backEnd, getLastError).WillRepeatedly(getLastError);
        EXPECT_EQ(failure([&] { parameters->write(ParameterRequestMap()); }),
                  std::string("4: Failed to set system state: ") + text)
            << name;
    }
}

/// A system state of one entry.
ParameterRequestMap stateOf(ParameterType parameter, Utils::SmartPtr<xuRequest> request) {
    ParameterRequestMap state;
    state[parameter] = std::move(request);
    return state;
}

TEST_F(ParameterInterpreterTest, SystemStateIsWrittenEntryByEntry) {
    const auto aFloat = makeRefcounted<setFloatParameterRequest>(ParameterType(9), -2.5F);
    const auto anInt = makeRefcounted<setIntParameterRequest>(ParameterType(4), -2);
    const auto on = makeRefcounted<setBoolParameterRequest>(ParameterType(7), true);
    const auto off = makeRefcounted<setBoolParameterRequest>(ParameterType(14), false);
    // Its words are cut and it goes under its own number.
    const auto region =
        makeRefcounted<setRegionOfInterestRequest>(RegionOfInterestInternal{1, 0x12345, 0xFFFF, 0x10000});
    const auto command = makeRefcounted<UVCCommandRequest>(UVC_ADC_VALUE, 1U, 2U);
    const auto byTypeAlone = makeRefcounted<setParameterRequest>(XU_SET_FLOAT_PARAMETER, ParameterType(0));
    const std::tuple<ParameterType, Utils::SmartPtr<xuRequest>, Bytes> rows[]{
        {ParameterType(2), aFloat, {2, 0, 0, 0x20, 0xC0}},
        {ParameterType(4), anInt, {4, 0xFE, 0xFF, 0xFF, 0xFF}},
        {ParameterType(7), on, {7, 0xFF}},
        {ParameterType(14), off, {14, 0}},
        {ParameterType(1), region, {13, 1, 0, 0x45, 0x23, 0xFF, 0xFF, 0, 0}},
        {ParameterType(0), command, {}},
        {ParameterType(0), byTypeAlone, {}},
        {ParameterType(0), nullptr, {}}};
    for (const auto& [key, request, bytes] : rows) {
        Bytes written = {0xEE};
        EXPECT_CALL(backEnd, writeSystemState)
            .WillOnce([&](const unsigned char* buffer, unsigned int length) {
                written.assign(buffer, buffer + length);
                return success;
            });
        parameters->write(stateOf(key, request));
        EXPECT_EQ(written, bytes) << key;
    }
    EXPECT_CALL(backEnd, writeSystemState(testing::NotNull(), 0)).WillOnce(Return(success));
    parameters->write(ParameterRequestMap());
}

TEST_F(ParameterInterpreterTest, NumbersPastOneByteAreRefusedNotCut) {
    const auto request = makeRefcounted<setBoolParameterRequest>(ParameterType(2), true);
    for (const int number : {-1, 256, 256 + 2, std::numeric_limits<int>::max()}) {
        const std::string reason =
            "the number of parameter " + std::to_string(number) + " does not fit one byte";
        // The back-end is asked for nothing.
        ParameterRequestMap state = stateOf(ParameterType(number), request);
        EXPECT_EQ(failure([&] { parameters->write(state); }), "3: Failed to set system state: " + reason);
        EXPECT_EQ(failure([&] { parameters->read(state); }), "4: Failed to get system state: " + reason);
        // A region has the number 13, and what has no entry has no number.
        EXPECT_CALL(backEnd, writeSystemState(_, 9)).WillOnce(Return(success));
        parameters->write(stateOf(ParameterType(number), makeRefcounted<setRegionOfInterestRequest>()));
        EXPECT_CALL(backEnd, writeSystemState(_, 0)).WillOnce(Return(success));
        parameters->write(stateOf(ParameterType(number), makeRefcounted<UVCCommandRequest>()));
    }
}

TEST_F(ParameterInterpreterTest, SystemStateIsReadIntoTheRequests) {
    const auto aFloat = makeRefcounted<setFloatParameterRequest>(ParameterType(2), 1.0F);
    const auto anInt = makeRefcounted<setIntParameterRequest>(ParameterType(4), 2);
    const auto aBool = makeRefcounted<setBoolParameterRequest>(ParameterType(7), false);
    const auto region = makeRefcounted<setRegionOfInterestRequest>(RegionOfInterestInternal{1, 1, 1, 1});
    // Parameter 3 is a float and 9 an integer; the requests say the opposite, and get the raw bits.
    const auto floatAsInt = makeRefcounted<setIntParameterRequest>(ParameterType(3), 0);
    const auto intAsFloat = makeRefcounted<setFloatParameterRequest>(ParameterType(9), 0.0F);
    ParameterRequestMap requests{{ParameterType(2), aFloat},
                                 {ParameterType(4), anInt},
                                 {ParameterType(7), aBool},
                                 {ParameterType(13), region},
                                 {ParameterType(3), floatAsInt},
                                 {ParameterType(9), intAsFloat},
                                 {ParameterType(10), makeRefcounted<UVCCommandRequest>()}};
    EXPECT_CALL(backEnd, readSystemState).WillOnce([](unsigned char* buffer, unsigned int length) {
        EXPECT_EQ(length, 5U + 5U + 2U + 9U + 5U + 5U);
        // The order of entries is the map's; any other serves as well.
        const Bytes bytes = {13, 1, 0, 0xFF, 0xFF, 3, 0, 4, 0x80, 7,    2, 4, 0xFE, 0xFF, 0xFF, 0xFF,
                             2,  0, 0, 0x20, 0xC0, 3, 0, 0, 0x80, 0x3F, 9, 0, 0,    0x80, 0x3F};
        std::memcpy(buffer, bytes.data(), bytes.size());
        return success;
    });
    parameters->read(requests);
    EXPECT_EQ(aFloat->getValue(), -2.5F);
    EXPECT_EQ(anInt->getValue(), -2);
    EXPECT_TRUE(aBool->getValue()) << "any byte but 0 is true";
    EXPECT_EQ(region->getRegion(), (RegionOfInterestInternal{1, 0xFFFF, 3, 0x8004}));
    EXPECT_EQ(floatAsInt->getValue(), 0x3F800000);
    EXPECT_EQ(intAsFloat->getValue(), 1.0F);
}

TEST_F(ParameterInterpreterTest, BadSystemStateChangesNothing) {
    // What a back-end makes of a float's five bytes, or of a region's nine.
    const std::tuple<const char*, Bytes, std::string> rows[]{
        {"unknown number", {16, 0, 0, 0, 0}, "unknown parameter 16 at offset 0"},
        {"not in the map", {3, 0, 0, 0, 0}, "parameter 3 at offset 0 was not asked for"},
        {"request without bytes", {9, 0, 0, 0, 0}, "parameter 9 at offset 0 was not asked for"},
        {"request of another kind", {14, 1, 14, 1, 14}, "parameter 14 at offset 0 was not asked for"},
        {"cut by one byte", {7, 1, 7, 1, 7}, "the entry of parameter 7 at offset 4 is cut short"},
        {"cut region", {13, 1, 0, 1, 0}, "the entry of parameter 13 at offset 0 is cut short"},
        {"cut behind a whole entry", {7, 1, 2, 0, 0}, "the entry of parameter 2 at offset 2 is cut short"},
    };
    for (auto [name, entries, reason] : rows) {
        const auto aFloat = makeRefcounted<setFloatParameterRequest>(ParameterType(2), 1.0F);
        const auto sleeping = makeRefcounted<setBoolParameterRequest>(ParameterType(7), false);
        ParameterRequestMap state{{ParameterType(2), aFloat},
                                  {ParameterType(14), makeRefcounted<UVCCommandRequest>()},
                                  {ParameterType(7), sleeping},
                                  {ParameterType(9), makeRefcounted<UVCCommandRequest>()}};
        EXPECT_CALL(backEnd, readSystemState)
            .WillOnce([&bytes = entries](unsigned char* buffer, unsigned int length) {
                EXPECT_EQ(length, 7U);
                // The bytes, and what fills the rest so that it would be read as false.
                const Bytes filler = {7, 0};
                std::memcpy(buffer, filler.data(), 2);
                std::memcpy(buffer + 2, bytes.data(), bytes.size());
                return success;
            });
        const std::size_t digit = reason.find("offset ") + 7;
        reason[digit] = static_cast<char>(reason[digit] + 2);
        EXPECT_EQ(failure([&] { parameters->read(state); }), "4: Failed to get system state: " + reason)
            << name;
        EXPECT_EQ(aFloat->getValue(), 1.0F) << name;
        EXPECT_FALSE(sleeping->getValue()) << name;
    }
    ParameterRequestMap empty;
    EXPECT_CALL(backEnd, readSystemState).WillOnce(Return(failed));
    EXPECT_EQ(failure([&] { parameters->read(empty); }), "4: Failed to get system state: overheated");
}

TEST_F(ParameterInterpreterTest, RangesAreDecodedForWhatCanBeWrittenAndBadOnesRefused) {
    EXPECT_CALL(backEnd, getParameterRange(ParameterType_INT_4, _, _))
        .WillRepeatedly(answer(Bytes{0, 1, 0, 0, 0, 9, 0, 0, 0, 2, 0, 0, 0}));
    for (const auto mode : {AccessMode_WRITE, AccessMode_READ_WRITE}) {
        access(mode);
        const auto range = parameters->getParameterRange(ParameterType_INT_4);
        EXPECT_EQ(dynamic_cast<const ParameterRangeInternal<int>&>(*range).getMax(), 9);
    }
    // Asked for neither when it cannot be written nor for a boolean.
    for (const auto mode : {AccessMode_NONE, AccessMode_READ, AccessMode(4)}) {
        access(mode);
        EXPECT_FALSE(parameters->getParameterRange(ParameterType_FLOAT_0));
    }
    access(AccessMode_READ_WRITE);
    EXPECT_FALSE(parameters->getParameterRange(ParameterType_BOOL_14));

    EXPECT_CALL(backEnd, getParameterRange).WillOnce(Return(success));
    EXPECT_EQ(rangeFailure(ParameterType_INT_4), "5: failed to get parameter range: overheated");

    const auto lie = [](unsigned int announced, ErrorCode second, unsigned int filled) {
        return [=](ParameterType, unsigned char* buffer, unsigned int* length) {
            *length = buffer ? filled : announced;
            return buffer ? second : tooSmall;
        };
    };
    const std::tuple<const char*, std::function<ErrorCode(ParameterType, unsigned char*, unsigned int*)>,
                     const char*>
        rows[]{
            {"second call fails", lie(13, failed, 13), "overheated"},
            {"incredible length", lie(0xFFFFFFFF, success, 13), "the back-end announces 4294967295 bytes"},
            {"nothing", lie(0, success, 0), "the back-end returned no valid range"},
            {"filled less than it said", lie(13, success, 5), "the back-end returned no valid range"},
            {"filled more than there was room", lie(12, success, 13), "the back-end returned no valid range"},
            {"unknown form", answer(Bytes(53, 9)), "the back-end returned no valid range"},
        };
    for (const auto& [name, getParameterRange, reason] : rows) {
        EXPECT_CALL(backEnd, getParameterRange).WillRepeatedly(getParameterRange);
        EXPECT_EQ(rangeFailure(ParameterType_INT_4),
                  std::string("5: failed to get parameter range for 4: ") + reason)
            << name;
    }
}

// What is there travels in the tests of the cameras' own back-end.
TEST_F(ParameterInterpreterTest, AnEmptyCalibrationIsNoFailure) {
    EXPECT_CALL(backEnd, writeCalibration(_, 0)).WillOnce(Return(success));
    parameters->writeCalibration(&calibration);
    EXPECT_CALL(backEnd, readCalibration).WillRepeatedly(answer(Bytes()));
    calibration.setPhaseDelay(5);
    parameters->readCalibration(&calibration);
    EXPECT_EQ(calibration.getPhaseDelay(), 5);
}

TEST_F(ParameterInterpreterTest, CalibrationFailuresAreOfTheNotSupportedKind) {
    const auto readFailure = [&] { return failure([&] { parameters->readCalibration(&calibration); }); };
    EXPECT_CALL(backEnd, writeCalibration).WillOnce(Return(outOfRange));
    EXPECT_EQ(failure([&] { parameters->writeCalibration(&calibration); }),
              "5: failed to write calibration: overheated");
    const char* const unread = "5: failed to read calibration: overheated";
    EXPECT_CALL(backEnd, readCalibration).WillOnce(Return(success));
    EXPECT_EQ(readFailure(), unread);
    EXPECT_CALL(backEnd, readCalibration)
        .WillOnce(DoAll(SetArgPointee<1>(6U), Return(tooSmall)))
        .WillOnce(Return(failed));
    EXPECT_EQ(readFailure(), unread);
    EXPECT_CALL(backEnd, readCalibration).WillOnce(DoAll(SetArgPointee<1>(0xFFFFFFFFU), Return(tooSmall)));
    EXPECT_EQ(readFailure(), "5: failed to read calibration: the back-end announces 4294967295 bytes");
    EXPECT_CALL(backEnd, readCalibration).WillRepeatedly(answer(Bytes{0x40, 1, 60, 0, 2, 1}));
    EXPECT_EQ(readFailure(), "5: failed to unmarshal calibration");
    EXPECT_EQ(calibration, CalibrationInternal());
}

// What goes well is shown by the nodes of the simulated cameras.
TEST_F(ParameterInterpreterTest, TransfersThatAProxyRefusesFailWithACode) {
    Script script;
    script.onCall = [&](int, deviceRequest* request) {
        const auto* const send = dynamic_cast<xuSendRequest*>(request);
        const auto* const receive = dynamic_cast<xuRecvRequest*>(request);
        if ((send && send->getUnit() == 4) || (receive && receive->getUnit() == 4))
            throw Plugin::IOPluginException("stall");
    };
    VideoDeviceProxy device(VIDEO_DEVICE, true);
    EXPECT_CALL(backEnd, initialize)
        .WillOnce([](int, void* context, Transfer* set, Transfer* get, const HardwareIDs* ids, auto) {
            EXPECT_EQ(ids->vendorId, 1U);
            unsigned char sent[] = {10, 20};
            EXPECT_EQ(set(context, 3, 77, sent, 2), success);
            EXPECT_EQ(set(context, 4, 77, sent, 2), ErrorCode_IO);
            EXPECT_EQ(get(context, 4, 77, sent, 2), ErrorCode_IO);
            EXPECT_EQ(set(context, 3, 77, nullptr, 2), ErrorCode_IO);
            EXPECT_EQ(get(context, 3, 77, nullptr, 2), ErrorCode_IO);
            return get(context, 4, 77, sent, 2);
        });
    EXPECT_EQ(failure([&] { parameters->initialize(device, {1, 2, 3, 4}, {}); }), "4: stall");
}

} // namespace
} // namespace Testing
