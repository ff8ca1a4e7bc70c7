#include <zentara/io/ov0570_impl.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>

#include <zentara/io/uvc_command_request.h>
#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/kv_logger.h>
#include <zentara/utils/log_area.h>
#include <zentara/utils/mutex.h>

#include "io/chips/chip_commands.h"
#include "io/chips/modulation.h"
#include "io/chips/ov0570_flash.h"
#include "io/chips/ov0570_protocol.h"
#include "io/chips/ov0570_registers.h"
#include "io/chips/sleeping_clock.h"

namespace Zentara::IO {

using namespace OV0570;
using Utils::Threading::AutoLock;

namespace {

constexpr int fpgaRounds = 4;                      // of two reads each, after a first one
constexpr int resetTries = 10;                     // so 200 ms in all
constexpr std::chrono::milliseconds resetWait{20}; // before each look

// 1005, the modulation frequency, takes more than two registers.
constexpr MetaRegisters metaRegisters[] = {{1000, 11, 12}, {1001, 13, 14}, {1002, 15, 16},
                                           {1003, 20, 21}, {1004, 48, 49}, {1006, 51, 74}};

/// What was last written to one strobe register.
struct Strobe {
    unsigned reg;
    unsigned bits;
};

/// Eight times the frequency of the codes that are known, 0 for the others.
constexpr unsigned phaseSteps(unsigned code) {
    const bool known = code == 2570 || code == 3084 || code == 5140 || code == 7710 || code == 10280;
    return known ? 8 * (code & 0xFF) : 0;
}

void warn(const char* text) {
    const Utils::LogAreaScope scope(Utils::LogArea_CHIPS);
    if (Utils::KVLogger* logger = Utils::KVLogger::instance()) {
        logger->warning(text);
        Utils::KVLogger::release();
    }
}

} // namespace

/// The chip with its mutex held by the caller.
struct OV0570Impl::OV0570ImplPrivate final : CommandExecutor {
    OV0570ImplPrivate(XUInterface& chip, ChipClock& time) : clock(time), registers(chip), flash(chip) {}

    void execute(const UVCCommandRequest& command) override ZENTARA_REQUIRES(mutex);
    void setI2c(unsigned device, unsigned reg, unsigned value, unsigned, unsigned) override
        ZENTARA_REQUIRES(mutex);
    unsigned getI2c(unsigned device, unsigned reg, unsigned, unsigned) override ZENTARA_REQUIRES(mutex);
    std::uint64_t registerCount(unsigned device) override ZENTARA_REQUIRES(mutex);

    void setStrobe(unsigned reg, unsigned mask) ZENTARA_REQUIRES(mutex);
    void resetStrobe(unsigned reg, unsigned mask) ZENTARA_REQUIRES(mutex);
    void readFlash(unsigned start, unsigned char* out, unsigned length) ZENTARA_REQUIRES(mutex);
    std::vector<unsigned char> readFlash(unsigned start, unsigned length) ZENTARA_REQUIRES(mutex);
    void reset() noexcept ZENTARA_REQUIRES(mutex);

    ChipClock& clock;              ///< not owned
    Utils::Threading::Mutex mutex; ///< held by every call from its first transfer to its last
    OV0570Registers registers ZENTARA_GUARDED_BY(mutex);
    OV0570Flash flash ZENTARA_GUARDED_BY(mutex);

private:
    void setTof(unsigned reg, unsigned value) ZENTARA_REQUIRES(mutex);
    void writeADCValue(unsigned a, unsigned b) ZENTARA_REQUIRES(mutex);
    void processMeta(unsigned code, unsigned value) ZENTARA_REQUIRES(mutex);
    void setModFreq(unsigned code) ZENTARA_REQUIRES(mutex);
    void syncFPGA() ZENTARA_REQUIRES(mutex);
    void resetFPGA() ZENTARA_REQUIRES(mutex);
    Strobe* strobeOf(unsigned reg) ZENTARA_REQUIRES(mutex);
    void writeStrobe(Strobe& strobe, unsigned bits) ZENTARA_REQUIRES(mutex);
    unsigned i2cDevice(unsigned device) ZENTARA_REQUIRES(mutex);

