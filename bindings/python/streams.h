#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>

#include <pybind11/pybind11.h>
#include <zentara/host/stream.h>

#include "bindings/python/frames.h"
#include "bindings/python/interpreter.h"

namespace Zentara::Python {

/// Seconds of Python's. \throws py::value_error for less than 0, and NaN
[[nodiscard]] std::chrono::milliseconds millisecondsOf(double seconds);

/// A stream that Python holds and goes through with `for`.
class StreamObject final {
public:
    /// \param frames after how many the stream ends; none: when the camera ends it \param patience of `for`
    StreamObject(Host::Stream stream, std::optional<std::uint64_t> frames,
                 std::chrono::milliseconds patience);

    /// Nothing at the end.
    [[nodiscard]] std::unique_ptr<FrameObject> next(std::optional<double> limit, bool newest);
    void start() const;
    void stop() const;

    [[nodiscard]] const Host::Stream& stream() const noexcept { return held.get(); }

private:
    Held<Host::Stream> held;
    std::optional<std::uint64_t> left; ///< how many frames are still to come
    const std::chrono::milliseconds limit;
};

using StreamClass = py::class_<StreamObject>;

void bindStream(StreamClass& bound);

} // namespace Zentara::Python
