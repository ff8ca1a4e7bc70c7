#pragma once

#include <cstddef>
#include <cstdint>
#include <ostream>

#include "tools/zentara/json_output.h"

namespace Zentara::Tool {

/// Takes what a stream delivers. take() runs on the reader's thread, the rest before and after.
class StreamSink {
public:
    StreamSink() = default;
    StreamSink(const StreamSink&) = delete;
    StreamSink& operator=(const StreamSink&) = delete;
    virtual ~StreamSink() = default;

    /// \return false once enough has come. \throws Failure when the unit is none of the stream's mode, or a
    /// file cannot be written.
    virtual bool take(const std::uint8_t* data, std::size_t size, std::int64_t micros) = 0;

    /// The next unit begins a new stream of the same camera, on whatever clock: no gap is counted.
    virtual void resume() = 0;

    /// Whether enough has come.
    [[nodiscard]] virtual bool full() const = 0;

    /// Completes the files.
    virtual void commit() = 0;
    /// Closes and removes what has been written.
    virtual void discard() = 0;

    /// Tells what came, in lines of text, and as fields of a stream's JSON object.
    virtual void print(std::ostream& out) const = 0;
    virtual void fill(Json& stream) const = 0;
};

} // namespace Zentara::Tool
