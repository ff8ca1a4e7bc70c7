#include <zentara/io/vc0258_impl.h>

#include <gmock/gmock.h>

#include "io/chips/wired_camera.h"

namespace Zentara::Test {

namespace {

const char* const orderOne = "SET 4  20 39 B4 01";
const char* const orderZero = "SET 4  20 39 B4 00";
const char* const sizeNine = "SET 4  20 02 81 09";
const char* const dmaSize = "SET 4  20 0F 81 24";

/// "SET 16  43 01 12 REG 00 00 VALUE 00": a write of a time-of-flight register.
std::string tofWrite(const std::string& reg, const std::string& value) {
    return "SET 16  43 01 12 " + reg + " 00 00 " + value + " 00";
}

class VC0258Test : public testing::Test {
protected:
    /// Brings the settings to what writes of the time-of-flight controller need.
    void warm() {
        camera.chip.setTOFControllerRegisterLocked(0, 0);
        camera.clock.waits.clear();
    }
    Lines command(IO::UVCPrefix prefix, unsigned a, unsigned b) { return camera.command(prefix, a, b); }
    Lines setTof(unsigned reg, unsigned value) {
        return camera.sent([&](auto& chip) { chip.setTOFControllerRegisterLocked(reg, value); });
    }
    Lines getTof(unsigned reg, unsigned expected) {
        return camera.sent(
            [&](auto& chip) { EXPECT_EQ(chip.getTOFControllerRegisterLocked(reg), expected); });
    }

