#pragma once

#include <utility>

#include <zentara/io/parameter_back_end.h>
#include <zentara/plugin/call_plugin.h>
#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/dynamic_library.h>
#include <zentara/utils/format.h>

namespace Zentara::IO {

template<typename Signature>
class BackEndFunction;

/// One function of a back-end, found by its name.
template<typename Result, typename... Arguments>
class BackEndFunction<Result(Arguments...)> {
public:
    constexpr explicit BackEndFunction(const char* exportName) : name(exportName) {}

    /// A missing function is noticed when it is called.
    void lookUp(void* library) {
        function = reinterpret_cast<Result (*)(Arguments...)>(Utils::getFunction(library, name));
    }

    [[nodiscard]] bool exists() const { return function != nullptr; }
    [[nodiscard]] const char* getName() const { return name; }

    Result operator()(Arguments... arguments) const {
        if (!function)
            throw Plugin::NotSupportedPluginException(
                Utils::Format("the parameter back-end does not export the function %") % name);
        return Plugin::callPlugin([&] { return function(arguments...); });
    }

private:
    const char* name; ///< of the export
    Result (*function)(Arguments...) = nullptr;
};

/// All functions of a back-end.
struct BackEndFunctions {
    BackEndFunction<BackEnd::CreateInstance> createInstance{"createInstance"};
    BackEndFunction<BackEnd::DestroyInstance> destroyInstance{"destroyInstance"};
    BackEndFunction<BackEnd::Initialize> initialize{"initialize"};
    BackEndFunction<BackEnd::Dispose> dispose{"dispose"};
    BackEndFunction<BackEnd::GetUnitType> getUnitType{"getUnitType"};
    BackEndFunction<BackEnd::GetAccessMode> getAccessMode{"getAccessMode"};
    BackEndFunction<BackEnd::ReadFloat> readFloat{"readFloat"};
    BackEndFunction<BackEnd::WriteFloat> writeFloat{"writeFloat"};
    BackEndFunction<BackEnd::ReadInt> readInt{"readInt"};
    BackEndFunction<BackEnd::WriteInt> writeInt{"writeInt"};
    BackEndFunction<BackEnd::ReadBool> readBool{"readBool"};
    BackEndFunction<BackEnd::WriteBool> writeBool{"writeBool"};
    BackEndFunction<BackEnd::SetRegionOfInterest> setRegionOfInterest{"setRegionOfInterest"};
    BackEndFunction<BackEnd::GetRegionOfInterest> getRegionOfInterest{"getRegionOfInterest"};
    BackEndFunction<BackEnd::GetLastError> getLastError{"getLastError"};
    BackEndFunction<BackEnd::ReadSystemState> readSystemState{"readSystemState"};
    BackEndFunction<BackEnd::WriteSystemState> writeSystemState{"writeSystemState"};
    BackEndFunction<BackEnd::GetParameterRange> getParameterRange{"getParameterRange"};
    BackEndFunction<BackEnd::WriteCalibration> writeCalibration{"writeCalibration"};
    BackEndFunction<BackEnd::ReadCalibration> readCalibration{"readCalibration"};
    BackEndFunction<BackEnd::GetPhaseScaling> getPhaseScaling{"getPhaseScaling"};

    void lookUp(void* library);
};

} // namespace Zentara::IO
