#include "tools/zentara/chips/camera_chip.h"

#include <algorithm>
#include <exception>
#include <utility>

#include <zentara/io/ov0570_impl.h>
#include <zentara/io/vc0258_impl.h>
#include <zentara/io/vc0345_impl.h>
#include <zentara/io/video_device_proxy.h>
#include <zentara/utils/format.h>

#include "tools/zentara/exit_code.h"
#include "tools/zentara/tool_log.h"

namespace Zentara::Tool {
namespace {

constexpr unsigned vcUnit = 4;
constexpr unsigned vcSensorControl = 16;
constexpr int vc0258SensorBytes = 9;
constexpr int vc0345SensorBytes = 4;
constexpr std::size_t eepromPacketBytes = 32;

/// A chip that shows each of its transfers.
template<typename Chip>
class TracedChip final : public Chip {
public:
    explicit TracedChip(TransferSink target) : sink(std::move(target)) {}

    void send(unsigned unit, unsigned long control, unsigned long length, void* data) override {
        trace(false, unit, control, length, data, [&] { Chip::send(unit, control, length, data); });
    }
    void recv(unsigned unit, unsigned long control, unsigned long length, void* data, bool flag) override {
        trace(true, unit, control, length, data, [&] { Chip::recv(unit, control, length, data, flag); });
    }

private:
    template<typename Step>
    void trace(bool isGet, unsigned unit, unsigned long control, unsigned long length, void* data,
               Step step) {
        const WatchedStep watched(Utils::Format("% unit %, control %") % (isGet ? "GET" : "SET") % unit %
                                  control);
        const auto* bytes = static_cast<const std::uint8_t*>(data);
        Transfer transfer{isGet, unit, static_cast<std::uint32_t>(control), {bytes, bytes + length}, {}, {}};
        try {
            step();
        } catch (const std::exception& failure) {
            transfer.failure = failure.what();
            sink(transfer);
            throw;
        }
        if (isGet)
            transfer.reply.assign(bytes, bytes + length);
        sink(transfer);
    }

    TransferSink sink;
};

[[noreturn]] void refuse(ChipKind kind, const char* what) {
    throw ToolFailure(ExitCode_FAILED, Utils::Format("a camera with % has no %") % chipName(kind) % what);
}

/// What the three chips have in common.
template<typename Chip, ChipKind chipKind>
class KnownChip : public CameraChip {
public:
    KnownChip(IO::VideoDeviceProxy& proxy, TransferSink sink) : chip(std::move(sink)) {
        chip.initialize(&proxy);
    }

    [[nodiscard]] ChipKind kind() const final { return chipKind; }
    [[nodiscard]] IO::XUInterface& wire() final { return chip; }
    [[nodiscard]] unsigned unit() const override { return vcUnit; }

    [[nodiscard]] RegisterLimits limits(RegisterTarget target) override {
        switch (target) {
        case RegisterTarget::Bridge:
            return {0xFFFF, 0xFF};
        case RegisterTarget::Tof:
            return {0xFF, 0xFFFF};
        default:
            refuse(chipKind, "way to a colour sensor's registers");
        }
    }
    void write(RegisterTarget target, unsigned reg, unsigned value) override {
        if (target == RegisterTarget::Bridge)
            chip.setUSBBackendRegisterLocked(reg, value);
        else
            chip.setTOFControllerRegisterLocked(reg, value);
    }
    [[nodiscard]] unsigned read(RegisterTarget target, unsigned reg) override {
        return target == RegisterTarget::Bridge ? chip.getUSBBackendRegisterLocked(reg)
                                                : chip.getTOFControllerRegisterLocked(reg);
    }

    [[nodiscard]] I2cLimits i2cLimits(std::uint8_t, std::uint8_t dataBytes) override {
        if constexpr (requires { &Chip::setI2cLocked; })
            return {0x7F, {0xFF, dataBytes == 1 ? 0xFFU : 0xFFFFU}};
        else
            refuse(chipKind, "way to its I2C bus");
    }
    void writeI2c(std::uint8_t device, unsigned reg, unsigned value, std::uint8_t dataBytes) final {
        if constexpr (requires { chip.setI2cLocked(device, reg, value, 1, dataBytes, true); })
            chip.setI2cLocked(device, reg, value, 1, dataBytes, true);
        else
            refuse(chipKind, "way to its I2C bus");
    }
    [[nodiscard]] unsigned readI2c(std::uint8_t device, unsigned reg, std::uint8_t dataBytes) final {
        if constexpr (requires { chip.getI2cLocked(device, reg, 1, dataBytes, false); })
            return chip.getI2cLocked(device, reg, 1, dataBytes, false);
        else
            refuse(chipKind, "way to its I2C bus");
    }

    [[nodiscard]] std::vector<unsigned char> readFirmware(unsigned start, unsigned length) final {
        return chip.getUSBBackendFirmwareLocked(start, length);
    }
    [[nodiscard]] std::vector<unsigned char> readConfiguration(unsigned start, unsigned length) final {
        return chip.getUSBBackendConfigurationLocked(start, length);
    }

    [[nodiscard]] bool canWriteFlash() const override { return false; }
    void writeFlash(unsigned, const std::vector<std::uint8_t>&) override {
        refuse(chipKind, "way to write its flash");
    }

protected:
    TracedChip<Chip> chip;
};

using VC0258Chip = KnownChip<IO::VC0258Impl, ChipKind::VC0258>;

/// Its ROM takes single bytes.
class VC0345Chip final : public KnownChip<IO::VC0345Impl, ChipKind::VC0345> {
public:
    using KnownChip::KnownChip;

