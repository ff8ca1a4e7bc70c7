#pragma once

#include <memory>
#include <vector>

#include <zentara/export.h>
#include <zentara/io/xu_interface.h>

namespace Zentara::IO {

class ChipClock;

/// A camera behind a VC0345 bridge: extension unit 4 of a917c75d-4119-11da-ae0e-000d56ac7b4c.
///
/// Registers of the time-of-flight controller have 8-bit addresses and 16 bits, of which a read brings one
/// byte at a time. The bridge's sensor control size (0x8102) is remembered and sent only when it changes. The
/// memory is read and written byte by byte.
///
/// Requests: only those of type 1 are executed, after a wait of 5 ms; others are left alone without a word. One of
/// type 1 that is no `UVCCommandRequest` is refused with a NotSupportedPluginException.
///
/// Every operation may throw what the proxy throws. A setting whose write failed is sent again with its next
/// use. Safe: each call holds the chip's lock throughout, and takes the proxy's and the logger's after it.
class ZENTARA_API VC0345Impl : public XUInterface {
public:
    VC0345Impl();
    ~VC0345Impl() override;
    VC0345Impl(const VC0345Impl&) = delete;
    VC0345Impl& operator=(const VC0345Impl&) = delete;

    using XUInterface::setup;
    void setup() override;
    void processCommand(Utils::SmartPtr<xuRequest> request) override;

    /// Registers inside the bridge: 16-bit addresses, 8 bits.
    void setUSBBackendRegisterLocked(unsigned int reg, unsigned int value);
    [[nodiscard]] unsigned int getUSBBackendRegisterLocked(unsigned int reg);
    void setTOFControllerRegisterLocked(unsigned int reg, unsigned int value);
    [[nodiscard]] unsigned int getTOFControllerRegisterLocked(unsigned int reg);

    /// Register 0x21 of the time-of-flight controller.
    [[nodiscard]] unsigned int getTOFControllerFirmwareVersionLocked();
    /// 0, without a transfer: this bridge does not report its version.
    [[nodiscard]] unsigned int getUSBBackendFirmwareVersionLocked();

    /// Bytes of the ROM, one a transfer. There is one area: both calls read the same bytes.
    /// \throws IOPluginException, before any transfer, when start + length is above 0x10000.
    [[nodiscard]] std::vector<unsigned char> getUSBBackendFirmwareLocked(unsigned int start,
                                                                         unsigned int length);
    [[nodiscard]] std::vector<unsigned char> getUSBBackendConfigurationLocked(unsigned int start,
                                                                              unsigned int length);

    /// One byte of the ROM. These lock like the rest.
    void setROMData8(unsigned short address, unsigned char value);
    [[nodiscard]] unsigned char getROMData8(unsigned short address);

    /// Writes mask + 1, in 16 bits, to register 13 of the time-of-flight controller. The number is not used.
    void setStrobeLocked(int reg, unsigned short mask);
    /// Writes the mask itself there.
    void resetStrobeLocked(int reg, unsigned short mask);

    /// As after construction: the bridge's setting is unknown. Nothing is sent.
    void reset();

protected:
    /// \param clock does all the waiting; it must outlive the chip
    explicit VC0345Impl(ChipClock& clock);

private:
    struct VC0345ImplPrivate;
    std::unique_ptr<VC0345ImplPrivate> impl;
};

} // namespace Zentara::IO
