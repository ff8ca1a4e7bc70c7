#include <cstdint>
#include <cstring>
#include <exception>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <zentara/core/depth_node_interface.h>
#include <zentara/core/descriptor_store_ro.h>
#include <zentara/host/failure.h>
#include <zentara/io/library_parameter_interpreter.h>
#include <zentara/io/parameter_back_end.h>
#include <zentara/io/video_device_proxy.h>
#include <zentara/utils/dynamic_library.h>
#include <zentara/utils/format.h>

#include "host/cameras/open_node.h"
#include "host/plugins/check/check_subject.h"

namespace Zentara::Host::Check {
namespace {

using Utils::Format;
using namespace IO::BackEnd;

constexpr auto unknownParameter = static_cast<ParameterType>(9999);

/// The camera behind the callbacks: a real one while there is one, else what answers each transfer alike.
struct AskedCamera {
    IO::VideoDeviceProxy* device = nullptr;
    ErrorCode code = ErrorCode_SUCCESS;
    unsigned char fill = 0;
};

/// Nothing is thrown through a back-end.
template<typename Work>
ErrorCode transfer(IO::VideoDeviceProxy* device, Work work) noexcept {
    try {
        work(*device);
        return ErrorCode_SUCCESS;
    } catch (const std::exception&) {
        return ErrorCode_IO;
    }
}

ErrorCode setOnCamera(void* context, unsigned short unit, unsigned int selector, unsigned char* data,
                      unsigned int length) {
    const auto& camera = *static_cast<AskedCamera*>(context);
    if (camera.device == nullptr)
        return camera.code;
    return transfer(camera.device, [&](IO::VideoDeviceProxy& device) {
        device.send(unit, static_cast<std::int32_t>(selector), length, data);
    });
}

ErrorCode getFromCamera(void* context, unsigned short unit, unsigned int selector, unsigned char* data,
                        unsigned int length) {
    const auto& camera = *static_cast<AskedCamera*>(context);
    if (camera.device == nullptr) {
        if (camera.code == ErrorCode_SUCCESS && data != nullptr)
            std::memset(data, camera.fill, length);
        return camera.code;
    }
    return transfer(camera.device, [&](IO::VideoDeviceProxy& device) {
        device.recv(unit, static_cast<std::int32_t>(selector), length, data, false);
    });
}

class BackEndCheck {
public:
    BackEndCheck(Subject& checked, void* loaded) : subject(checked), run(checked.run), library(loaded) {}

    void all() {
        found = findNode(subject, [this](const NodeEvent&, const Core::DescriptorStoreRO& view) {
            return isSame(view.getParameterInterpreterGUID(), subject.guid);
        });
        openCamera();
        if (!create())
            return;
        tryUninitialised();
        if (initialize("Initialize")) {
            if (camera.device != nullptr)
                tryParameters("of the camera");
            tryBuffers();
            camera.device = nullptr;
            tryParameters("of a camera that answers with zeros");
            camera.fill = 0xFF;
            tryParameters("of a camera that answers with ones");
            camera.code = ErrorCode_IO;
            tryParameters("of a camera that fails");
            status(
                "Dispose", Wanted::Success, [this] { return function<Dispose>("Dispose")(instance); },
                endingPart);
            camera = {node ? (*node)->getAVDeviceProxy() : nullptr, ErrorCode_SUCCESS, 0};
            initialize("Initialize once more");
            status(
                "Dispose once more", Wanted::Success,
                [this] { return function<Dispose>("Dispose")(instance); }, endingPart);
        }
        run.step({endingPart, "DestroyInstance"}, Wanted::Success, [this] {
            function<DestroyInstance>("DestroyInstance")(instance);
            return "";
        });
        trySecond();
        tryInterpreter();
        node.reset();
    }

private:
    template<typename Function>
    [[nodiscard]] Function* function(const char* name) const {
        std::string exported = name;
        exported.front() = static_cast<char>(exported.front() - 'A' + 'a');
        return reinterpret_cast<Function*>(Utils::getFunction(library, exported));
    }

