#include <zentara/io/vc0345_impl.h>

#include <array>
#include <chrono>
#include <cstdint>

#include <zentara/io/uvc_command_request.h>
#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/format.h>
#include <zentara/utils/mutex.h>

#include "io/chips/chip_commands.h"
#include "io/chips/little_endian.h"
#include "io/chips/modulation.h"
#include "io/chips/sleeping_clock.h"
#include "io/chips/vc0345_protocol.h"
#include "io/chips/vc_bridge.h"

namespace Zentara::IO {

using namespace VC0345;
using Chips::putPair;
using Utils::Threading::AutoLock;

namespace {

constexpr std::chrono::milliseconds commandWait{5};

constexpr MetaRegisters metaRegisters[] = {{1000, 0, 18},  {1001, 3, 19},  {1002, 9, 40}, {1003, 16, 20},
                                           {1004, 21, 22}, {1005, 25, 26}, {1006, 28, 29}};

} // namespace

/// The chip with its mutex held by the caller.
struct VC0345Impl::VC0345ImplPrivate {
    VC0345ImplPrivate(XUInterface& chip, ChipClock& time)
        : clock(time), wire(chip), bridge(chip, {VC::sensorControlSize}) {}

    void execute(const UVCCommandRequest& command) ZENTARA_REQUIRES(mutex);
    void setTof(unsigned reg, unsigned value) ZENTARA_REQUIRES(mutex);
    [[nodiscard]] unsigned getTof(unsigned reg) ZENTARA_REQUIRES(mutex);
    /// Nothing is remembered between the two.
    void setStrobe(unsigned mask) ZENTARA_REQUIRES(mutex) { setTof(strobeRegister, mask + 1); }
    void resetStrobe(unsigned mask) ZENTARA_REQUIRES(mutex) { setTof(strobeRegister, mask); }
    void setROMData8(unsigned address, unsigned value) ZENTARA_REQUIRES(mutex);
    [[nodiscard]] std::uint8_t getROMData8(unsigned address) ZENTARA_REQUIRES(mutex);
    [[nodiscard]] std::vector<unsigned char> readMemory(unsigned start, unsigned length)
        ZENTARA_REQUIRES(mutex);

