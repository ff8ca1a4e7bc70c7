#include <zentara/io/vc0345_impl.h>

#include <gmock/gmock.h>

#include "io/chips/wired_camera.h"

namespace Zentara::Test {

namespace {

const char* const sizeFour = "SET 4  20 02 81 04";

class VC0345Test : public testing::Test {
protected:
    Lines command(IO::UVCPrefix prefix, unsigned a, unsigned b) { return camera.command(prefix, a, b); }
    void warm() { camera.chip.setTOFControllerRegisterLocked(0, 0); }

    VC0345Camera camera;
};

TEST_F(VC0345Test, RegistersAreWrittenWholeAndReadByteByByte) {
    EXPECT_THAT(camera.sent([](auto& chip) { chip.setTOFControllerRegisterLocked(5, 0x1ABCD); }),
                ElementsAre(sizeFour, "SET 16  41 05 CD AB"));
    EXPECT_THAT(camera.sent([](auto& chip) { EXPECT_EQ(chip.getTOFControllerRegisterLocked(5), 0xABCDU); }),
                ElementsAre("GET 16  46 05 00 00", "GET 16  46 85 00 00"));
    camera.chip.reset();
    EXPECT_EQ(
        camera.sent([](auto& chip) { EXPECT_EQ(chip.getTOFControllerFirmwareVersionLocked(), 0x2035U); }),
        Lines({sizeFour, "GET 16  46 21 00 00", "GET 16  46 A1 00 00"}));
    EXPECT_THAT(camera.sent([](auto& chip) { EXPECT_EQ(chip.getUSBBackendFirmwareVersionLocked(), 0U); }),
                IsEmpty());
    EXPECT_THAT(camera.clock.waits, IsEmpty()) << "only commands wait";
}

TEST_F(VC0345Test, EveryRawCommandWaitsOnceAlsoWhenItIsIgnored) {
    warm();
    for (const int prefix : {0, 2, 3, 6, 7, 8, -1})
        EXPECT_THAT(command(static_cast<IO::UVCPrefix>(prefix), 1, 1), IsEmpty());
    EXPECT_EQ(camera.clock.waits, std::vector<int>(7, 5));
    EXPECT_THAT(command(UVC_TOF_CONTROLLER_REGISTER, 1003, 0x00020001),
                ElementsAre("SET 16  41 10 01 00", "SET 16  41 14 02 00"));
    EXPECT_EQ(camera.clock.waits.size(), 8U) << "two writes, one wait";
}

TEST_F(VC0345Test, CommandsWriteTheirRegisters) {
    warm();
    EXPECT_THAT(command(UVC_TOF_CONTROLLER_REGISTER, 29, 2), ElementsAre("SET 16  41 1D 02 00"))
        << "no toggle here";
    EXPECT_THAT(command(UVC_TOF_CONTROLLER_REGISTER, 999, 2), ElementsAre("SET 16  41 E7 02 00"));
    EXPECT_THAT(command(UVC_TOF_CONTROLLER_REGISTER, 39, 3),
                ElementsAre("SET 16  41 27 03 00", "SET 16  41 0D 2A 00"));
    EXPECT_THAT(command(UVC_TOF_CONTROLLER_REGISTER, 39, 4),
                ElementsAre("SET 16  41 27 04 00", "SET 16  41 0D 2B 00"));
    EXPECT_THAT(command(UVC_SET_STROBE, 26, 0x12), ElementsAre("SET 16  41 0D 13 00"));
    EXPECT_THAT(command(UVC_SET_STROBE, 0, 0xFFFF), ElementsAre("SET 16  41 0D 00 00"));
    EXPECT_THAT(command(UVC_RESET_STROBE, 26, 0x1FFFE), ElementsAre("SET 16  41 0D FE FF"));
    EXPECT_THAT(camera.sent([](auto& chip) { chip.setStrobeLocked(1, 0xFFFF); }),
                ElementsAre("SET 16  41 0D 00 00"));
    EXPECT_THAT(camera.sent([](auto& chip) { chip.resetStrobeLocked(1, 7); }),
                ElementsAre("SET 16  41 0D 07 00"));
}

TEST_F(VC0345Test, MetaCodesWriteTheirPairsOrAreRefused) {
    warm();
    const auto write = [](std::string reg, std::string value) { return "SET 16  41 " + reg + " " + value; };
    expectPairs(camera, write,
                {{1000, "00", "12"},
                 {1001, "03", "13"},
                 {1002, "09", "28"},
                 {1003, "10", "14"},
                 {1004, "15", "16"},
                 {1005, "19", "1A"},
                 {1006, "1C", "1D"}});
    camera.port.clearLog();
    EXPECT_EQ(
        messageOf<ConfigurationPluginException>([&] { camera.run(UVC_TOF_CONTROLLER_REGISTER, 1007, 0); }),
        "invalid meta value 3ef");
    EXPECT_THAT(camera.port.log(), IsEmpty());
}

TEST_F(VC0345Test, TheRomIsReadAndWrittenByteByByte) {
    EXPECT_THAT(camera.sent([](auto& chip) { chip.setROMData8(0x1234, 0xAB); }),
                ElementsAre("SET 5  A1 34 12 AB"));
    EXPECT_THAT(camera.sent([](auto& chip) { EXPECT_EQ(chip.getROMData8(0x1234), 0xAB); }),
                ElementsAre("GET 5  A0 34 12 00"));
    EXPECT_THAT(camera.sent([](auto& chip) {
        EXPECT_THAT(chip.getUSBBackendConfigurationLocked(0x1234, 2), ElementsAre(0xAB, testing::_));
    }),
                ElementsAre("GET 5  A0 34 12 00", "GET 5  A0 35 12 00"));
    camera.port.clearLog();
    EXPECT_THROW(static_cast<void>(camera.chip.getUSBBackendFirmwareLocked(0xFFFF, 2)), IOPluginException);
    EXPECT_THAT(camera.chip.getUSBBackendFirmwareLocked(0x10000, 0), IsEmpty());
    EXPECT_THAT(camera.port.log(), IsEmpty());
}

} // namespace

} // namespace Zentara::Test