    [[nodiscard]] bool canWriteFlash() const override { return true; }
    void writeFlash(unsigned start, const std::vector<std::uint8_t>& bytes) override {
        for (std::size_t i = 0; i < bytes.size(); ++i)
            chip.setROMData8(static_cast<unsigned short>(start + i), bytes[i]);
    }
};

/// The one that knows its bus, and a colour sensor on it.
class OV0570Chip final : public KnownChip<IO::OV0570Impl, ChipKind::OV0570> {
public:
    using KnownChip::KnownChip;

    [[nodiscard]] unsigned unit() const override { return 6; }

    [[nodiscard]] RegisterLimits limits(RegisterTarget target) override {
        const IO::OV0570Info info = chip.getInfoLocked();
        if (target == RegisterTarget::Bridge)
            return {info.devices[0].addressMask(), info.devices[0].dataMask()};
        const unsigned address = target == RegisterTarget::Tof ? 0x0021 : 0x9711;
        const IO::OV0570DeviceID* found = nullptr;
        for (const IO::OV0570DeviceID& device : info.devices)
            found = device.busAddress == address ? &device : found;
        if (found == nullptr)
            refuse(kind(), target == RegisterTarget::Tof ? "time-of-flight controller" : "colour sensor");
        return target == RegisterTarget::Tof ? RegisterLimits{found->addressMask(), found->dataMask()}
                                             : RegisterLimits{0xFF, 0xFF};
    }
    /// Those of the first device at the address. A device that is not there has none: the transfer will say
    /// so.
    [[nodiscard]] I2cLimits i2cLimits(std::uint8_t device, std::uint8_t) override {
        const auto devices = chip.getInfoLocked().devices;
        const auto found = std::find_if(devices.begin() + 1, devices.end(),
                                        [device](const auto& known) { return known.busAddress == device; });
        if (found == devices.end())
            return {0xFF, {0xFFFFFFFF, 0xFFFF}};
        return {0xFF, {found->addressMask(), found->dataMask()}};
    }
    void write(RegisterTarget target, unsigned reg, unsigned value) override {
        if (target != RegisterTarget::Color)
            return KnownChip::write(target, reg, value);
        chip.setRGBSensorRegisterLocked(static_cast<unsigned char>(reg), static_cast<unsigned char>(value));
    }
    [[nodiscard]] unsigned read(RegisterTarget target, unsigned reg) override {
        return target == RegisterTarget::Color
                   ? chip.getRGBSensorRegisterLocked(static_cast<unsigned char>(reg))
                   : KnownChip::read(target, reg);
    }

    [[nodiscard]] bool canWriteFlash() const override { return true; }

    /// In ranges that the EEPROM takes at once, each in packets of 32 bytes.
    void writeFlash(unsigned start, const std::vector<std::uint8_t>& bytes) override {
        const std::size_t most = chip.getEEPROMWritableSize();
        if (most == 0)
            refuse(kind(), "writable EEPROM");
        for (std::size_t at = 0; at < bytes.size(); at += most)
            writeRange(static_cast<unsigned>(start + at), bytes.data() + at,
                       std::min(most, bytes.size() - at));
    }

private:
    void writeRange(unsigned start, const std::uint8_t* bytes, std::size_t length) {
        chip.setEEPROMWriteAddress(static_cast<unsigned short>(start),
                                   static_cast<unsigned short>(start + length - 1));
        for (std::size_t at = 0; at < length; at += eepromPacketBytes)
            chip.setEEPROMData(bytes + at, static_cast<unsigned>(std::min(eepromPacketBytes, length - at)));
    }
};

/// Null when the camera has not the chip's extension unit.
template<typename Chip>
std::unique_ptr<CameraChip> tryChip(IO::VideoDeviceProxy& proxy, const TransferSink& sink) {
    try {
        return std::make_unique<Chip>(proxy, sink);
    } catch (const Plugin::NotSupportedPluginException&) {
        return nullptr;
    }
}

} // namespace

std::unique_ptr<CameraChip> CameraChip::detect(IO::VideoDeviceProxy& proxy, TransferSink sink) {
    const ToolLog::Silence trying; // a controller that is not there is no fault
    if (auto chip = tryChip<OV0570Chip>(proxy, sink))
        return chip;
    // The other two have one extension unit in common; its sensor control tells them apart.
    if (auto chip = tryChip<VC0258Chip>(proxy, sink)) {
        const int bytes = proxy.len(vcUnit, vcSensorControl);
        if (bytes == vc0258SensorBytes)
            return chip;
        if (bytes == vc0345SensorBytes)
            return std::make_unique<VC0345Chip>(proxy, sink);
    }
    throw ToolFailure(ExitCode_NO_DEVICE, "the camera has no controller that is known");
}

std::unique_ptr<CameraChip> CameraChip::bind(ChipKind kind, IO::VideoDeviceProxy& proxy, TransferSink sink) {
    switch (kind) {
    case ChipKind::OV0570:
        return std::make_unique<OV0570Chip>(proxy, std::move(sink));
    case ChipKind::VC0258:
        return std::make_unique<VC0258Chip>(proxy, std::move(sink));
    default:
        return std::make_unique<VC0345Chip>(proxy, std::move(sink));
    }
}

void CameraChip::command(IO::UVCPrefix prefix, unsigned a, unsigned b) {
    wire().processCommand(Utils::makeRefcounted<IO::UVCCommandRequest>(prefix, a, b));
}

} // namespace Zentara::Tool
