#include <zentara/io/vc0258_impl.h>

#include <algorithm>
#include <chrono>
#include <cstdint>

#include <zentara/io/uvc_command_request.h>
#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/format.h>
#include <zentara/utils/mutex.h>

#include "io/chips/chip_commands.h"
#include "io/chips/modulation.h"
#include "io/chips/sleeping_clock.h"
#include "io/chips/vc0258_protocol.h"
#include "io/chips/vc0258_tunnel.h"
#include "io/chips/vc_bridge.h"

namespace Zentara::IO {

using namespace VC0258;
using Utils::Format;
using Utils::Threading::AutoLock;

namespace {

constexpr std::chrono::milliseconds tofWriteWait{5}; // before each write of the time-of-flight controller
constexpr std::chrono::milliseconds dacWait{50};
constexpr unsigned code30MHz = 7710; // 30 x 0x101
constexpr unsigned code10MHz = 2570; // 10 x 0x101
constexpr std::uint64_t registersPerDevice = 256;

// 1004 is the modulation frequency.
constexpr MetaRegisters metaRegisters[] = {{1000, 11, 12}, {1001, 13, 14}, {1002, 15, 16}, {1003, 20, 21}};

} // namespace

/// The chip with its mutex held by the caller.
struct VC0258Impl::VC0258ImplPrivate final : CommandExecutor {
    VC0258ImplPrivate(XUInterface& chip, ChipClock& time)
        : clock(time), bridge(chip, {VC::sensorControlSize, dmaControlSize, lastByteOrder}),
          tunnel(chip, bridge) {}

    void execute(const UVCCommandRequest& command) override ZENTARA_REQUIRES(mutex);
    void setI2c(unsigned device, unsigned reg, unsigned value, unsigned addressBytes,
                unsigned dataBytes) override ZENTARA_REQUIRES(mutex);
    unsigned getI2c(unsigned device, unsigned reg, unsigned addressBytes, unsigned dataBytes) override
        ZENTARA_REQUIRES(mutex);
    std::uint64_t registerCount(unsigned device) override ZENTARA_REQUIRES(mutex);

    void setI2c(unsigned device, unsigned reg, unsigned value, unsigned addressBytes, unsigned dataBytes,
                unsigned order) ZENTARA_REQUIRES(mutex);
    unsigned getI2c(unsigned device, unsigned reg, unsigned addressBytes, unsigned dataBytes, unsigned order)
        ZENTARA_REQUIRES(mutex);
    void setTof(unsigned reg, unsigned value) ZENTARA_REQUIRES(mutex);
    unsigned getTof(unsigned reg) ZENTARA_REQUIRES(mutex);
    void setStrobe(unsigned reg, unsigned mask) ZENTARA_REQUIRES(mutex);
    void resetStrobe(unsigned reg, unsigned mask) ZENTARA_REQUIRES(mutex);
    std::vector<unsigned char> readArea(unsigned area, unsigned start, unsigned length)
        ZENTARA_REQUIRES(mutex);
    void reset() noexcept ZENTARA_REQUIRES(mutex);

    ChipClock& clock;
    Utils::Threading::Mutex mutex;
    VCBridge bridge ZENTARA_GUARDED_BY(mutex);
    VC0258Tunnel tunnel ZENTARA_GUARDED_BY(mutex);

private:
    void setTofOrMeta(unsigned a, unsigned b) ZENTARA_REQUIRES(mutex);
    void processMeta(unsigned code, unsigned value) ZENTARA_REQUIRES(mutex);
    void setModFreq(unsigned code) ZENTARA_REQUIRES(mutex);
    void setUFrames(unsigned count) ZENTARA_REQUIRES(mutex);
    void configureDAC(unsigned value) ZENTARA_REQUIRES(mutex);
    void writeADCValue(unsigned a, unsigned b) ZENTARA_REQUIRES(mutex);
    unsigned& strobeOf(unsigned reg) noexcept ZENTARA_REQUIRES(mutex) {
        return reg == strobeRegister26 ? strobe26 : strobe27;
    }
    void writeStrobe(unsigned reg, unsigned bits) ZENTARA_REQUIRES(mutex);

