#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace Zentara::Simulated {

using Bytes = std::vector<std::uint8_t>;

/// The first eight bytes of a control transfer.
struct Setup {
    std::uint8_t type = 0; ///< direction, kind and recipient
    std::uint8_t request = 0;
    std::uint16_t value = 0;
    std::uint16_t index = 0;
    std::uint16_t length = 0;

    [[nodiscard]] bool isIn() const noexcept { return (type & 0x80) != 0; }
    /// Kind and recipient without the direction: 0x21 is of the class, to an interface.
    [[nodiscard]] std::uint8_t kind() const noexcept { return type & 0x7F; }
};

/// What the host asks of the camera: bytes for an endpoint, or room for bytes from one.
struct UsbRequest {
    /// A piece of an isochronous request: where its bytes go, and how many there may be.
    struct Packet {
        std::uint32_t offset = 0;
        std::uint32_t length = 0;
    };

    std::uint32_t number = 0;
    std::uint32_t endpoint = 0; ///< without the direction
    bool in = false;
    std::uint32_t length = 0; ///< of the room, or of the data
    Setup setup;              ///< of a request to endpoint 0
    Bytes data;               ///< to the camera
    std::vector<Packet> packets;
};

/// The answer to each packet of an isochronous request: its bytes, at most as many as there is room for.
using PacketAnswers = std::vector<Bytes>;

/// How a request ends, as the host's kernel counts it.
enum class UsbStatus : std::int32_t {
    Ok = 0,
    Stalled = -32,
    Unlinked = -104,
};

/// The cable between a camera and a virtual host controller: the messages of USB/IP after a device was attached, on a
/// stream socket. Bound.
class UsbCable final {
public:
    /// What comes over the cable.
    struct Event {
        enum class Kind : std::uint8_t {
            None,    ///< the time has passed
            Request, ///< `request`
            Unlink,  ///< the host wants the request with this number back
            Gone,    ///< the host has pulled out the cable
        };
        Kind kind = Kind::None;
        UsbRequest request;
        std::uint32_t number = 0; ///< of the unlinking itself
        std::uint32_t unlinkOf = 0;
    };

    /// \param descriptor of the socket; taken over
    explicit UsbCable(int descriptor) noexcept : socket(descriptor) {}
    ~UsbCable();
    UsbCable(const UsbCable&) = delete;
    UsbCable& operator=(const UsbCable&) = delete;

    /// Waits so many milliseconds at most; for ever when negative.
    /// \throws std::runtime_error for a message that is none, saying what is wrong with it
    [[nodiscard]] Event next(int milliseconds);

    /// \param data what an IN request gets; empty for all others
    /// \param taken bytes that an OUT request has delivered
    void answer(const UsbRequest& request, UsbStatus status, const Bytes& data, std::size_t taken = 0);
    void answer(const UsbRequest& request, const PacketAnswers& packets);
    void answerUnlink(std::uint32_t number, UsbStatus status);

private:
    static constexpr std::size_t headerBytes = 48;
    using Header = std::array<std::uint8_t, headerBytes>;

    [[nodiscard]] bool receive(std::uint8_t* bytes, std::size_t count);
    [[nodiscard]] bool receiveRequest(const Header& header, UsbRequest& request);
    void send(const Bytes& message);

    int socket;
};

} // namespace Zentara::Simulated