    /// \param wanted Refusal: another code than 0; Success: 0
    void status(const std::string& name, Wanted wanted, const std::function<ErrorCode()>& work,
                const char* part = operationsPart) {
        run.step({part, name}, Wanted::Success, [&]() -> std::string {
            const ErrorCode code = work();
            if (wanted == Wanted::Success && code != ErrorCode_SUCCESS)
                throw Finding{StepVerdict::Failed, Format("code %: %") % static_cast<int>(code) % lastError(),
                              "a host gets a failure where it asked for nothing wrong",
                              "make it work, and return 0"};
            if (wanted == Wanted::Refusal && code == ErrorCode_SUCCESS)
                throw Finding{StepVerdict::Failed, "code 0",
                              "a host takes what it reads for a value of the camera's",
                              "return ErrorCode_NOT_SUPPORTED, ErrorCode_OUT_OF_RANGE or ErrorCode_IO"};
            return Format("code %") % static_cast<int>(code);
        });
    }

    std::string lastError() {
        unsigned int length = 0;
        auto* const ask = function<GetLastError>("GetLastError");
        if (instance == nullptr || ask(instance, nullptr, &length) != ErrorCode_BUFFER_TOO_SMALL ||
            length > 65536)
            return "no text";
        std::string text(length, '\0');
        if (ask(instance, text.data(), &length) != ErrorCode_SUCCESS)
            return "no text";
        return text.substr(0, text.find('\0'));
    }

    void openCamera() {
        if (found.view() == nullptr)
            return;
        run.step({objectPart, "the camera is opened"}, Wanted::Success, [this] {
            try {
                node.emplace(found.event, Note());
                camera.device = (*node)->getAVDeviceProxy();
            } catch (const Failure& failure) {
                throw Finding{StepVerdict::NotRun, failure.what(), "",
                              "mend the camera's node or device first"};
            }
        });
    }

    bool create() {
        return run.step({objectPart, "createInstance"}, Wanted::Success, [this]() -> std::string {
            instance = function<CreateInstance>("CreateInstance")();
            if (instance == nullptr)
                throw Finding{StepVerdict::Failed, "null", "a host has no parameters",
                              "return a new instance"};
            return {};
        });
    }

    bool initialize(const char* name) {
        HardwareIDs ids{};
        HardwareVersionInternal version;
        if (const Core::DescriptorStoreRO* const view = found.view()) {
            ids = view->getNodeHardwareIDs();
            version = view->getHardwareVersion();
        }
        bool ready = false;
        run.step({operationsPart, name}, Wanted::Success, [&]() -> std::string {
            const ErrorCode code = function<Initialize>("Initialize")(instance, &camera, setOnCamera,
                                                                      getFromCamera, &ids, &version);
            ready = code == ErrorCode_SUCCESS;
            if (!ready && camera.device != nullptr)
                throw Finding{StepVerdict::Failed, Format("code %: %") % static_cast<int>(code) % lastError(),
                              "a host has no parameters",
                              "return 0 for the hardware that the description tells"};
            return Format("code %") % static_cast<int>(code);
        });
        return ready;
    }

    void tryUninitialised() {
        float value = 0;
        status("ReadFloat before Initialize", Wanted::Refusal,
               [&] { return function<ReadFloat>("ReadFloat")(instance, ParameterType_FLOAT_0, &value); });
        status("GetUnitType of an unknown parameter before Initialize", Wanted::Refusal, [&] {
            UnitType unit{};
            return function<GetUnitType>("GetUnitType")(instance, unknownParameter, &unit);
        });
    }