    /// What was last written, so that single bits can be set and cleared in it.
    std::array<Strobe, 3> strobes ZENTARA_GUARDED_BY(mutex){{{26, 0}, {27, 0}, {75, 0}}};
};

void OV0570Impl::OV0570ImplPrivate::execute(const UVCCommandRequest& command) {
    const unsigned a = command.getA();
    const unsigned b = command.getB();
    switch (command.getPrefix()) {
    case UVC_USB_BACKEND_REGISTER:
        return registers.write(bridgeIndex, a, b);
    case UVC_TOF_CONTROLLER_REGISTER:
        return setTof(a, b);
    case UVC_ADC_VALUE:
        return writeADCValue(a, b);
    case UVC_SET_STROBE:
        return setStrobe(a, b);
    case UVC_RESET_STROBE:
        return resetStrobe(a, b);
    case UVC_RESET_FPGA:
        return resetFPGA();
    case UVC_SYNC_FPGA:
        return syncFPGA();
    default:
        return; // this chip has no such command, and says nothing
    }
}

void OV0570Impl::OV0570ImplPrivate::setTof(unsigned reg, unsigned value) {
    if (reg >= firstMetaCode) {
        processMeta(reg, value);
    } else {
        registers.writeTof(reg, value);
    }
}

// The second register is the one with the toggle, which has bit 0: so `a` begins at bit 2.
void OV0570Impl::OV0570ImplPrivate::writeADCValue(unsigned a, unsigned b) {
    registers.writeTof(adcValueRegister, b);
    registers.writeTof(toggleRegister, a << 2);
}

void OV0570Impl::OV0570ImplPrivate::processMeta(unsigned code, unsigned value) {
    if (code == modulationCode)
        return setModFreq(value);
    MetaRegisters pair{code, 0, 0}; // an unknown code writes register 0 twice
    for (const MetaRegisters& known : metaRegisters) {
        if (known.code == code)
            pair = known;
    }
    registers.writeTof(pair.low, value & 0xFFFF);
    registers.writeTof(pair.high, value >> 16);
}

void OV0570Impl::OV0570ImplPrivate::setModFreq(unsigned code) {
    for (const RegisterWrite& write : modulationWrites(code, phaseSteps(code)))
        registers.writeTof(write.reg, write.value);
}

// The wait leaves bit 14 out of account, the check after it does not.
void OV0570Impl::OV0570ImplPrivate::syncFPGA() {
    unsigned status = registers.readTof(statusRegister);
    for (int round = 0; round < fpgaRounds && (status & fpgaWaitMask) != fpgaReady; ++round) {
        static_cast<void>(registers.readTof(statusRegister));
        status = registers.readTof(statusRegister);
    }
    if ((status & fpgaCheckMask) != fpgaReady)
        throw Plugin::IOPluginException("failed to sync with FPGA");
}

// A camera that never raises the pin still works, so this ends normally.
void OV0570Impl::OV0570ImplPrivate::resetFPGA() {
    for (int attempt = 0; attempt < resetTries; ++attempt) {
        clock.wait(resetWait);
        if (registers.read(bridgeIndex, gpioRegister) & gpio3Bit)
            return;
    }
    warn("Didn't get GPIO3 high! Missing HW tweak?");
}

Strobe* OV0570Impl::OV0570ImplPrivate::strobeOf(unsigned reg) {
    const auto found = std::find_if(strobes.begin(), strobes.end(),
                                    [reg](const Strobe& strobe) { return strobe.reg == reg; });
    return found == strobes.end() ? nullptr : &*found;
}

// Remembered after the write, so that one that failed leaves the bits that the camera has.
void OV0570Impl::OV0570ImplPrivate::writeStrobe(Strobe& strobe, unsigned bits) {
    registers.writeTof(strobe.reg, bits);
    strobe.bits = bits;
}

void OV0570Impl::OV0570ImplPrivate::setStrobe(unsigned reg, unsigned mask) {
    if (Strobe* strobe = strobeOf(reg))
        writeStrobe(*strobe, strobe->bits | (mask & allStrobes));
}

void OV0570Impl::OV0570ImplPrivate::resetStrobe(unsigned reg, unsigned mask) {
    if (Strobe* strobe = strobeOf(reg))
        writeStrobe(*strobe, strobe->bits & ~mask);
}

// Bus addresses of I2C commands have 8 bits.
unsigned OV0570Impl::OV0570ImplPrivate::i2cDevice(unsigned device) {
    if (device > 0xFF)
        throw Plugin::IOPluginException("deviceAddress not found");
    return registers.deviceAt(device);
}

void OV0570Impl::OV0570ImplPrivate::setI2c(unsigned device, unsigned reg, unsigned value, unsigned,
                                           unsigned) {
    registers.write(i2cDevice(device), reg, value);
}

unsigned OV0570Impl::OV0570ImplPrivate::getI2c(unsigned device, unsigned reg, unsigned, unsigned) {
    return registers.read(i2cDevice(device), reg);
}

std::uint64_t OV0570Impl::OV0570ImplPrivate::registerCount(unsigned device) {
    return std::uint64_t{registers.info().devices[i2cDevice(device)].addressMask()} + 1;
}

void OV0570Impl::OV0570ImplPrivate::readFlash(unsigned start, unsigned char* out, unsigned length) {
    if (!out && length > 0)
        throw Plugin::ArgumentPluginException("flash read into a null buffer");
    flash.checkRange(start, length);
    flash.read(start, out, length);
}

// The range is checked before memory is asked for: the length may be any 32-bit number.
std::vector<unsigned char> OV0570Impl::OV0570ImplPrivate::readFlash(unsigned start, unsigned length) {
    flash.checkRange(start, length);
    std::vector<unsigned char> bytes(length);
    flash.read(start, bytes.data(), length);
    return bytes;
}

void OV0570Impl::OV0570ImplPrivate::reset() noexcept {
    registers.resetToggle();
    for (Strobe& strobe : strobes)
        strobe.bits = 0;
}

OV0570Impl::OV0570Impl() : OV0570Impl(sleepingClock()) {}

OV0570Impl::OV0570Impl(ChipClock& clock) : impl(std::make_unique<OV0570ImplPrivate>(*this, clock)) {}

OV0570Impl::~OV0570Impl() = default;

void OV0570Impl::setup() { setup(unitGuid); }

void OV0570Impl::processCommand(Utils::SmartPtr<xuRequest> request) {
    checkCommand("OV0570", request.get());
    const AutoLock lock(impl->mutex);
    executeCommand(*impl, "OV0570", *request);
}

void OV0570Impl::setTOFControllerRegisterLocked(unsigned int reg, unsigned int value) {
    const AutoLock lock(impl->mutex);
    impl->registers.writeTof(reg, value);
}

unsigned int OV0570Impl::getTOFControllerRegisterLocked(unsigned int reg) {
    const AutoLock lock(impl->mutex);
    return impl->registers.readTof(reg);
}

void OV0570Impl::setUSBBackendRegisterLocked(unsigned int reg, unsigned int value) {
    const AutoLock lock(impl->mutex);
    impl->registers.write(bridgeIndex, reg, value);
}

unsigned int OV0570Impl::getUSBBackendRegisterLocked(unsigned int reg) {
    const AutoLock lock(impl->mutex);
    return impl->registers.read(bridgeIndex, reg);
}

void OV0570Impl::setRGBSensorRegisterLocked(unsigned char reg, unsigned char value) {
    const AutoLock lock(impl->mutex);
    impl->registers.write(impl->registers.rgbDevice(), reg, value);
}

unsigned int OV0570Impl::getRGBSensorRegisterLocked(unsigned char reg) {
    const AutoLock lock(impl->mutex);
    return impl->registers.read(impl->registers.rgbDevice(), reg);
}

void OV0570Impl::setI2cLocked(unsigned char busAddress, unsigned int reg, unsigned int value,
                              unsigned char addressWidth, unsigned char dataWidth, bool) {
    const AutoLock lock(impl->mutex);
    impl->setI2c(busAddress, reg, value, addressWidth, dataWidth);
}

unsigned int OV0570Impl::getI2cLocked(unsigned char busAddress, unsigned int reg, unsigned char addressWidth,
                                      unsigned char dataWidth, bool) {
    const AutoLock lock(impl->mutex);
    return impl->getI2c(busAddress, reg, addressWidth, dataWidth);
}

unsigned int OV0570Impl::getUSBBackendFirmwareVersionLocked() {
    const AutoLock lock(impl->mutex);
    return impl->registers.info().firmwareVersion.value();
}

unsigned int OV0570Impl::getTOFControllerFirmwareVersionLocked() {
    return getTOFControllerRegisterLocked(statusRegister);
}

OV0570Info OV0570Impl::getInfoLocked() {
    const AutoLock lock(impl->mutex);
    return impl->registers.info();
}

std::vector<unsigned char> OV0570Impl::getUSBBackendFirmwareLocked(unsigned int start, unsigned int length) {
    const AutoLock lock(impl->mutex);
    return impl->readFlash(start, length);
}

void OV0570Impl::getUSBBackendFirmwareLocked(unsigned int start, unsigned char* out, unsigned int length) {
    const AutoLock lock(impl->mutex);
    impl->readFlash(start, out, length);
}

std::vector<unsigned char> OV0570Impl::getUSBBackendConfigurationLocked(unsigned int start,
                                                                        unsigned int length) {
    return getUSBBackendFirmwareLocked(start, length);
}

void OV0570Impl::getUSBBackendConfigurationLocked(unsigned int start, unsigned char* out,
                                                  unsigned int length) {
    getUSBBackendFirmwareLocked(start, out, length);
}

void OV0570Impl::setEEPROMWriteAddress(unsigned short start, unsigned short end) {
    const AutoLock lock(impl->mutex);
    impl->flash.setRange(start, end);
}

void OV0570Impl::setEEPROMData(const unsigned char* data, unsigned int length) {
    if (!data && length > 0)
        throw Plugin::ArgumentPluginException("EEPROM write from a null buffer");
    const AutoLock lock(impl->mutex);
    impl->flash.writeData(data, length);
}

unsigned int OV0570Impl::getEEPROMWritableSize() {
    const AutoLock lock(impl->mutex);
    return impl->flash.sizes().writable;
}

void OV0570Impl::setStrobeLocked(int reg, unsigned short mask) {
    const AutoLock lock(impl->mutex);
    impl->setStrobe(static_cast<unsigned>(reg), mask);
}

void OV0570Impl::resetStrobeLocked(int reg, unsigned short mask) {
    const AutoLock lock(impl->mutex);
    impl->resetStrobe(static_cast<unsigned>(reg), mask);
}

void OV0570Impl::reset() {
    const AutoLock lock(impl->mutex);
    impl->reset();
}

} // namespace Zentara::IO
