#pragma once

#include <cstdint>
#include <map>
#include <optional>

#include "plugins/simulated/port.h"
#include "plugins/simulated/usb/usb_ip.h"

namespace Zentara::Simulated {

/// The controller's unit on the wire. A GET carries nothing to the camera; so a packet that asks something is sent by a SET, and the
/// GET of the same control after it fetches the answer. A GET without a question is given zeros for one. Bound.
class ExtensionUnit final {
public:
    /// \param behind with its unit selected; outlives this
    explicit ExtensionUnit(Port& behind) : port(behind) {}

    /// \return as ControlTable::answer
    [[nodiscard]] std::optional<Bytes> answer(const Setup& setup, const Bytes& data);

private:
    [[nodiscard]] Bytes fetch(std::uint32_t selector, std::size_t bytes);
    void take(std::uint32_t selector, const Bytes& packet);

    Port& port;
    std::map<std::uint32_t, Bytes> questions; ///< by selector, until they are answered
};

} // namespace Zentara::Simulated
