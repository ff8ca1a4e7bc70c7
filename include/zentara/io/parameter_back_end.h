#pragma once

#include <zentara/access_mode.h>
#include <zentara/error_code.h>
#include <zentara/hardware_ids.h>
#include <zentara/hardware_version_internal.h>
#include <zentara/parameter_type.h>
#include <zentara/region_of_interest_internal.h>
#include <zentara/unit_type.h>

/// The functions of a parameter back-end: a library that knows how the parameters of a camera map to its
/// registers. It exports them with C linkage, under the names of the types below with a small first letter,
/// beside the four that identify every plug-in (its kind is 9). "createInstance" is the plug-in's factory
/// and this list's first function in one; the plug-in manager never calls it.
///
/// An instance is separate. Functions throw nothing: they return 0, or an `ErrorCode`
/// that is not 0 and leave a text for GetLastError.
///
/// Functions with a buffer and a length to return are called twice: with a null buffer they store the
/// length needed and return -6; then the buffer has that length, and they store how much of it they filled.
namespace Zentara::IO::BackEnd {

/// An extension-unit SET or GET on the camera that `context` stands for. Returns once the transfer has ended.
/// \param unit the unit's number on the camera \param selector of the control in it
/// \param data `length` bytes, the caller's; a GET's are part of the question unless all are 0, and are
///        overwritten by the answer
using Transfer = ErrorCode(void* context, unsigned short unit, unsigned int selector, unsigned char* data,
                           unsigned int length);

/// A new instance, or null. An instance is destroyed exactly once, after Dispose if it was initialised.
using CreateInstance = void*();
using DestroyInstance = void(void* instance);

/// \param context goes back unchanged into both callbacks
/// \param ids and `version` are valid during the call
using Initialize = ErrorCode(void* instance, void* context, Transfer* set, Transfer* get,
                             const HardwareIDs* ids, const HardwareVersionInternal* version);
using Dispose = ErrorCode(void* instance); ///< ends what Initialize began: no callback is called any more

/// What is asked of a parameter that the camera does not have is answered with `ErrorCode_NOT_SUPPORTED`, a value beyond
/// the range with `ErrorCode_OUT_OF_RANGE`. Values are in the unit that GetUnitType tells.
using GetUnitType = ErrorCode(void* instance, ParameterType parameter, UnitType* unit);
using GetAccessMode = ErrorCode(void* instance, ParameterType parameter, AccessMode* mode);
using ReadFloat = ErrorCode(void* instance, ParameterType parameter, float* value);
using WriteFloat = ErrorCode(void* instance, ParameterType parameter, float value);
using ReadInt = ErrorCode(void* instance, ParameterType parameter, int* value);
using WriteInt = ErrorCode(void* instance, ParameterType parameter, int value);
using ReadBool = ErrorCode(void* instance, ParameterType parameter, bool* value);
using WriteBool = ErrorCode(void* instance, ParameterType parameter, bool value);
/// In pixels of the sensor.
using SetRegionOfInterest = ErrorCode(void* instance, const RegionOfInterestInternal* region);
using GetRegionOfInterest = ErrorCode(void* instance, RegionOfInterestInternal* region);

/// The text of the last failure, UTF-8; it ends at its first NUL or with the buffer.
using GetLastError = ErrorCode(void* instance, char* buffer, unsigned int* length);

/// A system state is a run of entries, each the parameter's number in one byte and its value: a float or an
/// integer in 4 bytes, a boolean in 1 (0 is false), a region in four words of 2 bytes; low bytes first.
/// Reading overwrites the values of the entries that are in the buffer.
using ReadSystemState = ErrorCode(void* instance, unsigned char* buffer, unsigned int length);
using WriteSystemState = ErrorCode(void* instance, const unsigned char* buffer, unsigned int length);

/// A range in the encoding of `ParameterRangeBaseInternal::marshal`.
using GetParameterRange = ErrorCode(void* instance, ParameterType parameter, unsigned char* buffer,
                                    unsigned int* length);

/// A calibration in the encoding of `CalibrationInternal::marshal`.
using WriteCalibration = ErrorCode(void* instance, const unsigned char* buffer, unsigned int length);
using ReadCalibration = ErrorCode(void* instance, unsigned char* buffer, unsigned int* length);

/// What a raw phase value is multiplied with to be a distance in millimetres.
using GetPhaseScaling = ErrorCode(void* instance, float* scaling);

} // namespace Zentara::IO::BackEnd