    void tryParameters(const std::string& whose) {
        int number = 0;
        float value = 0;
        bool flag = false;
        UnitType unit{};
        AccessMode mode{};
        RegionOfInterestInternal region{};
        const RegionOfInterestInternal wrong{0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF};
        const auto any = Wanted::Either;
        const auto no = Wanted::Refusal;
        const auto ask = [&](const char* name, Wanted wanted, const std::function<ErrorCode()>& work) {
            status(std::string(name) + " " + whose, wanted, work);
        };
        ask("GetUnitType", any,
            [&] { return function<GetUnitType>("GetUnitType")(instance, ParameterType_FLOAT_0, &unit); });
        ask("GetAccessMode", any,
            [&] { return function<GetAccessMode>("GetAccessMode")(instance, ParameterType_FLOAT_0, &mode); });
        ask("ReadFloat", any,
            [&] { return function<ReadFloat>("ReadFloat")(instance, ParameterType_FLOAT_0, &value); });
        ask("ReadInt", any,
            [&] { return function<ReadInt>("ReadInt")(instance, ParameterType_INT_4, &number); });
        ask("ReadBool", any,
            [&] { return function<ReadBool>("ReadBool")(instance, ParameterType_BOOL_7, &flag); });
        ask("GetRegionOfInterest", any,
            [&] { return function<GetRegionOfInterest>("GetRegionOfInterest")(instance, &region); });
        ask("GetPhaseScaling", any,
            [&] { return function<GetPhaseScaling>("GetPhaseScaling")(instance, &value); });
        ask("ReadFloat of an unknown parameter", no,
            [&] { return function<ReadFloat>("ReadFloat")(instance, unknownParameter, &value); });
        ask("ReadInt of an unknown parameter", no,
            [&] { return function<ReadInt>("ReadInt")(instance, unknownParameter, &number); });
        ask("ReadBool of an unknown parameter", no,
            [&] { return function<ReadBool>("ReadBool")(instance, unknownParameter, &flag); });
        ask("WriteFloat to an unknown parameter", no,
            [&] { return function<WriteFloat>("WriteFloat")(instance, unknownParameter, 1e30F); });
        ask("WriteInt to an unknown parameter", no,
            [&] { return function<WriteInt>("WriteInt")(instance, unknownParameter, -1); });
        ask("WriteBool to an unknown parameter", no,
            [&] { return function<WriteBool>("WriteBool")(instance, unknownParameter, true); });
        ask("SetRegionOfInterest beyond every sensor", no,
            [&] { return function<SetRegionOfInterest>("SetRegionOfInterest")(instance, &wrong); });
    }

    /// What is answered into buffers: the length first, then the bytes, and bytes that mean nothing.
    void tryBuffers() {
        std::vector<unsigned char> bytes(64, 0xEE);
        const auto length = static_cast<unsigned int>(bytes.size());
        twice("GetLastError", [this](unsigned char* buffer, unsigned int* size) {
            return function<GetLastError>("GetLastError")(instance, reinterpret_cast<char*>(buffer), size);
        });
        twice("GetParameterRange", [this](unsigned char* buffer, unsigned int* size) {
            return function<GetParameterRange>("GetParameterRange")(instance, ParameterType_FLOAT_0, buffer,
                                                                    size);
        });
        twice("GetParameterRange of an unknown parameter", [this](unsigned char* buffer, unsigned int* size) {
            return function<GetParameterRange>("GetParameterRange")(instance, unknownParameter, buffer, size);
        });
        twice("ReadCalibration", [this](unsigned char* buffer, unsigned int* size) {
            return function<ReadCalibration>("ReadCalibration")(instance, buffer, size);
        });
        status("ReadSystemState of entries that mean nothing", Wanted::Refusal,
               [&] { return function<ReadSystemState>("ReadSystemState")(instance, bytes.data(), length); });
        status("WriteSystemState of entries that mean nothing", Wanted::Refusal, [&] {
            return function<WriteSystemState>("WriteSystemState")(instance, bytes.data(), length);
        });
        const std::vector<unsigned char> cut{0, 0, 0};
        status("WriteSystemState of an entry that is cut short", Wanted::Refusal,
               [&] { return function<WriteSystemState>("WriteSystemState")(instance, cut.data(), 3); });
        status("WriteCalibration of bytes that are none", Wanted::Refusal, [&] {
            return function<WriteCalibration>("WriteCalibration")(instance, bytes.data(), length);
        });
        status("WriteCalibration of no bytes", Wanted::Either,
               [&] { return function<WriteCalibration>("WriteCalibration")(instance, bytes.data(), 0); });
    }

