#include <zentara/io/ov0570_impl.h>

#include <thread>

#include <gmock/gmock.h>

#include "io/chips/wired_camera.h"
#include "support/log_capture.h"

namespace Zentara::Test {

namespace {

using IO::UVC_SYNC_FPGA;
using Settings = Simulated::OV0570Firmware::Settings;

const std::string information = "GET 1  " + IO::bytesText(Bytes(64));

/// A write of a register of the time-of-flight controller.
std::string firstDeviceWrite(const std::string& reg, const std::string& value) {
    return "SET 2  11 " + reg + " 00 " + value + " 00 00";
}

/// Time-of-flight controller with 8-bit registers.
Settings narrowTof() {
    Settings settings;
    settings.devices[0].dataCode = 0;
    return settings;
}

/// Any number of further devices, of every width there is.
Settings mixedDevices(unsigned count) {
    Settings settings;
    settings.devices.clear();
    for (unsigned i = 0; i < count; ++i) {
        const auto code = static_cast<std::uint8_t>(i % 4);
        settings.devices.push_back(
            {code, static_cast<std::uint8_t>(i / 4 % 4), static_cast<std::uint16_t>(0x10 + i)});
    }
    return settings;
}

class OV0570Test : public testing::Test {
protected:
    void use(Settings settings) {
        camera = std::make_unique<OV0570Camera>(std::move(settings));
        static_cast<void>(camera->chip.getInfoLocked());
        camera->port.clearLog();
    }
    OV0570Test() { use({}); }

    Lines command(IO::UVCPrefix prefix, unsigned a, unsigned b) { return camera->command(prefix, a, b); }
    Lines setTof(unsigned reg, unsigned value) {
        return camera->sent([&](auto& chip) { chip.setTOFControllerRegisterLocked(reg, value); });
    }
    std::string flashFailure(unsigned start, unsigned length) {
        return messageOf<IOPluginException>(
            [&] { static_cast<void>(camera->chip.getUSBBackendFirmwareLocked(start, length)); });
    }