    /// What the registers were last written, by writes that succeeded.
    unsigned strobe26 ZENTARA_GUARDED_BY(mutex) = 0;
    unsigned strobe27 ZENTARA_GUARDED_BY(mutex) = 0;
    /// ORed into the next write of register 29, then turned over.
    unsigned toggle ZENTARA_GUARDED_BY(mutex) = 1;
};

void VC0258Impl::VC0258ImplPrivate::execute(const UVCCommandRequest& command) {
    const unsigned a = command.getA();
    const unsigned b = command.getB();
    switch (command.getPrefix()) {
    case UVC_TOF_CONTROLLER_REGISTER:
        return setTofOrMeta(a, b);
    case UVC_CONFIGURE_DAC:
        return configureDAC(b);
    case UVC_ADC_VALUE:
        return writeADCValue(a, b);
    case UVC_SET_STROBE:
        return setStrobe(a, b);
    case UVC_RESET_STROBE:
        return resetStrobe(a, b);
    default:
        return; // this chip has no such command, and says nothing
    }
}

void VC0258Impl::VC0258ImplPrivate::setTofOrMeta(unsigned a, unsigned b) {
    if (a >= firstMetaCode) {
        processMeta(a, b);
    } else if (a == microFrameRegister) {
        setUFrames(b);
    } else {
        setTof(a, b);
    }
}

void VC0258Impl::VC0258ImplPrivate::setTof(unsigned reg, unsigned value) {
    clock.wait(tofWriteWait);
    const bool toggled = (reg & 0xFF) == toggleRegister;
    tunnel.setI2CData1A2D(tofWriteAddress, reg, toggled ? value | toggle : value, tofWriteOrder);
    // Only now: a write that failed must be repeated with the same toggle.
    if (toggled)
        toggle ^= 1;
}

unsigned VC0258Impl::VC0258ImplPrivate::getTof(unsigned reg) {
    return tunnel.getI2CData1A2D(tofReadAddress, reg, tofReadOrder);
}

void VC0258Impl::VC0258ImplPrivate::processMeta(unsigned code, unsigned value) {
    if (code == modulationCode)
        return setModFreq(value);
    for (const MetaRegisters& pair : metaRegisters) {
        if (pair.code == code) {
            setTof(pair.low, value & 0xFFFF);
            return setTof(pair.high, value >> 16);
        }
    }
    throw Plugin::ConfigurationPluginException(Format("invalid meta value %{:x}") % code);
}

void VC0258Impl::VC0258ImplPrivate::setModFreq(unsigned code) {
    if (code != code30MHz && code != code10MHz)
        throw Plugin::ConfigurationPluginException(Format("invalid modfreq value %{:x}") % code);
    for (const RegisterWrite& write : modulationWrites(code, 8 * (code & 0xFF)))
        setTof(write.reg, write.value);
}

// An even count has a bit of its own in strobe register 26, which is written without the toggle's path.
void VC0258Impl::VC0258ImplPrivate::setUFrames(unsigned count) {
    setTof(microFrameRegister, count);
    const unsigned bits = count % 2 == 0 ? strobe26 | evenMicroFramesBit : strobe26 & ~evenMicroFramesBit;
    clock.wait(tofWriteWait);
    tunnel.setI2CData1A2D(tofWriteAddress, strobeRegister26, bits, tofWriteOrder);
    strobe26 = bits;
}

// Twice the value, of which 12 bits go out, with a mark in the highest one. All four channels get the same.
void VC0258Impl::VC0258ImplPrivate::configureDAC(unsigned value) {
    const unsigned doubled = 2 * value;
    const unsigned word = (doubled & 0xFF) | ((doubled >> 8 & dacHighMask) | dacHighMark) << 8;
    for (const unsigned reg : dacRegisters) {
        clock.wait(dacWait);
        tunnel.setI2CData1A2D(dacAddress, reg, word, 1);
    }
}

void VC0258Impl::VC0258ImplPrivate::writeADCValue(unsigned a, unsigned b) {
    setTof(adcValueRegister, b & 0xFF);
    setTof(toggleRegister, (a & 0xFF) << 2);
}

void VC0258Impl::VC0258ImplPrivate::writeStrobe(unsigned reg, unsigned bits) {
    setTof(reg == strobeRegister26 ? strobeRegister26 : strobeRegister27, bits);
    strobeOf(reg) = bits;
}

void VC0258Impl::VC0258ImplPrivate::setStrobe(unsigned reg, unsigned mask) {
    writeStrobe(reg, strobeOf(reg) | (mask & allStrobes));
}

void VC0258Impl::VC0258ImplPrivate::resetStrobe(unsigned reg, unsigned mask) {
    writeStrobe(reg, strobeOf(reg) & ~(mask & allStrobes));
}

namespace {

// What the tunnel can carry, told apart before any transfer.
bool isOneByte(unsigned device, unsigned reg, unsigned addressBytes, unsigned dataBytes) {
    if (addressBytes != 1)
        throw Plugin::IOPluginException("addressBytes must be equal to 1");
    if (dataBytes != 1 && dataBytes != 2)
        throw Plugin::IOPluginException("dataBytes must be equal to 1 or 2");
    if (device > maxBusAddress)
        throw Plugin::ArgumentPluginException(Format("0x%{:x2} is no 7-bit bus address") % device);
    if (reg >= registersPerDevice)
        throw Plugin::ArgumentPluginException(Format("0x%{:x2} is no 8-bit register address") % reg);
    return dataBytes == 1;
}

} // namespace

void VC0258Impl::VC0258ImplPrivate::setI2c(unsigned device, unsigned reg, unsigned value,
                                           unsigned addressBytes, unsigned dataBytes, unsigned order) {
    if (isOneByte(device, reg, addressBytes, dataBytes)) {
        tunnel.setI2CData1A1D(device, reg, value);
    } else {
        tunnel.setI2CData1A2D(device, reg, value, order);
    }
}

unsigned VC0258Impl::VC0258ImplPrivate::getI2c(unsigned device, unsigned reg, unsigned addressBytes,
                                               unsigned dataBytes, unsigned order) {
    return isOneByte(device, reg, addressBytes, dataBytes) ? tunnel.getI2CData1A1D(device, reg)
                                                           : tunnel.getI2CData1A2D(device, reg, order);
}

// I2C requests name no order: they take the one that the time-of-flight controller has.
void VC0258Impl::VC0258ImplPrivate::setI2c(unsigned device, unsigned reg, unsigned value,
                                           unsigned addressBytes, unsigned dataBytes) {
    setI2c(device, reg, value, addressBytes, dataBytes, tofWriteOrder);
}

unsigned VC0258Impl::VC0258ImplPrivate::getI2c(unsigned device, unsigned reg, unsigned addressBytes,
                                               unsigned dataBytes) {
    return getI2c(device, reg, addressBytes, dataBytes, tofReadOrder);
}

std::uint64_t VC0258Impl::VC0258ImplPrivate::registerCount(unsigned) { return registersPerDevice; }

// Which area is meant is written for every read: it costs one transfer, and is never assumed.
std::vector<unsigned char> VC0258Impl::VC0258ImplPrivate::readArea(unsigned area, unsigned start,
                                                                   unsigned length) {
    checkMemoryRange(start, length);
    std::vector<unsigned char> bytes(length);
    bridge.write(memoryArea, area);
    for (unsigned done = 0; done < length; done += dmaMaxBytes)
        tunnel.getDMAData(start + done, bytes.data() + done, std::min(length - done, dmaMaxBytes));
    return bytes;
}

void VC0258Impl::VC0258ImplPrivate::reset() noexcept {
    strobe26 = 0;
    strobe27 = 0;
    toggle = 1;
    bridge.forget();
}

VC0258Impl::VC0258Impl() : VC0258Impl(sleepingClock()) {}

VC0258Impl::VC0258Impl(ChipClock& clock) : impl(std::make_unique<VC0258ImplPrivate>(*this, clock)) {}

VC0258Impl::~VC0258Impl() = default;

void VC0258Impl::setup() { setup(VC::unitGuid); }

void VC0258Impl::processCommand(Utils::SmartPtr<xuRequest> request) {
    checkCommand("VC0258", request.get());
    const AutoLock lock(impl->mutex);
    executeCommand(*impl, "VC0258", *request);
}

void VC0258Impl::setUSBBackendRegisterLocked(unsigned int reg, unsigned int value) {
    const AutoLock lock(impl->mutex);
    impl->bridge.write(reg, value);
}

unsigned int VC0258Impl::getUSBBackendRegisterLocked(unsigned int reg) {
    const AutoLock lock(impl->mutex);
    return impl->bridge.read(reg);
}

void VC0258Impl::setTOFControllerRegisterLocked(unsigned int reg, unsigned int value) {
    const AutoLock lock(impl->mutex);
    impl->setTof(reg, value);
}

unsigned int VC0258Impl::getTOFControllerRegisterLocked(unsigned int reg) {
    const AutoLock lock(impl->mutex);
    return impl->getTof(reg);
}

void VC0258Impl::setI2cLocked(unsigned char deviceAddress, unsigned int reg, unsigned int value,
                              unsigned char addressBytes, unsigned char dataBytes, bool byteOrder) {
    const AutoLock lock(impl->mutex);
    impl->setI2c(deviceAddress, reg, value, addressBytes, dataBytes, byteOrder ? 1U : 0U);
}

unsigned int VC0258Impl::getI2cLocked(unsigned char deviceAddress, unsigned int reg,
                                      unsigned char addressBytes, unsigned char dataBytes, bool byteOrder) {
    const AutoLock lock(impl->mutex);
    return impl->getI2c(deviceAddress, reg, addressBytes, dataBytes, byteOrder ? 1U : 0U);
}

unsigned int VC0258Impl::getTOFControllerFirmwareVersionLocked() {
    return getTOFControllerRegisterLocked(VC::tofVersionRegister);
}

unsigned int VC0258Impl::getUSBBackendFirmwareVersionLocked() { return 0; }

std::vector<unsigned char> VC0258Impl::getUSBBackendFirmwareLocked(unsigned int start, unsigned int length) {
    const AutoLock lock(impl->mutex);
    return impl->readArea(firmwareArea, start, length);
}

std::vector<unsigned char> VC0258Impl::getUSBBackendConfigurationLocked(unsigned int start,
                                                                        unsigned int length) {
    const AutoLock lock(impl->mutex);
    return impl->readArea(configurationArea, start, length);
}

void VC0258Impl::getDMADataLocked(unsigned int address, unsigned char* out, unsigned int length) {
    if (!out && length > 0)
        throw Plugin::ArgumentPluginException("DMA read into a null buffer");
    const AutoLock lock(impl->mutex);
    if (length >= 1 && length <= dmaMaxBytes)
        checkMemoryRange(address, length);
    impl->tunnel.getDMAData(address, out, length);
}

void VC0258Impl::setStrobeLocked(int reg, unsigned short mask) {
    const AutoLock lock(impl->mutex);
    impl->setStrobe(static_cast<unsigned>(reg), mask);
}

void VC0258Impl::resetStrobeLocked(int reg, unsigned short mask) {
    const AutoLock lock(impl->mutex);
    impl->resetStrobe(static_cast<unsigned>(reg), mask);
}

void VC0258Impl::reset() {
    const AutoLock lock(impl->mutex);
    impl->reset();
}

} // namespace Zentara::IO
