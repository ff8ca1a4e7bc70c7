#pragma once

#include <atomic>
#include <cstdint>

#include <zentara/io/ov0570_info.h>
#include <zentara/utils/mutex.h>

#include "io/chips/ov0570_protocol.h"

namespace Zentara::IO {

class XUInterface;

/// The registers of all devices behind an OV0570 bridge, and what the bridge tells about them, which is asked
/// for once. The caller holds the chip's mutex; only `info` may be reached without it.
class OV0570Registers {
public:
    explicit OV0570Registers(XUInterface& chip) : wire(chip) {}

    /// What the bridge tells about itself, loaded on the first call that succeeds.
    const OV0570Info& info();

    void write(unsigned device, unsigned reg, unsigned value);
    [[nodiscard]] unsigned read(unsigned device, unsigned reg);

    void writeTof(unsigned reg, unsigned value) { write(tofDevice(), reg, value); }
    [[nodiscard]] unsigned readTof(unsigned reg) { return read(tofDevice(), reg); }

    /// Indices of the time-of-flight controller and the colour sensor; 0, the bridge's, when there is none.
    [[nodiscard]] unsigned tofDevice();
    [[nodiscard]] unsigned rgbDevice();
    /// The first further device at that bus address. \throws IOPluginException "deviceAddress not found".
    [[nodiscard]] unsigned deviceAt(unsigned busAddress);

    void resetToggle() noexcept { toggle = 1; }

private:
    void load();
    [[nodiscard]] bool isToggled(unsigned device, unsigned reg) const noexcept;

    XUInterface& wire;
    Utils::Threading::Mutex infoMutex;
    std::atomic<bool> loaded{false};
    // Written once under infoMutex, before `loaded` says so; constant from then on.
    OV0570Info known;
    unsigned tofIndex = OV0570::bridgeIndex;
    unsigned rgbIndex = OV0570::bridgeIndex;
    /// ORed into the next write of the time-of-flight controller's register 29, then turned over.
    unsigned toggle = 1;
};

} // namespace Zentara::IO