    VC0258Camera camera;
};

TEST_F(VC0258Test, BridgeRegistersTakeEightBits) {
    EXPECT_THAT(camera.sent([](auto& chip) { chip.setUSBBackendRegisterLocked(0x1234, 0x1AB); }),
                ElementsAre("SET 4  20 34 12 AB"));
    EXPECT_THAT(camera.sent([](auto& chip) { EXPECT_EQ(chip.getUSBBackendRegisterLocked(0x1234), 0xABU); }),
                ElementsAre("GET 4  00 34 12 00"));
}

TEST_F(VC0258Test, SettingsAreSentOnlyWhenTheyChange) {
    EXPECT_THAT(setTof(5, 0x1234), ElementsAre(orderOne, sizeNine, tofWrite("05", "34 12")));
    EXPECT_THAT(setTof(6, 0x12345), ElementsAre(tofWrite("06", "45 23")));
    EXPECT_THAT(getTof(5, 0x1234), ElementsAre(orderZero, "GET 16  46 01 02 05 00 00 00 00 00"));
    EXPECT_THAT(getTof(6, 0x2345), ElementsAre("GET 16  46 01 02 06 00 00 00 00 00"));
    EXPECT_THAT(setTof(6, 1), ElementsAre(orderOne, tofWrite("06", "01 00")));
    camera.chip.reset();
    EXPECT_THAT(setTof(6, 1), ElementsAre(orderOne, sizeNine, tofWrite("06", "01 00")));
    EXPECT_EQ(camera.clock.waits, std::vector<int>(4, 5)) << "5 ms before each write, none for reads";
}

TEST_F(VC0258Test, WritingASettingDirectlyKeepsWhatIsKnownRight) {
    warm();
    camera.chip.setUSBBackendRegisterLocked(0xB439, 0);
    camera.chip.setUSBBackendRegisterLocked(0x18102, 4); // bits past the address do not count
    EXPECT_THAT(setTof(5, 0x1234), ElementsAre(orderOne, sizeNine, tofWrite("05", "34 12")));
    camera.chip.setUSBBackendRegisterLocked(0xB439, 0x101);
    EXPECT_THAT(setTof(5, 0x1234), ElementsAre(tofWrite("05", "34 12")));
    camera.chip.setUSBBackendRegisterLocked(0x810F, 1);
    EXPECT_THAT(camera.sent([](auto& chip) { EXPECT_EQ(chip.getUSBBackendFirmwareLocked(0, 1).size(), 1U); }),
                ElementsAre("SET 4  20 12 81 00", dmaSize, testing::_));
}

TEST_F(VC0258Test, TheToggleAlternatesInRegisterWritesButNotInRawI2c) {
    warm();
    EXPECT_THAT(setTof(29, 0), ElementsAre(tofWrite("1D", "01 00")));
    EXPECT_THAT(setTof(0x11D, 0), ElementsAre(tofWrite("1D", "00 00"))) << "the address has 8 bits";
    EXPECT_THAT(camera.sent([](auto& chip) { chip.setI2cLocked(0x21, 29, 0, 1, 2, true); }),
                ElementsAre(tofWrite("1D", "00 00")));
    EXPECT_THAT(command(UVC_TOF_CONTROLLER_REGISTER, 29, 4), ElementsAre(tofWrite("1D", "05 00")));
    EXPECT_THAT(command(UVC_ADC_VALUE, 0x1FF, 0x1FE),
                ElementsAre(tofWrite("1E", "FE 00"), tofWrite("1D", "FC 03")))
        << "8 bits of each, shifted to 10";
    EXPECT_THAT(command(UVC_ADC_VALUE, 0x1FF, 0x1FE),
                ElementsAre(tofWrite("1E", "FE 00"), tofWrite("1D", "FD 03")));
}

TEST_F(VC0258Test, RawI2cTakesOneOrTwoDataBytesOfEitherOrder) {
    EXPECT_THAT(camera.sent([](auto& chip) { chip.setI2cLocked(0x30, 0x07, 0x1AB, 1, 1, true); }),
                ElementsAre(sizeNine, "SET 16  61 01 01 07 00 00 AB 00 00"))
        << "one byte has no order";
    EXPECT_THAT(camera.sent([](auto& chip) { EXPECT_EQ(chip.getI2cLocked(0x30, 7, 1, 1, true), 0xABU); }),
                ElementsAre("GET 16  60 01 01 07 00 00 00 00 00"));
    EXPECT_THAT(camera.sent([](auto& chip) { chip.setI2cLocked(0x60, 7, 0x1ABCD, 1, 2, false); }),
                ElementsAre(orderZero, "SET 16  C1 01 02 07 00 00 CD AB 00"));
    EXPECT_THAT(camera.sent([](auto& chip) { EXPECT_EQ(chip.getI2cLocked(0x60, 7, 1, 2, true), 0xABCDU); }),
                ElementsAre(orderOne, "GET 16  C0 01 12 07 00 00 00 00 00"));
    EXPECT_THAT(camera.clock.waits, IsEmpty());
}

TEST_F(VC0258Test, WrongWidthsAndAddressesFailBeforeAnyTransfer) {
    const auto set = [this](unsigned char device, unsigned char addressBytes, unsigned char dataBytes) {
        return messageOf<IOPluginException>(
            [&] { camera.chip.setI2cLocked(device, 0, 0, addressBytes, dataBytes, true); });
    };
    EXPECT_EQ(set(0x21, 2, 9), "addressBytes must be equal to 1");
    EXPECT_EQ(set(0x21, 0, 1), "addressBytes must be equal to 1");
    EXPECT_EQ(set(0x21, 1, 0), "dataBytes must be equal to 1 or 2");
    EXPECT_EQ(set(0x21, 1, 3), "dataBytes must be equal to 1 or 2");
    EXPECT_EQ(messageOf<IOPluginException>(
                  [&] { static_cast<void>(camera.chip.getI2cLocked(0x21, 0, 2, 1, true)); }),
              "addressBytes must be equal to 1");
    EXPECT_THAT(messageOf<ArgumentPluginException>([&] { camera.chip.setI2cLocked(0xA1, 0, 0, 1, 1, true); }),
                HasSubstr("0xa1"));
    EXPECT_THROW(camera.chip.setI2cLocked(0x80, 0, 0, 1, 1, true), ArgumentPluginException);
    for (const unsigned char dataBytes : {1, 2}) {
        EXPECT_THROW(camera.chip.setI2cLocked(0x21, 0x100, 0, 1, dataBytes, true), ArgumentPluginException);
        EXPECT_THROW(static_cast<void>(camera.chip.getI2cLocked(0x21, 0x11D, 1, dataBytes, true)),
                     ArgumentPluginException);
    }
    EXPECT_THAT(camera.port.log(), IsEmpty());
    EXPECT_THROW(camera.chip.setI2cLocked(0x7F, 0, 0, 1, 1, true), IOPluginException) << "nobody answers";
}

TEST_F(VC0258Test, TheDacGetsOneWordInFourRegisters) {
    warm();
    EXPECT_THAT(command(UVC_CONFIGURE_DAC, 0, 0x2F1),
                ElementsAre("SET 16  C1 01 12 58 00 00 E2 85 00", "SET 16  C1 01 12 5A 00 00 E2 85 00",
                            "SET 16  C1 01 12 5C 00 00 E2 85 00", "SET 16  C1 01 12 5E 00 00 E2 85 00"));
    EXPECT_EQ(camera.clock.waits, std::vector<int>(4, 50));
    EXPECT_EQ(command(UVC_CONFIGURE_DAC, 0, 0xFFFFFFFF)[0], "SET 16  C1 01 12 58 00 00 FE 8F 00");
}

TEST_F(VC0258Test, MicroFramesMarkEvenCountsInStrobeRegister26) {
    warm();
    EXPECT_THAT(command(UVC_TOF_CONTROLLER_REGISTER, 18, 4),
                ElementsAre(tofWrite("12", "04 00"), tofWrite("1A", "00 10")));
    EXPECT_THAT(camera.clock.waits, ElementsAre(5, 5));
    EXPECT_THAT(command(UVC_SET_STROBE, 26, 3), ElementsAre(tofWrite("1A", "03 10")));
    EXPECT_THAT(command(UVC_TOF_CONTROLLER_REGISTER, 18, 5),
                ElementsAre(tofWrite("12", "05 00"), tofWrite("1A", "03 00")));
    EXPECT_THAT(setTof(18, 4), ElementsAre(tofWrite("12", "04 00")))
        << "only a command's register 18 means micro-frames";
}

TEST_F(VC0258Test, StrobesAreTwoRegistersAndEveryOtherNumberIs27) {
    warm();
    EXPECT_THAT(command(UVC_SET_STROBE, 26, 0xF0F01), ElementsAre(tofWrite("1A", "01 0F")));
    EXPECT_THAT(command(UVC_RESET_STROBE, 26, 0x10100), ElementsAre(tofWrite("1A", "01 0E")));
    EXPECT_THAT(command(UVC_SET_STROBE, 75, 2), ElementsAre(tofWrite("1B", "02 00")));
    EXPECT_THAT(camera.sent([](auto& chip) { chip.setStrobeLocked(-5, 4); }),
                ElementsAre(tofWrite("1B", "06 00")));
    EXPECT_THAT(command(UVC_RESET_STROBE, 27, 0xFFFD), ElementsAre(tofWrite("1B", "02 00")));
    EXPECT_THAT(camera.sent([](auto& chip) { chip.resetStrobeLocked(26, 0xFFFF); }),
                ElementsAre(tofWrite("1A", "00 00")));
    EXPECT_EQ(camera.clock.waits, std::vector<int>(6, 5));
    camera.chip.reset();
    EXPECT_EQ(command(UVC_SET_STROBE, 27, 1).back(), tofWrite("1B", "01 00"));
}

TEST_F(VC0258Test, MetaCodesWriteTheirPairsOrAreRefused) {
    warm();
    expectPairs(camera, tofWrite,
                {{1000, "0B", "0C"}, {1001, "0D", "0E"}, {1002, "0F", "10"}, {1003, "14", "15"}});
    EXPECT_THAT(command(UVC_TOF_CONTROLLER_REGISTER, 999, 1), ElementsAre(tofWrite("E7", "01 00")));
    camera.port.clearLog();
    const auto refused = [this](unsigned code, unsigned value) {
        return messageOf<ConfigurationPluginException>(
            [&] { camera.run(UVC_TOF_CONTROLLER_REGISTER, code, value); });
    };
    EXPECT_EQ(refused(1005, 0), "invalid meta value 3ed");
    EXPECT_EQ(refused(1006, 0), "invalid meta value 3ee");
    EXPECT_EQ(refused(0xFFFFFFFF, 0), "invalid meta value ffffffff");
    EXPECT_EQ(refused(1004, 3084), "invalid modfreq value c0c");
    EXPECT_EQ(refused(1004, 0), "invalid modfreq value 0");
    EXPECT_THAT(camera.port.log(), IsEmpty());
}

TEST_F(VC0258Test, ModulationFrequencyWritesElevenRegistersWithElevenWaits) {
    warm();
    EXPECT_EQ(command(UVC_TOF_CONTROLLER_REGISTER, 1004, 7710),
              modulationWrites(tofWrite, "1E 1E", {"78 00", "F0 00", "68 01"}));
    EXPECT_EQ(camera.clock.waits, std::vector<int>(11, 5));
    EXPECT_EQ(command(UVC_TOF_CONTROLLER_REGISTER, 1004, 2570)[6], tofWrite("06", "78 00"));
}

TEST_F(VC0258Test, AreasAreReadInPiecesThroughDma) {
    Bytes bytes;
    const Lines lines =
        camera.sent([&](auto& chip) { bytes = chip.getUSBBackendConfigurationLocked(0x1234, 33); });
    const std::string rest = " " + IO::bytesText(Bytes(32));
    EXPECT_THAT(lines, ElementsAre("SET 4  20 12 81 01", dmaSize, "GET 24  50 34 12 20" + rest,
                                   "GET 24  50 54 12 01" + rest));
    const Bytes& area = camera.model.configuration();
    EXPECT_EQ(bytes, Bytes(area.begin() + 0x1234, area.begin() + 0x1234 + 33));
    EXPECT_THAT(
        camera.sent([](auto& chip) { EXPECT_THAT(chip.getUSBBackendFirmwareLocked(0x10000, 0), IsEmpty()); }),
        ElementsAre("SET 4  20 12 81 00"))
        << "the area is told also for no bytes";
}

TEST_F(VC0258Test, ReadsOutOfRangeFailBeforeAnyTransfer) {
    unsigned char out[40];
    for (const unsigned length : {0U, 33U, 0xFFFFFFFFU}) {
        EXPECT_EQ(messageOf<IOPluginException>([&] { camera.chip.getDMADataLocked(0, out, length); }),
                  "invalid DMA length");
    }
    EXPECT_THROW(camera.chip.getDMADataLocked(0xFFFF, out, 2), IOPluginException);
    EXPECT_THROW(camera.chip.getDMADataLocked(0, nullptr, 2), ArgumentPluginException);
    EXPECT_THROW(static_cast<void>(camera.chip.getUSBBackendFirmwareLocked(1, 0x10000)), IOPluginException);
    EXPECT_THROW(static_cast<void>(camera.chip.getUSBBackendFirmwareLocked(0xFFFFFFFF, 1)),
                 IOPluginException);
    EXPECT_THROW(static_cast<void>(camera.chip.getUSBBackendConfigurationLocked(2, 0xFFFFFFFF)),
                 IOPluginException);
    EXPECT_THAT(camera.port.log(), IsEmpty());
    camera.chip.getDMADataLocked(0xFFFE, out, 2);
    EXPECT_EQ(out[1], camera.model.flash()[0xFFFF]);
}

} // namespace

} // namespace Zentara::Test
