#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include <zentara/sensor_value_array.h>
#include <zentara/utils/unique_instance.h>

#include "host/streams/shared_block.h"

namespace Zentara::Host {

// Frames that one program gives and others read. What hardware a stream comes from has a board: who gives its frames, in
// which mode, and where. The frames lie in a ring, each with a number that counts up from 0, and each slot says which
// frame it holds, and whether that is being written. So who gives frames waits for nobody, and who reads one that is
// overwritten meanwhile notices, and takes a later one. Who gives frames holds a name as long as its process lives.

/// A frame, beside its bytes.
struct SharedFrame {
    std::int64_t micros = 0; ///< of the device's clock
    std::size_t length = 0;  ///< bytes
    SensorValueArray temperatures;
};

/// The ring. One gives, any number read. Each side separate.
class SharedRing final {
public:
    /// What a reader found.
    enum class Found : std::uint8_t { Frame, Nothing, TooSmall };

    /// \param id of this ring alone \param slots 2 or more \param room bytes of a frame at most, a multiple of 8
    /// \throws Failure when there is no memory for it
    SharedRing(std::uint64_t id, std::size_t slots, std::size_t room);

    [[nodiscard]] std::uint64_t id() const noexcept { return name; }
    [[nodiscard]] std::size_t slots() const noexcept { return count; }
    [[nodiscard]] std::size_t room() const noexcept { return bytes; }

    /// The number of the first frame that is given; before anything is.
    void begin(std::uint64_t first) const noexcept;
    /// \param frame of at most `room` bytes \param number one more than the last one's
    void give(std::uint64_t number, const SharedFrame& frame, const std::byte* from) const noexcept;

    /// One more than the number of the newest frame.
    [[nodiscard]] std::uint64_t next() const noexcept;

    /// The frame with that number, or the oldest one that is still there.
    /// \param number is set to that of the frame that was found, or is too large
    [[nodiscard]] Found take(std::uint64_t& number, SharedFrame& frame, std::span<std::byte> place) const;

private:
    [[nodiscard]] std::size_t slot(std::uint64_t number) const noexcept;

    const std::uint64_t name;
    const std::size_t count;
    const std::size_t bytes;
    const SharedBlock block;
};

/// The board of a stream's hardware. Safe.
class SharedBoard final {
public:
    /// What is on it.
    struct Notice {
        std::uint64_t owner = 0; ///< who gives the frames; the upper half is the process
        std::uint64_t ring = 0;  ///< 0 until the first frame
        std::uint64_t slots = 0;
        std::uint64_t room = 0;
        std::string mode; ///< its name

        [[nodiscard]] std::uint64_t process() const noexcept { return owner >> 32; }
    };

    /// \param place what all programs call the hardware \throws Failure when there is no memory for it
    explicit SharedBoard(const std::string& place);

    /// Who gives the frames now; nothing when nobody does, also when who did was killed.
    [[nodiscard]] std::optional<Notice> look() const;

    /// Whether that one still gives frames, or at least lives.
    [[nodiscard]] bool stands(std::uint64_t owner) const;

    /// Takes the board for who gives frames. \return false when somebody else has it
    [[nodiscard]] bool claim(std::uint64_t owner) const;
    void post(const Notice& notice) const noexcept;
    void leave(std::uint64_t owner) const noexcept;

private:
    static constexpr std::size_t modeWords = 32;

    [[nodiscard]] static bool lives(std::uint64_t owner);

    const SharedBlock block;
};

/// Gives the frames of a stream, for as long as it lives. Separate.
class FrameGiver final {
public:
    /// \param slots how many frames a reader may be late
    /// \return null when somebody else gives frames of that hardware \throws Failure when there is no memory
    [[nodiscard]] static std::unique_ptr<FrameGiver>
    make(std::shared_ptr<SharedBoard> board, std::string mode, std::size_t slots, std::size_t usualBytes);
    ~FrameGiver();
    FrameGiver(const FrameGiver&) = delete;
    FrameGiver& operator=(const FrameGiver&) = delete;

    /// \throws Failure when there is no memory for frames as large
    void give(const SharedFrame& frame, const std::byte* from);

private:
    FrameGiver(std::shared_ptr<SharedBoard> on, std::uint64_t owner, std::string mode, std::size_t slots,
               std::size_t usualBytes);

    const std::shared_ptr<SharedBoard> board;
    const std::uint64_t id;
    const Utils::UniqueInstance alive; ///< by which readers know
    const std::string mode;
    const std::size_t slots;
    std::size_t room;                 ///< of the next ring
    std::unique_ptr<SharedRing> ring; ///< null until the first frame
    std::uint64_t given = 0;
};

/// Reads the frames that another one gives. Separate.
class FrameReader final {
public:
    /// \return null unless somebody gives frames in that mode
    [[nodiscard]] static std::unique_ptr<FrameReader> make(std::shared_ptr<SharedBoard> board,
                                                           const std::string& mode);

    /// The process that gives them.
    [[nodiscard]] std::uint64_t process() const noexcept { return owner >> 32; }

    /// The next frame, if there is one. \param missed is set to how many before it are gone
    [[nodiscard]] SharedRing::Found take(SharedFrame& frame, std::span<std::byte> place,
                                         std::uint64_t& missed);

    /// Whether there may be another one, ever. Looks at the system: not to be asked for each frame.
    [[nodiscard]] bool goesOn();

private:
    FrameReader(std::shared_ptr<SharedBoard> on, std::uint64_t of) : board(std::move(on)), owner(of) {}

    const std::shared_ptr<SharedBoard> board;
    const std::uint64_t owner;
    std::unique_ptr<SharedRing> ring;  ///< null until there is one
    std::optional<std::uint64_t> next; ///< the frame to read; none until there is a ring
};

} // namespace Zentara::Host