    ChipClock& clock;
    Utils::Threading::Mutex mutex;
    XUInterface& wire;
    VCBridge bridge ZENTARA_GUARDED_BY(mutex);

private:
    void setTofOrMeta(unsigned a, unsigned b) ZENTARA_REQUIRES(mutex);
    void processMeta(unsigned code, unsigned value) ZENTARA_REQUIRES(mutex);
    void setUFrames(unsigned count) ZENTARA_REQUIRES(mutex);
    [[nodiscard]] std::uint8_t getTofByte(unsigned reg) ZENTARA_REQUIRES(mutex);
};

void VC0345Impl::VC0345ImplPrivate::execute(const UVCCommandRequest& command) {
    switch (command.getPrefix()) {
    case UVC_TOF_CONTROLLER_REGISTER:
        return setTofOrMeta(command.getA(), command.getB());
    case UVC_SET_STROBE:
        return setStrobe(command.getB());
    case UVC_RESET_STROBE:
        return resetStrobe(command.getB());
    default:
        return; // this chip has no such command, and says nothing
    }
}

void VC0345Impl::VC0345ImplPrivate::setTofOrMeta(unsigned a, unsigned b) {
    if (a >= firstMetaCode) {
        processMeta(a, b);
    } else if (a == microFrameRegister) {
        setUFrames(b);
    } else {
        setTof(a, b);
    }
}

void VC0345Impl::VC0345ImplPrivate::processMeta(unsigned code, unsigned value) {
    for (const MetaRegisters& pair : metaRegisters) {
        if (pair.code == code) {
            setTof(pair.low, value & 0xFFFF);
            return setTof(pair.high, value >> 16);
        }
    }
    throw Plugin::ConfigurationPluginException(Utils::Format("invalid meta value %{:x}") % code);
}

// Whether the count is odd has to be told in the strobe register as well.
void VC0345Impl::VC0345ImplPrivate::setUFrames(unsigned count) {
    setTof(microFrameRegister, count);
    setTof(strobeRegister, count % 2 == 1 ? oddMicroFrames : evenMicroFrames);
}

void VC0345Impl::VC0345ImplPrivate::setTof(unsigned reg, unsigned value) {
    bridge.bring(VC::sensorControlSize, tofPacketBytes);
    std::array<std::uint8_t, tofPacketBytes> packet{tofWrite, static_cast<std::uint8_t>(reg)};
    putPair(packet, tofWriteValue, value);
    wire.send(VC::unit, tofControl, packet.size(), packet.data());
}

// One byte a transfer, the low one first; between the two the register may change.
unsigned VC0345Impl::VC0345ImplPrivate::getTof(unsigned reg) {
    bridge.bring(VC::sensorControlSize, tofPacketBytes);
    const unsigned low = getTofByte(reg);
    return getTofByte(reg | highByte) << 8 | low;
}

std::uint8_t VC0345Impl::VC0345ImplPrivate::getTofByte(unsigned reg) {
    std::array<std::uint8_t, tofPacketBytes> packet{tofRead, static_cast<std::uint8_t>(reg)};
    wire.recv(VC::unit, tofControl, packet.size(), packet.data(), false);
    return packet[tofReadValue];
}

void VC0345Impl::VC0345ImplPrivate::setROMData8(unsigned address, unsigned value) {
    std::array<std::uint8_t, romPacketBytes> packet{romWrite};
    putPair(packet, romAddress, address);
    packet[romValue] = static_cast<std::uint8_t>(value);
    wire.send(VC::unit, romControl, packet.size(), packet.data());
}

std::uint8_t VC0345Impl::VC0345ImplPrivate::getROMData8(unsigned address) {
    std::array<std::uint8_t, romPacketBytes> packet{romRead};
    putPair(packet, romAddress, address);
    wire.recv(VC::unit, romControl, packet.size(), packet.data(), false);
    return packet[romValue];
}

std::vector<unsigned char> VC0345Impl::VC0345ImplPrivate::readMemory(unsigned start, unsigned length) {
    checkMemoryRange(start, length);
    std::vector<unsigned char> bytes(length);
    for (unsigned i = 0; i < length; ++i)
        bytes[i] = getROMData8(start + i);
    return bytes;
}

VC0345Impl::VC0345Impl() : VC0345Impl(sleepingClock()) {}

VC0345Impl::VC0345Impl(ChipClock& clock) : impl(std::make_unique<VC0345ImplPrivate>(*this, clock)) {}

VC0345Impl::~VC0345Impl() = default;

void VC0345Impl::setup() { setup(VC::unitGuid); }

// The wait belongs to the command: one that does nothing waits all the same.
void VC0345Impl::processCommand(Utils::SmartPtr<xuRequest> request) {
    checkCommand("VC0345", request.get());
    if (request->type() != XU_UVC_COMMAND)
        return;
    const auto* const command = dynamic_cast<const UVCCommandRequest*>(request.get());
    if (!command)
        refuse("VC0345", *request);
    const AutoLock lock(impl->mutex);
    impl->clock.wait(commandWait);
    impl->execute(*command);
}

void VC0345Impl::setUSBBackendRegisterLocked(unsigned int reg, unsigned int value) {
    const AutoLock lock(impl->mutex);
    impl->bridge.write(reg, value);
}

unsigned int VC0345Impl::getUSBBackendRegisterLocked(unsigned int reg) {
    const AutoLock lock(impl->mutex);
    return impl->bridge.read(reg);
}

void VC0345Impl::setTOFControllerRegisterLocked(unsigned int reg, unsigned int value) {
    const AutoLock lock(impl->mutex);
    impl->setTof(reg, value);
}

unsigned int VC0345Impl::getTOFControllerRegisterLocked(unsigned int reg) {
    const AutoLock lock(impl->mutex);
    return impl->getTof(reg);
}

unsigned int VC0345Impl::getTOFControllerFirmwareVersionLocked() {
    return getTOFControllerRegisterLocked(VC::tofVersionRegister);
}

unsigned int VC0345Impl::getUSBBackendFirmwareVersionLocked() { return 0; }

std::vector<unsigned char> VC0345Impl::getUSBBackendFirmwareLocked(unsigned int start, unsigned int length) {
    const AutoLock lock(impl->mutex);
    return impl->readMemory(start, length);
}

std::vector<unsigned char> VC0345Impl::getUSBBackendConfigurationLocked(unsigned int start,
                                                                        unsigned int length) {
    return getUSBBackendFirmwareLocked(start, length);
}

void VC0345Impl::setROMData8(unsigned short address, unsigned char value) {
    const AutoLock lock(impl->mutex);
    impl->setROMData8(address, value);
}

unsigned char VC0345Impl::getROMData8(unsigned short address) {
    const AutoLock lock(impl->mutex);
    return impl->getROMData8(address);
}

void VC0345Impl::setStrobeLocked(int, unsigned short mask) {
    const AutoLock lock(impl->mutex);
    impl->setStrobe(mask);
}

void VC0345Impl::resetStrobeLocked(int, unsigned short mask) {
    const AutoLock lock(impl->mutex);
    impl->resetStrobe(mask);
}

void VC0345Impl::reset() {
    const AutoLock lock(impl->mutex);
    impl->bridge.forget();
}

} // namespace Zentara::IO
