#pragma once

#include <functional>
#include <string>
#include <vector>

#include <zentara/io/i2c_requests.h>

#include "io/chips/wired_camera.h"

namespace Zentara::Test {

/// One public operation of a chip, under the name that docs/transfers.md has for it.
template<typename Camera>
struct ChipOperation {
    std::string name;
    std::function<void(Camera&)> run;
    /// False when its failure leaves a setting unknown that its successes told before.
    bool isWalked = true;
};

/// Four bytes to a device of the bus, by a request; and from it.
template<typename Camera>
ChipOperation<Camera> arrayWrite(unsigned device) {
    return {"I2C array write of 4 bytes", [=](Camera& camera) {
                camera.chip.processCommand(Utils::makeRefcounted<IO::setI2CArrayRequest>(
                    device, std::vector<unsigned char>{1, 2, 3, 4}));
            }};
}
template<typename Camera>
ChipOperation<Camera> arrayRead(unsigned device) {
    return {"I2C array read of 4 bytes", [=](Camera& camera) {
                std::vector<unsigned char> out(4);
                camera.chip.processCommand(Utils::makeRefcounted<IO::getI2CArrayRequest>(device, out));
            }};
}

/// A raw command as an operation.
template<typename Camera>
ChipOperation<Camera> commandOperation(std::string name, IO::UVCPrefix prefix, unsigned a, unsigned b) {
    return {std::move(name), [=](Camera& camera) { camera.run(prefix, a, b); }};
}

/// The operations that every chip has, and those of one.
template<typename Camera>
std::vector<ChipOperation<Camera>> operationsWith(std::initializer_list<ChipOperation<Camera>> own) {
    std::vector<ChipOperation<Camera>> all = {
        {"time-of-flight register write", [](Camera& c) { c.chip.setTOFControllerRegisterLocked(29, 4); }},
        {"time-of-flight register read",
         [](Camera& c) { static_cast<void>(c.chip.getTOFControllerRegisterLocked(5)); }},
        {"bridge register write", [](Camera& c) { c.chip.setUSBBackendRegisterLocked(0x1234, 1); }},
        {"bridge register read",
         [](Camera& c) { static_cast<void>(c.chip.getUSBBackendRegisterLocked(0x1234)); }},
        {"strobe", [](Camera& c) { c.chip.setStrobeLocked(26, 5); }},
        {"strobe reset", [](Camera& c) { c.chip.resetStrobeLocked(27, 1); }},
        commandOperation<Camera>("meta pair", IO::UVC_TOF_CONTROLLER_REGISTER, 1000, 0x10002),
        {"bridge version", [](Camera& c) { static_cast<void>(c.chip.getUSBBackendFirmwareVersionLocked()); }},
        {"time-of-flight version",
         [](Camera& c) { static_cast<void>(c.chip.getTOFControllerFirmwareVersionLocked()); }},
        {"firmware read of 64 bytes",
         [](Camera& c) { static_cast<void>(c.chip.getUSBBackendFirmwareLocked(0, 64)); }},
        {"configuration read of 64 bytes",
         [](Camera& c) { static_cast<void>(c.chip.getUSBBackendConfigurationLocked(0, 64)); }},
    };
    all.insert(all.end(), own);
    return all;
}

inline std::vector<ChipOperation<OV0570Camera>> operationsOf(const OV0570Camera*) {
    using Camera = OV0570Camera;
    return operationsWith<Camera>({
        {"colour sensor register write", [](Camera& c) { c.chip.setRGBSensorRegisterLocked(1, 2); }},
        {"colour sensor register read",
         [](Camera& c) { static_cast<void>(c.chip.getRGBSensorRegisterLocked(1)); }},
        {"I2C register write", [](Camera& c) { c.chip.setI2cLocked(0x21, 29, 1, 1, 2, true); }},
        {"I2C register read", [](Camera& c) { static_cast<void>(c.chip.getI2cLocked(0x21, 5, 1, 2, true)); }},
        arrayWrite<Camera>(0x21),
        arrayRead<Camera>(0x21),
        commandOperation<Camera>("ADC value", IO::UVC_ADC_VALUE, 3, 4),
        commandOperation<Camera>("modulation frequency", IO::UVC_TOF_CONTROLLER_REGISTER, 1005, 7710),
        commandOperation<Camera>("FPGA synchronisation", IO::UVC_SYNC_FPGA, 0, 0),
        commandOperation<Camera>("FPGA reset wait", IO::UVC_RESET_FPGA, 0, 0),
        {"bus description", [](Camera& c) { static_cast<void>(c.chip.getInfoLocked()); }},
        {"EEPROM write of 32 bytes",
         [](Camera& c) {
             const unsigned char data[32] = {};
             c.chip.setEEPROMWriteAddress(0, 31);
             c.chip.setEEPROMData(data, 32);
         }},
        {"EEPROM writable size", [](Camera& c) { static_cast<void>(c.chip.getEEPROMWritableSize()); }},
    });
}

inline std::vector<ChipOperation<VC0258Camera>> operationsOf(const VC0258Camera*) {
    using Camera = VC0258Camera;
    return operationsWith<Camera>({
        {"time-of-flight register write and read",
         [](Camera& c) {
             c.chip.setTOFControllerRegisterLocked(5, 1);
             static_cast<void>(c.chip.getTOFControllerRegisterLocked(5));
         },
         false},
        {"I2C register write, 1 byte", [](Camera& c) { c.chip.setI2cLocked(0x30, 1, 1, 1, 1, true); }},
        {"I2C register read, 1 byte",
         [](Camera& c) { static_cast<void>(c.chip.getI2cLocked(0x30, 1, 1, 1, true)); }},
        {"I2C register write, 2 bytes", [](Camera& c) { c.chip.setI2cLocked(0x60, 1, 1, 1, 2, true); }},
        {"I2C register read, 2 bytes",
         [](Camera& c) { static_cast<void>(c.chip.getI2cLocked(0x60, 1, 1, 2, true)); }},
        arrayWrite<Camera>(0x30),
        arrayRead<Camera>(0x30),
        commandOperation<Camera>("DAC", IO::UVC_CONFIGURE_DAC, 0, 100),
        commandOperation<Camera>("ADC value", IO::UVC_ADC_VALUE, 3, 4),
        commandOperation<Camera>("micro-frames", IO::UVC_TOF_CONTROLLER_REGISTER, 18, 4),
        commandOperation<Camera>("modulation frequency", IO::UVC_TOF_CONTROLLER_REGISTER, 1004, 7710),
        {"DMA read",
         [](Camera& c) {
             unsigned char out[32];
             c.chip.getDMADataLocked(0, out, 32);
         }},
    });
}

inline std::vector<ChipOperation<VC0345Camera>> operationsOf(const VC0345Camera*) {
    using Camera = VC0345Camera;
    return operationsWith<Camera>({
        commandOperation<Camera>("micro-frames", IO::UVC_TOF_CONTROLLER_REGISTER, 39, 4),
        {"ROM byte write", [](Camera& c) { c.chip.setROMData8(1, 2); }},
        {"ROM byte read", [](Camera& c) { static_cast<void>(c.chip.getROMData8(1)); }},
    });
}

} // namespace Zentara::Test
