#pragma once

#include <memory>
#include <vector>

#include <zentara/export.h>
#include <zentara/io/xu_interface.h>

namespace Zentara::IO {

class ChipClock;

/// A camera behind a VC0258 bridge: extension unit 4 of a917c75d-4119-11da-ae0e-000d56ac7b4c.
///
/// The bridge reaches the time-of-flight controller and the other devices of the camera's bus through an I2C
/// tunnel. Three of its settings (sensor control size 0x8102, DMA control size 0x810F, last byte order
/// 0xB439) are remembered and sent only when they change; writing one of them directly keeps the memory
/// right. Registers of the time-of-flight controller have 8-bit addresses, to which longer ones are cut, and
/// 16 bits. Into a write of its register 29 a toggle is ORed as bit 0: 1 and 0 in turn, beginning with 1; a
/// value whose bit 0 is set stays set, and a raw I2C write is left alone. Before each of its writes the chip
/// waits 5 ms.
///
/// Requests: raw commands and the four I2C kinds are executed (byte order 1 for writes, 0 for reads; an array
/// is one byte a register from register 0); others throw `NotSupportedPluginException`.
///
/// Every operation may throw what the proxy throws. What the object remembers changes only after the transfer
/// succeeded; a setting whose write failed is sent again with its next use. Safe: each call holds the
/// chip's lock throughout, and takes the proxy's and the logger's after it.
class ZENTARA_API VC0258Impl : public XUInterface {
public:
    VC0258Impl();
    ~VC0258Impl() override;
    VC0258Impl(const VC0258Impl&) = delete;
    VC0258Impl& operator=(const VC0258Impl&) = delete;

    using XUInterface::setup;
    void setup() override;
    void processCommand(Utils::SmartPtr<xuRequest> request) override;

    /// Registers inside the bridge: 16-bit addresses, 8 bits.
    void setUSBBackendRegisterLocked(unsigned int reg, unsigned int value);
    [[nodiscard]] unsigned int getUSBBackendRegisterLocked(unsigned int reg);
    void setTOFControllerRegisterLocked(unsigned int reg, unsigned int value);
    [[nodiscard]] unsigned int getTOFControllerRegisterLocked(unsigned int reg);

    /// A register of the device at a 7-bit bus address, in 1 or 2 bytes.
    /// \param byteOrder what the bridge is told about a 2-byte transfer; the low byte comes first in any
    /// case.
    /// \throws IOPluginException "addressBytes must be equal to 1", "dataBytes must be equal to 1 or 2";
    /// ArgumentPluginException for an address above 0x7F or a register above 0xFF.
    void setI2cLocked(unsigned char deviceAddress, unsigned int reg, unsigned int value,
                      unsigned char addressBytes, unsigned char dataBytes, bool byteOrder);
    [[nodiscard]] unsigned int getI2cLocked(unsigned char deviceAddress, unsigned int reg,
                                            unsigned char addressBytes, unsigned char dataBytes,
                                            bool byteOrder);

    /// Register 0x21 of the time-of-flight controller.
    [[nodiscard]] unsigned int getTOFControllerFirmwareVersionLocked();
    /// 0, without a transfer: this bridge does not report its version.
    [[nodiscard]] unsigned int getUSBBackendFirmwareVersionLocked();

    /// Bytes of one area, 32 a transfer.
    /// \throws IOPluginException, before any transfer, when start + length is above 0x10000.
    [[nodiscard]] std::vector<unsigned char> getUSBBackendFirmwareLocked(unsigned int start,
                                                                         unsigned int length);
    [[nodiscard]] std::vector<unsigned char> getUSBBackendConfigurationLocked(unsigned int start,
                                                                              unsigned int length);

    /// Bytes of the area that was last read from.
    /// \throws IOPluginException "invalid DMA length" unless length is 1 to 32, or as above;
    /// ArgumentPluginException for a null buffer.
    void getDMADataLocked(unsigned int address, unsigned char* out, unsigned int length);

    /// Sets or clears strobe bits in what was last written to register 26, or to register 27 for any other
    /// number, and writes the result.
    void setStrobeLocked(int reg, unsigned short mask);
    void resetStrobeLocked(int reg, unsigned short mask);

    /// As after construction: strobes 0, the next toggle 1, the bridge's settings unknown. Nothing is sent.
    void reset();

protected:
    /// \param clock does all the waiting; it must outlive the chip
    explicit VC0258Impl(ChipClock& clock);

private:
    struct VC0258ImplPrivate;
    std::unique_ptr<VC0258ImplPrivate> impl;
};

} // namespace Zentara::IO
