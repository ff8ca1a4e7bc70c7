#pragma once

#include <exception>
#include <memory>
#include <utility>

#include <zentara/io/video_device_proxy.h>
#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/format.h>
#include <zentara/utils/log_area.h>

#include "io/chips/camera_chip_row.h"

namespace Zentara::IO {

/// A chip that tells each of its transfers.
template<typename Chip>
class TellingChip final : public Chip {
public:
    explicit TellingChip(ChipListener target) : listener(std::move(target)) {}

    void send(unsigned unit, unsigned long control, unsigned long length, void* data) override {
        const Utils::LogAreaScope scope(Utils::LogArea_CHIPS);
        tell(false, unit, control, length, data, [&] { Chip::send(unit, control, length, data); });
    }
    void recv(unsigned unit, unsigned long control, unsigned long length, void* data, bool flag) override {
        const Utils::LogAreaScope scope(Utils::LogArea_CHIPS);
        tell(true, unit, control, length, data, [&] { Chip::recv(unit, control, length, data, flag); });
    }

private:
    template<typename Step>
    void tell(bool isGet, unsigned unit, unsigned long control, unsigned long length, void* data, Step step) {
        if (!listener)
            return step();
        const auto* bytes = static_cast<const std::uint8_t*>(data);
        // Told before and after, so that one which hangs has been told, too.
        ChipTransfer transfer{isGet, unit, static_cast<std::uint32_t>(control), {bytes, bytes + length}, {},
                              {},    false};
        listener(transfer);
        transfer.isOver = true;
        try {
            step();
        } catch (const std::exception& failure) {
            transfer.failure = failure.what();
            listener(transfer);
            throw;
        }
        if (isGet)
            transfer.reply.assign(bytes, bytes + length);
        listener(transfer);
    }

    ChipListener listener;
};

/// What the known chips have in common. Registers of the bridge have 8 bits, those of the time-of-flight controller 16,
/// unless the chip knows better.
template<typename Chip>
class BoundChip : public CameraChip {
public:
    BoundChip(const Row& description, VideoDeviceProxy& proxy, ChipListener listener)
        : CameraChip(description), chip(std::move(listener)) {
        chip.initialize(&proxy);
    }
    ~BoundChip() override { chip.dispose(); }

    [[nodiscard]] XUInterface& wire() noexcept final { return chip; }

    [[nodiscard]] RegisterLimits limits(Target target) override {
        switch (target) {
        case Target::Bridge:
            return {0xFFFF, 0xFF};
        case Target::Tof:
            return {0xFF, 0xFFFF};
        case Target::Color:
            break;
        }
        refuse("way to a colour sensor's registers");
    }
    void write(Target target, unsigned reg, unsigned value) override {
        switch (target) {
        case Target::Bridge:
            return chip.setUSBBackendRegisterLocked(reg, value);
        case Target::Tof:
            return chip.setTOFControllerRegisterLocked(reg, value);
        case Target::Color:
            break;
        }
        refuse("way to a colour sensor's registers");
    }
    [[nodiscard]] unsigned read(Target target, unsigned reg) override {
        switch (target) {
        case Target::Bridge:
            return chip.getUSBBackendRegisterLocked(reg);
        case Target::Tof:
            return chip.getTOFControllerRegisterLocked(reg);
        case Target::Color:
            break;
        }
        refuse("way to a colour sensor's registers");
    }

    [[nodiscard]] BusLimits i2cLimits(std::uint8_t, std::uint8_t dataBytes) override {
        if constexpr (requires { &Chip::setI2cLocked; })
            return {0x7F, {0xFF, dataBytes == 1 ? 0xFFU : 0xFFFFU}};
        else
            refuse("way to its I2C bus");
    }
    void writeI2c(std::uint8_t device, unsigned reg, unsigned value, std::uint8_t dataBytes) final {
        if constexpr (requires { &Chip::setI2cLocked; })
            chip.setI2cLocked(device, reg, value, 1, dataBytes, true); // the orders that requests have
        else
            refuse("way to its I2C bus");
    }
    [[nodiscard]] unsigned readI2c(std::uint8_t device, unsigned reg, std::uint8_t dataBytes) final {
        if constexpr (requires { &Chip::getI2cLocked; })
            return chip.getI2cLocked(device, reg, 1, dataBytes, false);
        else
            refuse("way to its I2C bus");
    }

    [[nodiscard]] std::vector<unsigned char> readFirmware(unsigned start, unsigned length) final {
        return chip.getUSBBackendFirmwareLocked(start, length);
    }
    [[nodiscard]] std::vector<unsigned char> readConfiguration(unsigned start, unsigned length) final {
        return chip.getUSBBackendConfigurationLocked(start, length);
    }
    [[nodiscard]] bool canWriteConfiguration() const noexcept override { return false; }
    void writeConfiguration(unsigned, const std::vector<std::uint8_t>&) override {
        refuse("way to write its flash");
    }

    [[nodiscard]] unsigned bridgeVersion() final { return chip.getUSBBackendFirmwareVersionLocked(); }
    [[nodiscard]] unsigned tofVersion() final { return chip.getTOFControllerFirmwareVersionLocked(); }

protected:
    [[noreturn]] void refuse(const char* what) const {
        throw Plugin::NotSupportedPluginException(Utils::Format("a camera with % has no %") % name() % what);
    }

    TellingChip<Chip> chip;
};

template<typename Bound>
std::unique_ptr<CameraChip> bindChip(const CameraChip::Row& row, VideoDeviceProxy& proxy,
                                     ChipListener listener) {
    return std::make_unique<Bound>(row, proxy, std::move(listener));
}

} // namespace Zentara::IO
