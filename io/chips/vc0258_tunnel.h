#pragma once

#include <cstdint>

#include "io/chips/vc0258_protocol.h"
#include "io/chips/vc_bridge.h"

namespace Zentara::IO {

/// The two ways from the host to what lies behind a VC0258 bridge: the I2C tunnel and DMA reads. Brings the
/// bridge's settings to what each transfer needs. The caller holds the chip's mutex.
class VC0258Tunnel {
public:
    VC0258Tunnel(XUInterface& chip, VCBridge& settings) : wire(chip), bridge(settings) {}

    /// One register of the device at a 7-bit address, in one byte.
    void setI2CData1A1D(unsigned device, unsigned reg, unsigned value);
    [[nodiscard]] unsigned getI2CData1A1D(unsigned device, unsigned reg);
    /// The same in two bytes.
    void setI2CData1A2D(unsigned device, unsigned reg, unsigned value, unsigned order);
    [[nodiscard]] unsigned getI2CData1A2D(unsigned device, unsigned reg, unsigned order);

    /// \throws IOPluginException "invalid DMA length" unless length is 1 to 32.
    void getDMAData(unsigned address, std::uint8_t* out, unsigned length);

private:
    XUInterface& wire;
    VCBridge& bridge;
};

} // namespace Zentara::IO
