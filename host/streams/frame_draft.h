#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include <zentara/host/frame.h>

#include "host/streams/frame_data.h"

namespace Zentara::Host {

/// A frame that is being filled: whoever makes frames writes the bytes straight into its memory. Separate.
class FrameDraft final {
public:
    /// Nothing, for the time being.
    FrameDraft() noexcept = default;

    /// \param what is attempted, for the failure: "take a frame of LEFT SIM0570"
    /// \throws Failure (Failed) when the process would hold more than `frameMemoryLimit()`
    FrameDraft(std::shared_ptr<const StreamContext> stream, std::size_t bytes, const std::string& what);

    /// The same, but empty when there is no memory: it makes no text.
    [[nodiscard]] static FrameDraft tryTake(std::shared_ptr<const StreamContext> stream,
                                            std::size_t bytes) noexcept;

    /// A copy of all but the bytes, for a changed frame of the same size.
    FrameDraft(const Frame& like, const std::string& what);

    /// What a frame holds that it does not tell everybody.
    [[nodiscard]] static const FrameData& dataOf(const Frame& frame) noexcept { return *frame.data; }

    FrameDraft(FrameDraft&& other) noexcept;
    FrameDraft& operator=(FrameDraft&& other) noexcept;
    ~FrameDraft();
    FrameDraft(const FrameDraft&) = delete;
    FrameDraft& operator=(const FrameDraft&) = delete;

    [[nodiscard]] explicit operator bool() const noexcept { return data != nullptr; }

    /// Where the bytes belong, and how many there is room for: at least as many as were asked for.
    [[nodiscard]] std::byte* bytes() noexcept { return data->bytes(); }
    [[nodiscard]] std::size_t capacity() const noexcept { return data->capacity; }

    /// Everything else that a frame says of itself; the length is set by finish().
    [[nodiscard]] FrameData& fields() noexcept { return *data; }

    /// Whether there is nobody else whom the frame would be taken from; it becomes a draft again then, whose bytes are
    /// what they were.
    [[nodiscard]] static FrameDraft reclaim(Frame&& frame) noexcept;

    /// Nothing changes any more. \param length bytes that were written, capacity() at most
    [[nodiscard]] Frame finish(std::size_t length) && noexcept;

    /// The record of a frame.
    [[nodiscard]] static const FrameData& of(const Frame& frame) noexcept { return *frame.data; }

private:
    explicit FrameDraft(FrameData* taken) noexcept : data(taken) {}

    FrameData* data = nullptr;
};

} // namespace Zentara::Host
