#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include <pybind11/numpy.h>

/// NumPy's arrays and the library's spans.
namespace Zentara::Python {

/// A read-only array over memory that `owner` keeps: no copy. It cannot be made writable, for the owner lends no memory
/// to write to.
template<typename T>
pybind11::array_t<T> viewOf(const T* data, std::vector<pybind11::ssize_t> shape, pybind11::handle owner) {
    pybind11::array_t<T> view(std::move(shape), data, owner);
    pybind11::detail::array_proxy(view.ptr())->flags &= ~pybind11::detail::npy_api::NPY_ARRAY_WRITEABLE_;
    return view;
}

/// What Python hands over: rows of that type without gaps; a copy is made where that changes no value. Numbers with a
/// fraction are refused: metres are no millimetres.
template<typename T>
using Rows = pybind11::array_t<T, pybind11::array::c_style>;

/// \throws pybind11::value_error when there are not as many dimensions, or the last is not `last` (0: any)
template<typename T, int Flags>
std::span<const T> spanOf(const pybind11::array_t<T, Flags>& array, pybind11::ssize_t dimensions,
                          pybind11::ssize_t last, const char* what) {
    if (array.ndim() != dimensions || (last != 0 && array.shape(dimensions - 1) != last))
        throw pybind11::value_error(std::string(what) + " has " + std::to_string(array.ndim()) +
                                    " dimensions, not " + std::to_string(dimensions) +
                                    (last != 0 ? " with " + std::to_string(last) + " in the last" : ""));
    return {array.data(), static_cast<std::size_t>(array.size())};
}

} // namespace Zentara::Python