    std::unique_ptr<OV0570Camera> camera;
};

// The bridge's bus address comes low byte first, the others' high byte first.
TEST(OV0570InfoTest, ReadsTheTwoByteOrdersOfBusAddresses) {
    std::array<std::uint8_t, 64> reply{};
    const std::uint8_t head[] = {0x5A, 1,    2,    3,    4,    0x11, 0x12, 0xEE, 0x22, 0x23,
                                 0x33, 0x34, 0x91, 0x60, 0x01, 1,    0x70, 0x97, 0x11, 0x42};
    std::copy(std::begin(head), std::end(head), reply.begin());
    const IO::OV0570Info info = IO::OV0570Info::fromReply(reply);
    EXPECT_THAT(info.words, ElementsAre(0x1211, 0x2322, 0x3433));
    ASSERT_EQ(info.devices.size(), 2U);
    EXPECT_EQ(info.devices[0].busAddress, 0x0160);
    EXPECT_EQ(info.devices[0].addressWidth, 2);
    EXPECT_EQ(info.devices[0].dataWidth, 1);
    EXPECT_EQ(info.devices[0].flag, 1);
    EXPECT_EQ(info.devices[1].busAddress, 0x9711);
    EXPECT_EQ(info.devices[1].addressWidth, 1);
    EXPECT_EQ(info.devices[1].dataWidth, 3);
    EXPECT_EQ(info.devices[1].extra, 0x42);
}

TEST_F(OV0570Test, RegisterPacketsCarryTheWidthsOfTheirDevice) {
    EXPECT_THAT(setTof(0x30, 0xABCD), ElementsAre("SET 2  11 30 00 CD AB 00 00"));
    EXPECT_THAT(setTof(0x130, 0xFABCD), ElementsAre("SET 2  11 30 00 CD AB 00 00"));
    auto& chip = camera->chip;
    EXPECT_THAT(camera->sent([&](auto&) { chip.setUSBBackendRegisterLocked(0xFF182845, 0x1FF); }),
                ElementsAre("SET 2  40 45 28 FF 00 18 00"));
    EXPECT_THAT(camera->sent([&](auto&) { chip.setRGBSensorRegisterLocked(0x0A, 0x55); }),
                ElementsAre("SET 2  02 0A 00 55 00 00 00"));
    EXPECT_THAT(camera->sent([&](auto&) { EXPECT_EQ(chip.getTOFControllerRegisterLocked(0x130), 0xABCDU); }),
                ElementsAre("GET 2  91 30 00 00 00 00 00"));
    EXPECT_THAT(camera->sent([&](auto&) { EXPECT_EQ(chip.getUSBBackendRegisterLocked(0x182845), 0xFFU); }),
                ElementsAre("GET 2  C0 45 28 00 00 18 00"));
    EXPECT_THAT(camera->sent([&](auto&) { EXPECT_EQ(chip.getRGBSensorRegisterLocked(0x0A), 0x55U); }),
                ElementsAre("GET 2  82 0A 00 00 00 00 00"));
}

TEST_F(OV0570Test, OnlyInformationAndEepromAreReceivedWithTheFlag) {
    static_cast<void>(camera->chip.getTOFControllerRegisterLocked(1));
    static_cast<void>(camera->chip.getEEPROMWritableSize());
    EXPECT_THAT(camera->chip.flags,
                ElementsAre(std::pair(1UL, true), std::pair(2UL, false), std::pair(3UL, true)));
}

TEST_F(OV0570Test, EveryWidthReachesItsDevice) {
    use(mixedDevices(12));
    for (unsigned i = 0; i < 12; ++i) {
        SCOPED_TRACE(i);
        const auto address = static_cast<unsigned char>(0x10 + i);
        camera->chip.setI2cLocked(address, 0x89ABCDEF, 0xA5C3, 1, 1, false);
        const std::uint32_t mask = (i % 4 == 3) ? 0xFFFFFFFFU : (1U << (8 * (i % 4 + 1))) - 1;
        const unsigned value = i / 4 % 4 == 0 ? 0xC3 : 0xA5C3;
        EXPECT_EQ(camera->model.registers(i + 1).peek(0x89ABCDEF & mask), value);
        EXPECT_EQ(camera->chip.getI2cLocked(address, 0x89ABCDEF, 1, 1, false), value);
    }
    EXPECT_THAT(camera->sent([](auto& chip) { chip.setI2cLocked(0x1B, 0x89ABCDEF, 1, 0, 0, true); }),
                ElementsAre("SET 2  7C EF CD 01 00 AB 89"));
}

TEST_F(OV0570Test, MoreDevicesThanTheReplyHoldsAreRefusedAndAskedForAgain) {
    for (const unsigned claimed : {13U, 255U}) {
        OV0570Camera fresh(mixedDevices(12));
        fresh.model.setClaimedDevices(static_cast<std::uint8_t>(claimed));
        const std::string text =
            messageOf<IOPluginException>([&] { fresh.chip.setI2cLocked(0x10, 0, 0, 1, 1, false); });
        EXPECT_THAT(text, HasSubstr(std::to_string(claimed) + " further devices"));
        EXPECT_THAT(text, HasSubstr("at most 12"));
        fresh.model.setClaimedDevices(std::nullopt);
        EXPECT_EQ(fresh.chip.getInfoLocked().devices.size(), 13U);
        EXPECT_EQ(fresh.port.log().size(), 2U);
    }
}

TEST_F(OV0570Test, ConcurrentFirstCallsAskTheBridgeOnce) {
    OV0570Camera fresh;
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back(
            [&fresh] { EXPECT_EQ(fresh.chip.getUSBBackendFirmwareVersionLocked(), 0x01020304U); });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_THAT(linesOf(fresh.port.log()), ElementsAre(information));
    EXPECT_EQ(fresh.chip.getTOFControllerFirmwareVersionLocked(), 0x2035U);
}

TEST_F(OV0570Test, OfDuplicateAddressesTheLastIsTheControllerAndTheFirstTheI2cDevice) {
    Settings settings;
    settings.devices = {{0, 1, 0x0021}, {0, 1, 0x0021}, {0, 0, 0x9711}, {0, 0, 0x9711}};
    use(settings);
    EXPECT_THAT(setTof(1, 2), ElementsAre("SET 2  12 01 00 02 00 00 00"));
    EXPECT_THAT(camera->sent([](auto& chip) { chip.setRGBSensorRegisterLocked(1, 2); }),
                ElementsAre("SET 2  04 01 00 02 00 00 00"));
    EXPECT_THAT(camera->sent([](auto& chip) { chip.setI2cLocked(0x21, 29, 0, 1, 2, true); }),
                ElementsAre("SET 2  11 1D 00 00 00 00 00"))
        << "the first is not the controller: no toggle";
}

TEST_F(OV0570Test, I2cNeverFindsTheBridgeNorAnAbsentDevice) {
    Settings settings;
    settings.devices.clear();
    use(settings);
    EXPECT_EQ(messageOf<IOPluginException>([&] { camera->chip.setI2cLocked(0x60, 0, 0, 1, 1, false); }),
              "deviceAddress not found");
    EXPECT_EQ(messageOf<IOPluginException>(
                  [&] { static_cast<void>(camera->chip.getI2cLocked(0x21, 0, 1, 1, false)); }),
              "deviceAddress not found");
    EXPECT_THAT(setTof(29, 0), ElementsAre("SET 2  40 1D 00 00 00 00 00"))
        << "an absent controller's calls reach the bridge, without the toggle";
}

// Each row is one write of register 29 of the controller, by another way; bit 0 alternates over all of them.
TEST_F(OV0570Test, TheToggleAlternatesOverEveryWay) {
    for (const bool narrow : {false, true}) {
        SCOPED_TRACE(narrow);
        use(narrow ? narrowTof() : Settings{});
        const std::string head = narrow ? "SET 2  01 " : "SET 2  11 ";
        EXPECT_THAT(setTof(29, 0), ElementsAre(head + "1D 00 01 00 00 00"));
        EXPECT_THAT(setTof(29, 0), ElementsAre(head + "1D 00 00 00 00 00"));
        EXPECT_THAT(setTof(0x11D, 0), ElementsAre(head + "1D 00 01 00 00 00")) << "compared after masking";
        EXPECT_THAT(command(UVC_TOF_CONTROLLER_REGISTER, 29, 4), ElementsAre(head + "1D 00 04 00 00 00"));
        EXPECT_THAT(command(UVC_ADC_VALUE, 0x155, 0x1FE),
                    ElementsAre(head + (narrow ? "1E 00 FE 00 00 00" : "1E 00 FE 01 00 00"),
                                head + (narrow ? "1D 00 55 00 00 00" : "1D 00 55 05 00 00")));
        EXPECT_THAT(camera->sent([](auto& chip) { chip.setI2cLocked(0x21, 29, 2, 1, 1, false); }),
                    ElementsAre(head + "1D 00 02 00 00 00"));
        EXPECT_THAT(command(IO::UVC_USB_BACKEND_REGISTER, 29, 2), ElementsAre("SET 2  40 1D 00 02 00 00 00"))
            << "the bridge's register 29 is another one";
        EXPECT_THAT(setTof(29, 0), ElementsAre(head + "1D 00 01 00 00 00"));
        camera->chip.reset();
        EXPECT_THAT(setTof(29, 0), ElementsAre(head + "1D 00 01 00 00 00"));
    }
}

TEST_F(OV0570Test, MetaCodesWriteTheirRegisterPairs) {
    expectPairs(*camera, firstDeviceWrite,
                {{1000, "0B", "0C"},
                 {1001, "0D", "0E"},
                 {1002, "0F", "10"},
                 {1003, "14", "15"},
                 {1004, "30", "31"},
                 {1006, "33", "4A"},
                 {1007, "00", "00"},
                 {0xFFFFFFFF, "00", "00"}});
    EXPECT_THAT(command(UVC_TOF_CONTROLLER_REGISTER, 999, 1), ElementsAre("SET 2  11 E7 00 01 00 00 00"));
    use(narrowTof());
    EXPECT_THAT(command(UVC_TOF_CONTROLLER_REGISTER, 1000, 0x12345678),
                ElementsAre("SET 2  01 0B 00 78 00 00 00", "SET 2  01 0C 00 34 00 00 00"));
}

TEST_F(OV0570Test, ModulationFrequencyWritesElevenRegisters) {
    const std::tuple<unsigned, const char*, std::array<const char*, 3>> rows[]{
        {7710, "1E 1E", {"78 00", "F0 00", "68 01"}},
        {2570, "0A 0A", {"28 00", "50 00", "78 00"}},
        {10280, "28 28", {"A0 00", "40 01", "E0 01"}},
        {9999, "0F 27", {"00 00", "00 00", "00 00"}}};
    for (const auto& [value, code, steps] : rows)
        EXPECT_EQ(command(UVC_TOF_CONTROLLER_REGISTER, 1005, value),
                  modulationWrites(firstDeviceWrite, code, steps));
}

TEST_F(OV0570Test, StrobesAreKeptPerRegister) {
    EXPECT_THAT(command(UVC_SET_STROBE, 26, 0xF0F01), ElementsAre("SET 2  11 1A 00 01 0F 00 00"));
    EXPECT_THAT(command(UVC_SET_STROBE, 26, 2), ElementsAre("SET 2  11 1A 00 03 0F 00 00"));
    EXPECT_THAT(command(UVC_SET_STROBE, 75, 8), ElementsAre("SET 2  11 4B 00 08 00 00 00"));
    EXPECT_THAT(command(UVC_RESET_STROBE, 27, 1), ElementsAre("SET 2  11 1B 00 00 00 00 00"));
    EXPECT_THAT(command(UVC_RESET_STROBE, 26, 0x10002), ElementsAre("SET 2  11 1A 00 01 0F 00 00"));
    EXPECT_THAT(command(UVC_RESET_STROBE, 26, 0xFFFE), ElementsAre("SET 2  11 1A 00 01 00 00 00"));
    EXPECT_THAT(command(UVC_RESET_STROBE, 26, 0xFFFF), ElementsAre("SET 2  11 1A 00 00 00 00 00"));
    EXPECT_THAT(camera->sent([](auto& chip) { chip.setStrobeLocked(75, 1); }),
                ElementsAre("SET 2  11 4B 00 09 00 00 00"));
    camera->chip.reset();
    EXPECT_THAT(camera->sent([](auto& chip) { chip.resetStrobeLocked(75, 0); }),
                ElementsAre("SET 2  11 4B 00 00 00 00 00"));
    use(narrowTof());
    EXPECT_THAT(command(UVC_SET_STROBE, 26, 0x0F01), ElementsAre("SET 2  01 1A 00 01 00 00 00"));
}

TEST(OV0570ColdTest, AnUnknownStrobeRegisterOrPrefixSendsNothingNotEvenTheLoad) {
    OV0570Camera camera;
    EXPECT_THAT(camera.command(UVC_SET_STROBE, 28, 1), IsEmpty());
    EXPECT_THAT(camera.sent([](auto& chip) { chip.setStrobeLocked(-1, 1); }), IsEmpty());
    EXPECT_THAT(camera.command(UVC_CONFIGURE_DAC, 1, 1), IsEmpty());
    EXPECT_THAT(camera.command(static_cast<IO::UVCPrefix>(8), 1, 1), IsEmpty());
    EXPECT_THAT(camera.command(static_cast<IO::UVCPrefix>(-1), 1, 1), IsEmpty());
}

TEST(OV0570FpgaTest, SynchronisationTakesTwoReadsARoundAndGivesUpAfterFour) {
    for (unsigned rounds = 0; rounds <= 5; ++rounds) {
        SCOPED_TRACE(rounds);
        Settings settings;
        settings.fpgaRounds = rounds;
        OV0570Camera camera(settings);
        static_cast<void>(camera.chip.getInfoLocked());
        camera.port.clearLog();
        const auto sync = [&] { camera.run(UVC_SYNC_FPGA, 0, 0); };
        if (rounds <= 4) {
            EXPECT_NO_THROW(sync());
        } else {
            EXPECT_EQ(messageOf<IOPluginException>(sync), "failed to sync with FPGA");
        }
        EXPECT_EQ(camera.port.log().size(), 1 + 2 * std::min(rounds, 4U));
    }
}

// The wait ignores bit 14, the final check does not.
TEST_F(OV0570Test, SynchronisationChecksOneBitMoreThanItWaitsFor) {
    camera->model.registers(1).queueRead(0x21, 0x6000);
    EXPECT_EQ(messageOf<IOPluginException>([&] { camera->run(UVC_SYNC_FPGA, 0, 0); }),
              "failed to sync with FPGA");
    EXPECT_EQ(camera->port.log().size(), 1U);
}

TEST(OV0570FpgaTest, TheResetWaitEndsNormallyAlsoAfterTenTries) {
    const TestSupport::LogCapture log;
    for (const unsigned low : {0U, 3U, 9U, 10U, 11U}) {
        SCOPED_TRACE(low);
        Settings settings;
        settings.resetRounds = low;
        OV0570Camera camera(settings);
        camera.run(IO::UVC_RESET_FPGA, 0, 0);
        EXPECT_EQ(camera.clock.waits, std::vector<int>(std::min(low + 1, 10U), 20));
        EXPECT_EQ(linesOf(camera.port.log()).back(), "GET 2  C0 45 28 00 00 18 00");
        const bool warned = log.text().find("Didn't get GPIO3 high! Missing HW tweak?") != std::string::npos;
        EXPECT_EQ(warned, low >= 10);
    }
}

std::string eeprom(const std::string& head) {
    const std::size_t bytes = (head.size() + 1) / 3;
    std::string line = head;
    for (std::size_t i = bytes; i < 33; ++i)
        line += " 00";
    return line;
}

TEST_F(OV0570Test, FlashReadsFollowTheEepromSequence) {
    Bytes bytes;
    const Lines lines =
        camera->sent([&](auto& chip) { bytes = chip.getUSBBackendFirmwareLocked(0x1234, 40); });
    const std::string set = "SET 3  ";
    const std::string get = "GET 3  ";
    EXPECT_THAT(lines, ElementsAre(set + eeprom("01"), get + eeprom("01"), set + eeprom("01 34 12 5B 12"),
                                   get + eeprom("01"), set + eeprom("02"), set + eeprom("03"),
                                   get + eeprom("03"), get + eeprom("03"), set + eeprom("05")));
    const Bytes& flash = camera->model.flash();
    EXPECT_EQ(bytes, Bytes(flash.begin() + 0x1234, flash.begin() + 0x1234 + 40));
    std::vector<unsigned char> out(40, 0);
    camera->chip.getUSBBackendConfigurationLocked(0x1234, out.data(), 40);
    EXPECT_EQ(out, bytes);
}

// Unsigned 32-bit arithmetic, with a readable size M of 0x8000.
TEST_F(OV0570Test, FlashRangesAreCheckedByWrappingArithmetic) {
    Settings settings;
    settings.readableSize = 0x8000;
    use(settings);
    const char* tooLong = "length is out of range should be less than 32768";
    for (const auto& [start, length] :
         {std::pair{0U, 0U}, {0U, 0x8002U}, {0U, 0xFFFFFFFFU}, {2U, 0xFFFFFFFFU}, {2U, 0x10001U}})
        EXPECT_EQ(flashFailure(start, length), tooLong) << start << ", " << length;
    EXPECT_EQ(flashFailure(0xFFFF, 1), "startAddress must be less than 0xFFFF");
    EXPECT_EQ(flashFailure(0xFFFFFFFF, 0), "startAddress must be less than 0xFFFF");
    EXPECT_EQ(camera->chip.getUSBBackendFirmwareLocked(0, 0x8001).size(), 0x8001U);
    EXPECT_THAT(
        camera->sent([](auto& chip) { EXPECT_THAT(chip.getUSBBackendFirmwareLocked(1, 0), IsEmpty()); }),
        ElementsAre("SET 3  " + eeprom("01"), "GET 3  " + eeprom("01"), "SET 3  " + eeprom("01 01"),
                    "GET 3  " + eeprom("01"), "SET 3  " + eeprom("02"), "SET 3  " + eeprom("03"),
                    "SET 3  " + eeprom("05")));
    // The end of (0xFFFE, 3) keeps its low 16 bits, so this flash sees an empty range and refuses the data.
    EXPECT_THAT(flashFailure(0xFFFE, 3), HasSubstr("past the end"));
    EXPECT_THAT(linesOf(camera->port.log()).back(), HasSubstr("GET 3  03"))
        << "no end of the read after a failure";
    EXPECT_THAT(linesOf(camera->port.log()), testing::Contains("SET 3  " + eeprom("01 FE FF 00 00")));
}

TEST_F(OV0570Test, EepromWritesAreMadeOfPrimitives) {
    auto& chip = camera->chip;
    EXPECT_EQ(chip.getEEPROMWritableSize(), 0x4000U);
    const Bytes data{1, 2, 3};
    EXPECT_THAT(camera->sent([&](auto&) {
        chip.setEEPROMWriteAddress(0x0102, 0x0304);
        chip.setEEPROMData(data.data(), 3);
    }),
                ElementsAre("SET 3  " + eeprom("01 02 01 04 03"), "SET 3  " + eeprom("07 01 02 03")));
    EXPECT_EQ(camera->model.flash()[0x0104], 3);
    EXPECT_THAT(camera->sent([&](auto&) {
        chip.setEEPROMData(data.data(), 0);
        chip.setEEPROMData(nullptr, 0);
    }),
                IsEmpty());
    const Bytes tooMuch(33);
    EXPECT_THROW(chip.setEEPROMData(tooMuch.data(), 33), ArgumentPluginException);
    EXPECT_THROW(chip.setEEPROMData(nullptr, 1), ArgumentPluginException);
    EXPECT_THROW(chip.getUSBBackendFirmwareLocked(0, nullptr, 1), ArgumentPluginException);
    EXPECT_NO_THROW(chip.setEEPROMData(tooMuch.data(), 32));
}

} // namespace

} // namespace Zentara::Test
