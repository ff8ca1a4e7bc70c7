#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include <zentara/io/uvc_command_request.h>
#include <zentara/io/xu_interface.h>

#include "plugins/simulated/transfer.h"

namespace Zentara::IO {
class VideoDeviceProxy;
}

namespace Zentara::Tool {

using Simulated::bytesText;
using Simulated::ChipKind;
using Simulated::Transfer;

/// Is told of each transfer when it is over, failed ones included.
using TransferSink = std::function<void(const Transfer&)>;

enum class RegisterTarget { Bridge, Tof, Color };

/// The greatest register and value that a target takes.
struct RegisterLimits {
    std::uint32_t reg;
    std::uint32_t value;
};

/// The greatest device address, register and value that a transfer on the camera's bus takes.
struct I2cLimits {
    std::uint32_t device;
    RegisterLimits of;
};

/// A camera's controller as the verbs see it, whichever chip it is. Throws what the chip throws.
class CameraChip {
public:
    /// Finds out by its extension unit which chip the camera has, and binds it. The proxy must outlive the
    /// result.
    /// \throws ToolFailure when it is none of the known ones.
    [[nodiscard]] static std::unique_ptr<CameraChip> detect(IO::VideoDeviceProxy& proxy, TransferSink sink);

    /// Binds the chip that the camera is known to have. The proxy must outlive the result.
    [[nodiscard]] static std::unique_ptr<CameraChip> bind(ChipKind kind, IO::VideoDeviceProxy& proxy,
                                                          TransferSink sink);

    virtual ~CameraChip() = default;
    [[nodiscard]] virtual ChipKind kind() const = 0;
    [[nodiscard]] virtual IO::XUInterface& wire() = 0;
    [[nodiscard]] virtual unsigned unit() const = 0;

    /// \throws ToolFailure when the camera has no such target.
    [[nodiscard]] virtual RegisterLimits limits(RegisterTarget target) = 0;
    virtual void write(RegisterTarget target, unsigned reg, unsigned value) = 0;
    [[nodiscard]] virtual unsigned read(RegisterTarget target, unsigned reg) = 0;

    /// \throws ToolFailure when the chip has no way to its bus; the two below, too.
    [[nodiscard]] virtual I2cLimits i2cLimits(std::uint8_t device, std::uint8_t dataBytes) = 0;
    virtual void writeI2c(std::uint8_t device, unsigned reg, unsigned value, std::uint8_t dataBytes) = 0;
    [[nodiscard]] virtual unsigned readI2c(std::uint8_t device, unsigned reg, std::uint8_t dataBytes) = 0;

    [[nodiscard]] virtual std::vector<unsigned char> readFirmware(unsigned start, unsigned length) = 0;
    [[nodiscard]] virtual std::vector<unsigned char> readConfiguration(unsigned start, unsigned length) = 0;

    /// The configuration memory; addresses have 16 bits. \throws ToolFailure when the chip has no way to write.
    [[nodiscard]] virtual bool canWriteFlash() const = 0;
    virtual void writeFlash(unsigned start, const std::vector<std::uint8_t>& bytes) = 0;

    void command(IO::UVCPrefix prefix, unsigned a, unsigned b);
};

} // namespace Zentara::Tool
