#pragma once

#include <memory>
#include <vector>

#include <zentara/export.h>
#include <zentara/io/ov0570_info.h>
#include <zentara/io/xu_interface.h>

namespace Zentara::IO {

class ChipClock;

/// A camera behind an OV0570 bridge: extension unit 6 of dd880f8a-1cba-4954-8a25-f7875967f0f7.
///
/// The bridge tells, once, which devices are on the camera's internal bus. The time-of-flight controller is
/// the last one at bus address 0x0021, the colour sensor the last one at 0x9711; calls for one that is absent
/// reach the bridge itself. Register addresses and values are cut to the widths of their device, reads return
/// 16 bits. Into every write that reaches register 29 of the time-of-flight controller, by whatever call, a
/// toggle is ORed as bit 0: 1 and 0 in turn, beginning with 1. A value whose bit 0 is set stays set.
///
/// Requests: raw commands and the four I2C kinds are executed; others throw `NotSupportedPluginException`. In
/// I2C requests and calls the widths are not used; an array is one byte a register from register 0.
///
/// Every operation may throw what the proxy throws. What the object remembers (toggle, strobes, bus
/// description) changes only after the transfer succeeded. Safe: each call holds the chip's lock
/// throughout, and takes the bus description's, the proxy's and the logger's after it.
class ZENTARA_API OV0570Impl : public XUInterface {
public:
    OV0570Impl();
    ~OV0570Impl() override;
    OV0570Impl(const OV0570Impl&) = delete;
    OV0570Impl& operator=(const OV0570Impl&) = delete;

    using XUInterface::setup;
    void setup() override;
    void processCommand(Utils::SmartPtr<xuRequest> request) override;
    /// A register of the time-of-flight controller, of the bridge, of the colour sensor.
    void setTOFControllerRegisterLocked(unsigned int reg, unsigned int value);
    [[nodiscard]] unsigned int getTOFControllerRegisterLocked(unsigned int reg);
    void setUSBBackendRegisterLocked(unsigned int reg, unsigned int value);
    [[nodiscard]] unsigned int getUSBBackendRegisterLocked(unsigned int reg);
    void setRGBSensorRegisterLocked(unsigned char reg, unsigned char value);
    [[nodiscard]] unsigned int getRGBSensorRegisterLocked(unsigned char reg);

    /// A register of the first further device at an 8-bit bus address. The last three arguments are not used.
    /// \throws IOPluginException "deviceAddress not found".
    void setI2cLocked(unsigned char deviceAddress, unsigned int reg, unsigned int value,
                      unsigned char addressBytes, unsigned char dataBytes, bool byteOrder);
    [[nodiscard]] unsigned int getI2cLocked(unsigned char deviceAddress, unsigned int reg,
                                            unsigned char addressBytes, unsigned char dataBytes,
                                            bool byteOrder);

    /// The four bytes of the bridge's version as one number, most significant first.
    [[nodiscard]] unsigned int getUSBBackendFirmwareVersionLocked();
    /// Register 0x21 of the time-of-flight controller.
    [[nodiscard]] unsigned int getTOFControllerFirmwareVersionLocked();
    /// All that the bridge tells about itself and its bus. Costs a transfer until one succeeded.
    [[nodiscard]] OV0570Info getInfoLocked();

    /// Bytes of the flash, 32 a transfer. Both areas read the same bytes here.
    /// \param start 0 to 0xFFFE. \param length up to one more than the readable size that the bridge reports;
    /// 0 is refused at start 0 and reads nothing elsewhere.
    /// \throws IOPluginException "startAddress must be less than 0xFFFF", "length is out of range should be
    /// less than N"; ArgumentPluginException for a null buffer. After a failure `out` may be filled in part.
    [[nodiscard]] std::vector<unsigned char> getUSBBackendFirmwareLocked(unsigned int start,
                                                                         unsigned int length);
    void getUSBBackendFirmwareLocked(unsigned int start, unsigned char* out, unsigned int length);
    [[nodiscard]] std::vector<unsigned char> getUSBBackendConfigurationLocked(unsigned int start,
                                                                              unsigned int length);
    void getUSBBackendConfigurationLocked(unsigned int start, unsigned char* out, unsigned int length);

    /// The steps of an EEPROM write; how to compose them is the caller's. The range is inclusive.
    void setEEPROMWriteAddress(unsigned short start, unsigned short end);
    /// A packet carries 32 bytes: fewer are padded with zeros, which are written as well as far as the range
    /// reaches, so end the range where the data ends. Length 0 sends nothing.
    /// \throws ArgumentPluginException for more than 32 bytes, or null with a length.
    void setEEPROMData(const unsigned char* data, unsigned int length);
    [[nodiscard]] unsigned int getEEPROMWritableSize();

    /// Sets or clears strobe bits in what was last written to register 26, 27 or 75 of the time-of-flight
    /// controller, and writes the result. Any other register is ignored.
    void setStrobeLocked(int reg, unsigned short mask);
    void resetStrobeLocked(int reg, unsigned short mask);

    /// As after construction: strobes 0, the next toggle 1. The bus description is kept; nothing is sent.
    void reset();

protected:
    /// \param clock does all the waiting; it must outlive the chip
    explicit OV0570Impl(ChipClock& clock);

private:
    struct OV0570ImplPrivate;
    std::unique_ptr<OV0570ImplPrivate> impl;
};

} // namespace Zentara::IO
