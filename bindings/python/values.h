#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <pybind11/pybind11.h>
#include <zentara/acceleration_internal.h>
#include <zentara/camera_intrinsics.h>
#include <zentara/extrinsic_parameters_internal.h>
#include <zentara/host/stream_info.h>

/// The host library's plain values as Python's.
namespace Zentara::Python {

/// A text of a device may hold any bytes; what is no UTF-8 shows as U+FFFD.
[[nodiscard]] pybind11::str text(std::string_view bytes);

/// A tuple of texts.
[[nodiscard]] pybind11::tuple textsOf(const std::vector<std::string>& lines);

/// What a JSON text says, as dictionaries, lists, numbers and texts; and back.
[[nodiscard]] pybind11::object fromJson(const std::string& json);
[[nodiscard]] std::string toJson(const pybind11::object& value);

/// As a dictionary of its numbers by their names.
[[nodiscard]] pybind11::dict dictionaryOf(const CameraIntrinsics& model);

/// "rotation": 3 x 3 numbers, "translation": three in millimetres; and back.
[[nodiscard]] pybind11::dict dictionaryOf(const ExtrinsicParametersInternal& pose);
[[nodiscard]] ExtrinsicParametersInternal poseOf(const pybind11::dict& pose);

[[nodiscard]] pybind11::dict dictionaryOf(const Host::Corrections& corrections);
[[nodiscard]] pybind11::dict dictionaryOf(const AccelerationInternal& value);

/// Of "axis" and "ray". \throws Host::Failure (Usage) for other words
[[nodiscard]] Host::DepthAlong depthAlong(const std::string& name);

/// The name of a file, as the system has it, of a str, bytes or os.PathLike. \throws ValueError for one with a zero in it
struct PathText {
    std::string name;
};

/// "depth", "color" or "audio". \throws Host::Failure (Usage) for other words
[[nodiscard]] Host::Kind kindOf(const std::string& name);

/// Mode, CameraInfo and StreamInfo.
void bindValues(pybind11::module_& module);

} // namespace Zentara::Python

namespace pybind11::detail {
template<>
struct type_caster<Zentara::Python::PathText> {
    PYBIND11_TYPE_CASTER(Zentara::Python::PathText, const_name("Union[str, bytes, os.PathLike]"));

    bool load(handle given, bool) {
        PyObject* encoded = nullptr;
        if (PyUnicode_FSConverter(given.ptr(), &encoded) == 0) {
            if (PyErr_ExceptionMatches(PyExc_TypeError) == 0)
                throw error_already_set();
            PyErr_Clear();
            return false;
        }
        value.name = reinterpret_steal<bytes>(encoded);
        return true;
    }
};
} // namespace pybind11::detail
