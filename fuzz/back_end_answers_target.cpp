// Any bytes as what a parameter back-end answers: codes, values, lengths, ranges, calibrations, texts. The interpreter
// never reads more than it was given, and every operation ends with a value or with an exception of ours. Each operation
// is its number and its arguments, each answer its code and its bytes.
#include <cstring>

#include <zentara/calibration_internal.h>
#include <zentara/io/parameter_interpreter.h>
#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/dynamic_library.h>
#include <zentara/utils/environment_variable.h>
#include <zentara/utils/format.h>

#include "core/nodes/fixtures/back_end_script.h"
#include "input.h"

namespace Zentara::Fuzz {
namespace {

using IO::ParameterInterpreter;

/// Answers with the bytes of the input, whatever is asked.
class AnyAnswer final : public Testing::BackEndScript {
public:
    Input* input = nullptr; ///< the driver's

    ErrorCode initialize(int, void*, Testing::Transfer*, Testing::Transfer*, const HardwareIDs*,
                         const HardwareVersionInternal*) override {
        return code();
    }
    ErrorCode dispose() override { return code(); }
    void destroyed() override {}

    ErrorCode getUnitType(ParameterType, UnitType* unit) override { return store(unit); }
    ErrorCode getAccessMode(ParameterType, AccessMode* mode) override { return store(mode); }
    ErrorCode readFloat(ParameterType, float* value) override { return store(value); }
    ErrorCode writeFloat(ParameterType, float) override { return code(); }
    ErrorCode readInt(ParameterType, int* value) override { return store(value); }
    ErrorCode writeInt(ParameterType, int) override { return code(); }
    ErrorCode readBool(ParameterType, bool* value) override { return store(value); }
    ErrorCode writeBool(ParameterType, bool) override { return code(); }
    ErrorCode setRegionOfInterest(const RegionOfInterestInternal*) override { return code(); }
    ErrorCode getRegionOfInterest(RegionOfInterestInternal* region) override { return store(region); }
    ErrorCode readSystemState(unsigned char* buffer, unsigned int length) override {
        input->take(buffer, length);
        return code();
    }
    ErrorCode writeSystemState(const unsigned char*, unsigned int) override { return code(); }
    ErrorCode writeCalibration(const unsigned char*, unsigned int) override { return code(); }
    ErrorCode readCalibration(unsigned char* buffer, unsigned int* length) override {
        return fill(buffer, length);
    }
    ErrorCode getPhaseScaling(float* scaling) override { return store(scaling); }
    ErrorCode getLastError(char* buffer, unsigned int* length) override { return fill(buffer, length); }
    ErrorCode getParameterRange(ParameterType, unsigned char* buffer, unsigned int* length) override {
        return fill(buffer, length);
    }

private:
    /// Success more often than not.
    ErrorCode code() {
        const std::uint8_t byte = input->byte();
        if (byte < 0xC0)
            return ErrorCode_SUCCESS;
        return static_cast<ErrorCode>(byte == 0xFF ? input->number<std::int32_t>() : -(byte & 7));
    }
    template<typename Value>
    ErrorCode store(Value* value) {
        input->take(static_cast<void*>(value), sizeof *value);
        return code();
    }
    /// A length that may be anything, and no byte more than there is room for.
    template<typename Byte>
    ErrorCode fill(Byte* buffer, unsigned int* length) {
        const std::uint8_t announced = input->byte();
        const unsigned int told = announced == 0xFF ? input->number<std::uint32_t>() : announced;
        if (!buffer) {
            *length = told;
            return code() == ErrorCode_SUCCESS ? ErrorCode_BUFFER_TOO_SMALL : code();
        }
        input->take(buffer, *length);
        *length = told;
        return code();
    }
};

class Interpreter final : public ParameterInterpreter {
public:
    Interpreter() : ParameterInterpreter(GUID{}, Utils::loadSharedLibrary(ZENTARA_ANSWERING_BACK_END, 0)) {}
    ~Interpreter() override = default;
};

IO::ParameterRequestMap stateOf(Input& input) {
    IO::ParameterRequestMap state;
    for (unsigned mask = input.number<std::uint16_t>(), number = 0; mask != 0; mask >>= 1, ++number) {
        if ((mask & 1) == 0)
            continue;
        const auto parameter = static_cast<ParameterType>(number);
        switch (ParameterInterpreter::getParameterValueType(parameter)) {
        case ParameterValueType_FLOAT:
            state[parameter] = Utils::makeRefcounted<IO::setFloatParameterRequest>(parameter, 0.0F);
            break;
        case ParameterValueType_INT:
            state[parameter] = Utils::makeRefcounted<IO::setIntParameterRequest>(parameter, 0);
            break;
        default:
            state[parameter] = Utils::makeRefcounted<IO::setBoolParameterRequest>(parameter, false);
            break;
        }
    }
    return state;
}

void operate(ParameterInterpreter& interpreter, Input& input) {
    const std::uint8_t operation = input.byte();
    const auto parameter = static_cast<ParameterType>(input.byte() & 0x1F);
    IO::ParameterRequestMap state;
    CalibrationInternal calibration;
    float real = 0;
    int whole = 0;
    bool flag = false;
    switch (operation % 17) {
    case 0:
        return interpreter.initialize(nullptr, nullptr, nullptr, {}, {});
    case 1:
        return interpreter.dispose();
    case 2:
        return static_cast<void>(interpreter.getUnitType(parameter));
    case 3:
        return static_cast<void>(interpreter.getAccessMode(parameter));
    case 4:
        return interpreter.write(parameter, input.byte() != 0);
    case 5:
        return interpreter.write(parameter, input.number<int>());
    case 6:
        return interpreter.write(parameter, input.number<float>());
    case 7:
        return interpreter.read(parameter, &flag);
    case 8:
        return interpreter.read(parameter, &whole);
    case 9:
        return interpreter.read(parameter, &real);
    case 10:
        state = stateOf(input);
        return interpreter.write(state);
    case 11:
        state = stateOf(input);
        return interpreter.read(state);
    case 12:
        return static_cast<void>(interpreter.getRegionOfInterest());
    case 13:
        return static_cast<void>(interpreter.getParameterRange(parameter));
    case 14:
        return static_cast<void>(interpreter.getRawOutputMode());
    case 15:
        return interpreter.readCalibration(&calibration);
    default:
        return static_cast<void>(interpreter.getPhaseScaling());
    }
}

} // namespace
} // namespace Zentara::Fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace Zentara;
    static Fuzz::AnyAnswer answers;
    static const bool isScripted = [] {
        const std::string address =
            Utils::Format("%{:x}") %
            reinterpret_cast<std::uintptr_t>(static_cast<Testing::BackEndScript*>(&answers));
        Utils::EnvironmentVariable(Testing::scriptVariable).setValue(address.c_str());
        return true;
    }();
    Fuzz::require(isScripted);
    Fuzz::Input input(data, size);
    answers.input = &input;
    static auto* const interpreter =
        new Fuzz::Interpreter; // never ends: the plug-in manager does not know it
    while (!input.isEmpty()) {
        try {
            Fuzz::operate(*interpreter, input);
        } catch (const Plugin::PluginException& failure) {
            Fuzz::require(failure.what() != nullptr);
        }
    }
    try {
        interpreter->dispose();
    } catch (const Plugin::PluginException&) {
        // A back-end that cannot even end.
    }
    return 0;
}
