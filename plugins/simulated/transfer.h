#pragma once

#include <cstdint>
#include <string>

#include "plugins/simulated/firmware/firmware.h"

namespace Zentara::Simulated {

/// One SET or GET as it passed over the wire.
struct Transfer {
    bool isGet = false;
    std::uint32_t unit = 0;
    std::uint32_t control = 0;
    Bytes sent;          ///< the packet of a SET, the request bytes of a GET
    Bytes reply;         ///< what a GET brought back; empty when it failed
    std::string failure; ///< why the transfer failed; empty when it did not
};

/// What the bytes mean to this kind of controller, in a few words; a packet that means nothing says so.
[[nodiscard]] std::string transferMeaning(ChipKind kind, const Transfer& transfer);

/// "11 1D 00"
[[nodiscard]] std::string bytesText(const Bytes& bytes);

/// One line: "SET 6/2  11 1D 00 01 00 00 00  write device 1 register 0x1D := 0x0001"; a failure ends it.
[[nodiscard]] std::string transferLine(ChipKind kind, const Transfer& transfer);

} // namespace Zentara::Simulated
