#pragma once

#include <algorithm>
#include <memory>

#include <zentara/io/tof_registers.h>
#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/format.h>

namespace Zentara::IO {

/// A chip whose transfers go through a back-end's callbacks.
template<typename Chip>
class ReachedChip final : public Chip {
public:
    explicit ReachedChip(const BackEndWay& callbacks) : way(callbacks) {}

    void send(unsigned unit, unsigned long control, unsigned long length, void* data) override {
        make("setting", way.set, unit, control, length, data);
    }
    /// A back-end has no flag: bytes that are all 0 ask nothing.
    void recv(unsigned unit, unsigned long control, unsigned long length, void* data, bool plain) override {
        if (plain)
            std::fill_n(static_cast<unsigned char*>(data), length, static_cast<unsigned char>(0));
        make("reading", way.get, unit, control, length, data);
    }

private:
    void make(const char* what, BackEnd::Transfer* transfer, unsigned unit, unsigned long control,
              unsigned long length, void* data) {
        const ErrorCode code =
            transfer(way.context, static_cast<unsigned short>(unit), static_cast<unsigned int>(control),
                     static_cast<unsigned char*>(data), static_cast<unsigned int>(length));
        if (code != ErrorCode_SUCCESS)
            throw Plugin::IOPluginException(Utils::Format("% control % of extension unit % failed") % what %
                                            control % unit);
    }

    const BackEndWay way;
};

/// The registers that the chip itself reaches.
template<typename Chip>
class ReachedRegisters final : public TofRegisters {
public:
    explicit ReachedRegisters(const BackEndWay& way) : chip(way) {}

    std::uint16_t read(std::uint8_t address) override {
        return static_cast<std::uint16_t>(chip.getTOFControllerRegisterLocked(address));
    }
    void write(std::uint8_t address, std::uint16_t value) override {
        chip.setTOFControllerRegisterLocked(address, value);
    }
    std::vector<unsigned char> readConfiguration(unsigned start, unsigned length) override {
        return chip.getUSBBackendConfigurationLocked(start, length);
    }

    ReachedChip<Chip> chip;
};

template<typename Chip>
std::unique_ptr<TofRegisters> reachRegisters(const BackEndWay& way) {
    return std::make_unique<ReachedRegisters<Chip>>(way);
}

/// Refuses a camera that has no time-of-flight controller with 16-bit registers.
[[nodiscard]] std::unique_ptr<TofRegisters> reachOV0570(const BackEndWay& way);

/// Leaves the bridge's byte order as whoever else uses the bridge has set it.
[[nodiscard]] std::unique_ptr<TofRegisters> reachVC0258(const BackEndWay& way);

} // namespace Zentara::IO