    void twice(const std::string& name, const std::function<ErrorCode(unsigned char*, unsigned int*)>& work) {
        run.step({operationsPart, name + ", its length and its bytes"}, Wanted::Success,
                 [&]() -> std::string {
                     unsigned int needed = 0;
                     const ErrorCode first = work(nullptr, &needed);
                     if (first != ErrorCode_BUFFER_TOO_SMALL)
                         return Format("code %") % static_cast<int>(first);
                     if (needed > 1 << 20)
                         throw Finding{StepVerdict::Failed, Format("wants a buffer of % bytes") % needed,
                                       "a host fails for lack of memory", "store the length that is needed"};
                     std::vector<unsigned char> buffer(needed + 64, 0xA5);
                     unsigned int filled = needed;
                     const ErrorCode second = work(buffer.data(), &filled);
                     for (std::size_t index = needed; index < buffer.size(); ++index)
                         if (buffer[index] != 0xA5)
                             throw Finding{StepVerdict::Failed, "wrote beyond the buffer that it asked for",
                                           "memory of the host is overwritten",
                                           "fill no more than the length that comes in"};
                     if (second == ErrorCode_SUCCESS && filled > needed)
                         throw Finding{
                             StepVerdict::Failed, Format("says it filled % of % bytes") % filled % needed,
                             "a host reads what was never filled", "store how much of the buffer it filled"};
                     return Format("% bytes, then code %") % needed % static_cast<int>(second);
                 });
    }

    void trySecond() {
        run.step({threadsPart, "an instance on another thread"}, Wanted::Success, [this] {
            OtherThread().run([this] {
                void* const other = function<CreateInstance>("CreateInstance")();
                if (other != nullptr)
                    function<DestroyInstance>("DestroyInstance")(other);
            });
        });
    }

    /// As hosts use it: through the interpreter, on a camera that is there.
    void tryInterpreter() {
        if (!node)
            return;
        run.step({operationsPart, "each parameter of the description, read and written back on the camera"},
                 Wanted::Success, [this]() -> std::string {
                     const auto interpreter = IO::LibraryParameterInterpreter::create(subject.guid);
                     interpreter->initialize(*(*node)->getAVDeviceProxy(), found.event.hardwareIds(),
                                             found.view()->getHardwareVersion());
                     std::size_t read = 0;
                     for (const ParameterType parameter : found.view()->getParameters())
                         read += readAndWrite(*interpreter, parameter);
                     interpreter->dispose();
                     return Format("% parameters") % read;
                 });
    }

    static std::size_t readAndWrite(IO::LibraryParameterInterpreter& interpreter, ParameterType parameter) {
        const AccessMode mode = interpreter.getAccessMode(parameter);
        if ((mode & AccessMode_READ) == 0)
            return 0;
        const auto keep = [&](auto value) {
            interpreter.read(parameter, &value);
            if ((mode & AccessMode_WRITE) != 0)
                interpreter.write(parameter, value);
        };
        switch (IO::LibraryParameterInterpreter::getParameterValueType(parameter)) {
        case ParameterValueType_FLOAT:
            keep(0.0F);
            return 1;
        case ParameterValueType_INT:
            keep(0);
            return 1;
        case ParameterValueType_BOOL:
            keep(false);
            return 1;
        default:
            return 0;
        }
    }

    Subject& subject;
    CheckRun& run;
    void* const library;
    FoundNode found;
    std::optional<OpenNode<Core::DepthNodeInterface>> node;
    AskedCamera camera;
    void* instance = nullptr;
};

} // namespace

const std::vector<std::string>& backEndExports() {
    static const std::vector<std::string> names{"destroyInstance",
                                                "initialize",
                                                "dispose",
                                                "getUnitType",
                                                "getAccessMode",
                                                "readFloat",
                                                "writeFloat",
                                                "readInt",
                                                "writeInt",
                                                "readBool",
                                                "writeBool",
                                                "setRegionOfInterest",
                                                "getRegionOfInterest",
                                                "getLastError",
                                                "readSystemState",
                                                "writeSystemState",
                                                "getParameterRange",
                                                "writeCalibration",
                                                "readCalibration",
                                                "getPhaseScaling"};
    return names;
}

void checkBackEnd(Subject& subject, void* library) { BackEndCheck(subject, library).all(); }

} // namespace Zentara::Host::Check
