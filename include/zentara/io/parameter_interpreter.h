#pragma once

#include <exception>
#include <memory>
#include <unordered_map>

#include <zentara/core/impl_type.h>
#include <zentara/core/plugin.h>
#include <zentara/export.h>
#include <zentara/guid.h>
#include <zentara/hardware_ids.h>
#include <zentara/hardware_version_internal.h>
#include <zentara/io/parameter_back_end.h>
#include <zentara/io/parameter_requests.h>
#include <zentara/parameter_range.h>
#include <zentara/parameter_value_type.h>
#include <zentara/raw_output_mode.h>
#include <zentara/utils/smart_ptr.h>

namespace Zentara {
class CalibrationInternal;
}

namespace Zentara::IO {

/// Turns the parameters of a camera into calls of a back-end library (see parameter_back_end.h) and the
/// back-end's error codes into exceptions. `LibraryParameterInterpreter` is one that is ready for use.
///
/// Used in this order: `initialize`, any other operation, `dispose`; before and after, operations throw
/// `Zentara::Plugin::InvalidOperationPluginException`. A call blocks as long as the back-end's transfers take.
/// Separate.
///
///                initialize: an instance of the back-end
///     Made -------------------------------------------------> Ready
///      ^                                                        |
///      +---- dispose, or an initialize that fails: no instance -+
///
/// Every operation throws `Zentara::Plugin::NotSupportedPluginException`, naming the function, if the back-end does
/// not export the function that it needs, and `Zentara::Plugin::ArgumentPluginException` for a null pointer. Where a
/// result is stored through a pointer, a call that throws leaves it unchanged.
///
/// The order of the virtual operations is the boundary to interpreters that are built separately.
class ZENTARA_API ParameterInterpreter : public Core::Plugin {
public:
    ParameterInterpreter(const ParameterInterpreter&) = delete;
    ParameterInterpreter& operator=(const ParameterInterpreter&) = delete;

    /// `dispose` must have been called while the library was loaded: it is not called here.
    ~ParameterInterpreter() override;

    /// `Core::ImplType_PARAMETER_INTERPRETER`. Safe.
    [[nodiscard]] static Core::ImplType getImplType();

    /// The version of the interface classes: 0.1.0. Null pointers are skipped. Safe.
    static void getPluginVersion(int* major, int* minor, int* patch);

    /// The kind of a parameter's value. Safe.
    [[nodiscard]] static ParameterValueType getParameterValueType(ParameterType parameter);

    /// Makes a back-end instance and initialises it; an earlier one is disposed first.
    /// \param context goes back unchanged into `set` and `get`, through which the back-end reaches the
    ///         camera; all three are passed on as they are, also null
    /// \throws Zentara::Plugin::InitializationPluginException "Invalid shared library handle", or "Failed to
    ///         initialize plugin" when the back-end refuses; no instance is left then
    virtual void initialize(void* context, BackEnd::Transfer* set, BackEnd::Transfer* get, HardwareIDs ids,
                            HardwareVersionInternal version);

    /// Disposes and destroys the back-end instance. Without one it does nothing.
    virtual void dispose();

    /// The unit of its value, and of its range.
    /// \throws Zentara::Plugin::NotSupportedPluginException "Failed to get unit type from plugin for PARAMETER"
    [[nodiscard]] virtual UnitType getUnitType(ParameterType parameter);

    /// Whether it can be read, and written.
    /// \throws Zentara::Plugin::NotSupportedPluginException "Parameter PARAMETER is not supported"
    [[nodiscard]] virtual AccessMode getAccessMode(ParameterType parameter);

    /// Writes a value in the parameter's unit. Which of the three fits, getParameterValueType tells; the back-end is
    /// asked either way.
    /// \throws Zentara::Plugin::ArgumentPluginException "value out of range"
    /// \throws Zentara::Plugin::IOPluginException "Failed to write parameter"
    virtual void write(ParameterType parameter, bool value);
    virtual void write(ParameterType parameter, int value);
    virtual void write(ParameterType parameter, float value);

    /// Writes a system state: the float, integer, boolean and region requests of the map; others are left
    /// out. Words of a region are cut to 16 bits.
    /// \throws Zentara::Plugin::IOPluginException "Failed to set system state: REASON"
    /// \throws Zentara::Plugin::ArgumentPluginException "Failed to set system state: REASON" for a parameter whose
    ///         number does not fit one byte; nothing is written then
    virtual void write(const ParameterRequestMap& state);

    /// Reads a value in the parameter's unit.
    /// \throws Zentara::Plugin::IOPluginException "Failed to read parameter"
    virtual void read(ParameterType parameter, bool* value);
    virtual void read(ParameterType parameter, int* value);
    virtual void read(ParameterType parameter, float* value);

    /// Reads a system state into the requests of the map; those that `write` leaves out stay as they are.
    /// \throws Zentara::Plugin::IOPluginException "Failed to get system state: REASON", also when the back-end returns
    ///         anything but values for these parameters, or one of their numbers does not fit one byte; no
    ///         request is changed then
    virtual void read(ParameterRequestMap& state);

    /// Parameter 13, in pixels of the sensor.
    /// \throws Zentara::Plugin::ArgumentPluginException "value out of range"
    /// \throws Zentara::Plugin::IOPluginException "Failed to set region of interest"
    virtual void setRegionOfInterest(RegionOfInterestInternal region);

    /// \throws Zentara::Plugin::IOPluginException "Failed to get region of interest"
    [[nodiscard]] virtual RegionOfInterestInternal getRegionOfInterest();

    /// The unambiguous range in metres, parameter 12. \throws Zentara::Plugin::IOPluginException "Failed to get range"
    [[nodiscard]] virtual float getRange();

    /// What a parameter accepts. Null for a boolean, and for a parameter that cannot be written.
    /// \throws Zentara::Plugin::NotSupportedPluginException "failed to get parameter range: REASON" or "failed to get
    ///         parameter range for PARAMETER: REASON", and what `getAccessMode` throws
    [[nodiscard]] virtual Utils::SmartPtr<ParameterRangeBaseInternal>
    getParameterRange(ParameterType parameter);

    /// Parameter 11. \throws Zentara::Plugin::IOPluginException "Failed to get raw output mode"
    [[nodiscard]] virtual RawOutputMode getRawOutputMode();

    /// Hands the calibration to the camera, also one that has nothing to say.
    /// \throws Zentara::Plugin::NotSupportedPluginException "failed to write calibration: REASON"
    virtual void writeCalibration(CalibrationInternal* calibration);

    /// Reads the camera's calibration over the given one; what the camera does not tell stays as it is.
    /// \throws Zentara::Plugin::NotSupportedPluginException "failed to read calibration: REASON" or "failed to
    ///         unmarshal calibration"
    virtual void readCalibration(CalibrationInternal* calibration);

    /// What a raw phase value is multiplied with to be a distance in millimetres.
    /// \throws Zentara::Plugin::IOPluginException "Failed to get phase scaling"
    [[nodiscard]] virtual float getPhaseScaling();

protected:
    /// \param library handle of the loaded back-end; stays loaded until `dispose`, is not owned
    ParameterInterpreter(GUID backEnd, void* library);

    /// Names the back-end before `initialize`, for an interpreter that learns it after its construction.
    void setLibrary(void* library);

    /// For callbacks that reach the camera through what throws: what the last transfer threw, null for one that went
    /// well. When the back-end's function that made it fails, the operation throws that in place of its own text; a
    /// value out of range remains one. On the thread of the operation.
    void noteTransfer(std::exception_ptr failure) noexcept;

private:
    struct Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace Zentara::IO
