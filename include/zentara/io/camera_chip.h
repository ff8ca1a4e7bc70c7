#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <zentara/export.h>
#include <zentara/guid.h>
#include <zentara/hardware_version_internal.h>
#include <zentara/io/uvc_command_request.h>
#include <zentara/io/xu_interface.h>

namespace Zentara::IO {

class VideoDeviceProxy;

/// One SET or GET of an extension unit, as it passed over the wire. A copyable value. Separate.
struct ChipTransfer {
    bool isGet = false;              ///< a GET, which brings bytes; else a SET
    std::uint32_t unit = 0;          ///< the unit's number on the camera
    std::uint32_t control = 0;       ///< the selector of the control in that unit
    std::vector<std::uint8_t> sent;  ///< the packet of a SET, the request bytes of a GET
    std::vector<std::uint8_t> reply; ///< what a GET brought back; empty when it failed
    std::string failure;             ///< why the transfer failed; empty when it did not
    bool isOver = false;             ///< false while it has yet to begin
};

/// Is told of each transfer before it begins and when it is over, failed ones included, under the chip's lock: it must
/// not call the chip.
using ChipListener = std::function<void(const ChipTransfer&)>;

/// "11 1D 00". Safe.
[[nodiscard]] ZENTARA_API std::string bytesText(const std::vector<std::uint8_t>& bytes);

/// A camera's controller, whichever it is: what the known controllers have in common, and by name and limits what
/// they have not. Each is one row of a table inside; its class, with all its operations, is public beside this one.
///
/// Made for a proxy by create() or detect(); the proxy must outlive it. Operations throw what the chip and its proxy
/// throw, and `NotSupportedPluginException` "a camera with CHIP has no WHAT" where the chip lacks something. Safe.
class ZENTARA_API CameraChip {
public:
    /// Whose registers: the USB bridge's, the time-of-flight controller's or the colour sensor's.
    enum class Target { Bridge, Tof, Color };

    /// The greatest register and value that a target takes; the least ones are 0.
    struct RegisterLimits {
        std::uint32_t reg;
        std::uint32_t value;
    };

    /// The greatest device address, register and value that a transfer on the camera's bus takes.
    struct BusLimits {
        std::uint32_t device; ///< the greatest address of a device
        RegisterLimits of;    ///< the one that was asked about
    };

    /// Meta codes, which take the place of a register in a raw command, begin here.
    static constexpr unsigned firstMetaCode = 1000;
    /// The addresses of a controller's memories have 16 bits.
    static constexpr unsigned memoryBytes = 0x10000;

    /// The environment variable that holds, while a bare video device is made, the name of the controller that the
    /// user wants. A device that may have one or the other, as a simulated one, takes it; others need not look.
    static constexpr const char* wantedVariable = "ZENTARA_SIMULATED_CHIP";

    /// The controllers that are known, as "OV0570".
    [[nodiscard]] static std::vector<std::string> names();

    /// The name as names() has it, for one in any case; empty for a name that is not known.
    [[nodiscard]] static std::string knownName(const std::string& name);

    /// The product number under which the list of a camera's modules holds the controller: a parameter back-end is
    /// handed that list, and no name. \throws NotSupportedPluginException for a name that is not known
    [[nodiscard]] static std::uint32_t productOf(const std::string& name);

    /// The first controller in the list; empty when it holds none.
    [[nodiscard]] static std::string listedIn(const HardwareVersionInternal& modules);

    /// Binds the chip that the camera is known to have, which selects its extension unit.
    /// \param name one of names(), in any case \param listener may be empty
    /// \throws NotSupportedPluginException for a name that is not known, or a camera without that unit
    [[nodiscard]] static std::unique_ptr<CameraChip> create(const std::string& name, VideoDeviceProxy& proxy,
                                                            ChipListener listener = {});

    /// Finds out by its extension unit, and by the length of a control where two have one unit in common, which chip
    /// the camera has, and binds it. \return null when it is none of the known ones
    [[nodiscard]] static std::unique_ptr<CameraChip> detect(VideoDeviceProxy& proxy,
                                                            ChipListener listener = {});

    /// What the bytes mean to a controller of that name, in a few words; a packet that means nothing says so.
    [[nodiscard]] static std::string meaningOf(const std::string& name, const ChipTransfer& transfer);

    /// One line: "SET 6/2  11 1D 00 01 00 00 00  write device 1 register 0x1D := 0x0001"; a failure ends it.
    [[nodiscard]] static std::string lineOf(const std::string& name, const ChipTransfer& transfer);

    virtual ~CameraChip();
    CameraChip(const CameraChip&) = delete;
    CameraChip& operator=(const CameraChip&) = delete;

    /// As in names(). Lives as long as the library.
    [[nodiscard]] const char* name() const noexcept;
    /// The extension unit, and its number on the camera.
    [[nodiscard]] const ::GUID& unitGuid() const noexcept;
    [[nodiscard]] unsigned unit() const noexcept;

    /// The chip itself, for raw transfers and requests of any kind.
    [[nodiscard]] virtual XUInterface& wire() noexcept = 0;

    /// What write() and read() take there; asks the camera at most once.
    [[nodiscard]] virtual RegisterLimits limits(Target target) = 0;
    /// One register. Numbers beyond the limits are not refused here: each chip cuts or refuses them in its own way.
    virtual void write(Target target, unsigned reg, unsigned value) = 0;
    [[nodiscard]] virtual unsigned read(Target target, unsigned reg) = 0;

    /// Registers of devices on the camera's bus, of 1 or 2 bytes. \param device its bus address
    [[nodiscard]] virtual BusLimits i2cLimits(std::uint8_t device, std::uint8_t dataBytes) = 0;
    virtual void writeI2c(std::uint8_t device, unsigned reg, unsigned value, std::uint8_t dataBytes) = 0;
    [[nodiscard]] virtual unsigned readI2c(std::uint8_t device, unsigned reg, std::uint8_t dataBytes) = 0;

    /// The two memories; start + length is at most memoryBytes. The storage lies in the configuration.
    [[nodiscard]] virtual std::vector<unsigned char> readFirmware(unsigned start, unsigned length) = 0;
    [[nodiscard]] virtual std::vector<unsigned char> readConfiguration(unsigned start, unsigned length) = 0;

    [[nodiscard]] virtual bool canWriteConfiguration() const noexcept = 0;
    /// Nothing is read back: who has to be sure does it. A failure in between leaves a part written.
    virtual void writeConfiguration(unsigned start, const std::vector<std::uint8_t>& bytes) = 0;

    /// The firmware versions of bridge (0 where it tells none) and time-of-flight controller.
    [[nodiscard]] virtual unsigned bridgeVersion() = 0;
    [[nodiscard]] virtual unsigned tofVersion() = 0;

    /// The modulation frequencies that the chip has a command for, in MHz, ascending; none where it has no command.
    [[nodiscard]] std::vector<unsigned> modulationFrequencies() const;
    /// The code of such a command's value: the frequency in both bytes.
    [[nodiscard]] static constexpr unsigned modulationCode(unsigned megahertz) noexcept {
        return megahertz * 0x101;
    }
    /// \throws ArgumentPluginException for a frequency that is not among them
    void setModulationFrequency(unsigned megahertz);

    /// Runs one raw command: what `a` and `b` are depends on the prefix, see `UVCPrefix`.
    void command(UVCPrefix prefix, unsigned a, unsigned b);

    struct Row; ///< what the library knows of a controller

protected:
    explicit CameraChip(const Row& description) noexcept : row(description) {}

private:
    const Row& row;
};

} // namespace Zentara::IO
