#pragma once

#include <cstdint>

#include <zentara/guid.h>

namespace Zentara::Simulated {

/// The firmware of a camera's controller, as its extension unit shows it: bytes in, bytes out. A simulated video
/// device hands its extension-unit traffic to the controller that it was given.
/// The device calls it from one thread at a time. Its operations fail by throwing a plug-in exception.
class Controller {
public:
    virtual ~Controller() = default;
    Controller(const Controller&) = delete;
    Controller& operator=(const Controller&) = delete;

    /// The host names the extension unit that it is going to use.
    virtual void setup(const GUID& unit) = 0;

    /// Takes `length` bytes that the host sets a control to.
    virtual void set(std::uint32_t unit, std::int32_t control, const std::uint8_t* data,
                     std::uint32_t length) = 0;

    /// Answers with exactly `length` bytes. On entry `data` holds what the host put there, which may be part of
    /// its question; `flag` is the receive request's, unchanged.
    virtual void get(std::uint32_t unit, std::int32_t control, std::uint8_t* data, std::uint32_t length,
                     bool flag) = 0;

    /// How many bytes a control has.
    [[nodiscard]] virtual std::int32_t length(std::uint32_t unit, std::uint32_t control) = 0;

    /// A register of the time-of-flight controller as the camera itself sees it; 0 where there is none. Called from any
    /// thread.
    [[nodiscard]] virtual std::uint16_t tofRegister(std::uint8_t /*address*/) const { return 0; }

    /// Ends a transfer that hangs; called from another thread. False when none does.
    virtual bool cancel() { return false; }

protected:
    Controller() = default;
};

} // namespace Zentara::Simulated
