#pragma once

#include <cstdint>
#include <string>

#include <zentara/read_buffer_status.h>

#include "host/cameras/stream_description.h"
#include "tools/zentara/exit_code.h"

namespace Zentara::Tool {

/// Where a stream comes from: a camera's node, a bare device or a recording. Ready to start when it has been made;
/// ending it closes what it opened. Separate, but read() may run beside the other operations.
class StreamSource {
public:
    StreamSource() = default;
    StreamSource(const StreamSource&) = delete;
    StreamSource& operator=(const StreamSource&) = delete;
    virtual ~StreamSource() = default;

    [[nodiscard]] virtual const StreamDescription& description() const = 0;

    /// What to call it in a message.
    [[nodiscard]] virtual std::string label() const = 0;

    /// Begins the stream. Throws what the device throws, as stop() does.
    virtual void start() = 0;

    /// Waits for the next unit, as a device's `readBuffer` does.
    virtual ReadBufferStatus read(void* buffer, int size, std::int64_t* micros, int* length) = 0;

    /// Ends the stream, which wakes the reader.
    virtual void stop() = 0;

    /// Closes what was opened; the destructor does it, too, but keeps the failure to itself.
    virtual void close() = 0;
};

} // namespace Zentara::Tool
