#include <string>
#include <vector>

#include <zentara/utils/files.h>

#include "plugins/simulated/firmware/factory_flash.h"
#include "plugins/simulated/simulated_bus.h"
#include "support/scoped_variable.h"
#include "support/simulated_faults.h"
#include "tools/tool_fixture.h"
#include "tools/zentara/verb.h"

namespace Zentara::Tool {
namespace {

using Simulated::factoryFlash;
using testing::HasSubstr;

class ChipVerbs : public ToolTest {
protected:
    static std::string textOf(const Simulated::Bytes& bytes) { return {bytes.begin(), bytes.end()}; }
};

TEST_F(ChipVerbs, ShowTheToggleInATrace) {
    const ToolRun run =
        ToolTest::run({"reg", "write", "tof", "29", "0", "--times", "2", "--trace", "--camera", "OV0570"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.out, "tof 0x1D := 0x00\n");
    EXPECT_THAT(run.err,
                HasSubstr("SET 6/2  11 1D 00 01 00 00 00  write device 1 register 0x1D := 0x0001\n"
                          "SET 6/2  11 1D 00 00 00 00 00  write device 1 register 0x1D := 0x0000\n"));
}

TEST_F(ChipVerbs, DumpTheWholeMemoryOfEachController) {
    const std::tuple<std::string, std::uint8_t, std::uint8_t> rows[]{
        {"OV0570", 0x57, 0x57}, {"VC0258", 0x28, 0x82}, {"VC0345", 0x45, 0x45}};
    for (const auto& [camera, firmwareSeed, configurationSeed] : rows) {
        SCOPED_TRACE(camera);
        const std::string file = path(camera + ".bin");
        const ToolRun run = ToolTest::run({"firmware", "dump", file, "--camera", camera, "--json"});
        ASSERT_EQ(run.exitCode, 0) << run.err;
        EXPECT_EQ(run.json().at("camera").at("controller"), camera);
        EXPECT_EQ(run.json().at("length"), 65536);
        const bool isOneMemory = firmwareSeed == configurationSeed;
        const std::string firmware =
            textOf(isOneMemory ? factoryFlash(firmwareSeed) : Simulated::patternFlash(firmwareSeed));
        EXPECT_EQ(Utils::readFile(file), firmware);
        ASSERT_EQ(ToolTest::run({"firmware", "dump", file, "--camera", camera, "--area", "configuration",
                                 "--force", "--start", "0x3000", "--length", "5000"})
                      .exitCode,
                  0);
        EXPECT_EQ(Utils::readFile(file), textOf(factoryFlash(configurationSeed)).substr(0x3000, 5000));
        ASSERT_EQ(ToolTest::run({"firmware", "dump", file, "--camera", camera, "--force", "--start", "0xFFF"})
                      .exitCode,
                  0)
            << "no piece may begin at 0xFFFF";
        EXPECT_EQ(Utils::readFile(file), firmware.substr(0xFFF));
    }
}

TEST_F(ChipVerbs, ReadAndWriteWhatTheyName) {
    const auto out = [](const std::vector<std::string>& arguments) {
        const ToolRun run = ToolTest::run(arguments);
        EXPECT_EQ(run.exitCode, 0) << run.err;
        return run.out;
    };
    EXPECT_EQ(out({"reg", "read", "tof", "0x21", "--camera", "vc0345"}), "0x2035\n");
    EXPECT_EQ(out({"reg", "read", "bridge", "0x182845", "--direct"}), "0x08\n");
    EXPECT_EQ(out({"reg", "write", "rgb", "1", "255", "--camera", "OV0570"}), "rgb 0x01 := 0xFF\n");
    EXPECT_EQ(out({"reg", "read", "tof", "0x21", "--camera", "vc0258", "--direct"}), "0x2035\n");
    EXPECT_EQ(out({"i2c", "read", "0x23", "0x21", "--camera", "VC0258"}), "0x2035\n");
    EXPECT_EQ(out({"i2c", "write", "0x30", "1", "7", "--bytes", "1", "--camera", "VC0258"}),
              "I2C device 0x30 register 0x01 := 0x07\n");
    EXPECT_THAT(out({"xu", "list"}),
                testing::StartsWith("unit 6  DD880F8A-1CBA-4954-8A25-F7875967F0F7\n"
                                    "  control 1  64 bytes  get  minimum 00 ...  maximum FF ..."));
    EXPECT_EQ(out({"xu", "len", "16", "--camera", "VC0258"}), "9\n");
    EXPECT_EQ(out({"xu", "get", "2", "91 21"}), "91 21 00 35 20 00 00\n");
    EXPECT_EQ(out({"xu", "set", "4", "20:39:B4:01", "--camera", "VC0258"}), "control 4 := 20 39 B4 01\n");
    const ToolRun modulation = ToolTest::run({"modfreq", "30", "--json", "--trace", "--camera", "VC0258"});
    ASSERT_EQ(modulation.exitCode, 0) << modulation.err;
    EXPECT_EQ(modulation.json().at("transfers").size(), 13U);
    EXPECT_EQ(modulation.json().at("transfers").back().at("sent"), "43 01 12 0A 00 00 00 00 00");
    EXPECT_EQ(out({"meta", "1000", "0x20001", "--camera", "OV0570"}), "meta 1000 := 0x20001\n");
}

TEST_F(ChipVerbs, NameTheRangeOfAValueThatIsOutOfIt) {
    const std::tuple<std::vector<std::string>, int, const char*> rows[]{
        {{"reg", "write", "tof", "29", "0x10000", "--camera", "OV0570"},
         Failure::Usage,
         "on the OV0570: 0 to 0xFFFF"},
        {{"reg", "read", "tof", "256"}, Failure::Usage, "on the OV0570: 0 to 0xFF"},
        {{"reg", "read", "rgb", "1", "--camera", "VC0345"}, Failure::Failed, "VC0345 has no way to a colour"},
        {{"reg", "read", "tof", "1-4294967296"}, Failure::Usage, "0 to 4294967295"},
        {{"reg", "write", "tof", "29", "-1", "--camera", "OV0570"}, Failure::Usage, "0 to 4294967295"},
        {{"i2c", "read", "256", "1"}, Failure::Usage, "0 to 255"},
        {{"i2c", "read", "0x80", "1", "--camera", "VC0258"}, Failure::Usage, "0x80 is out of range"},
        {{"i2c", "read", "0x21", "0x121", "--camera", "VC0258"}, Failure::Usage, "VC0258: 0 to 0xFF"},
        {{"i2c", "write", "0x30", "1", "256", "--bytes", "1", "--camera", "VC0258"}, Failure::Usage, "0xFF"},
        {{"i2c", "read", "0x77", "1"}, Failure::Failed, "deviceAddress not found"},
        {{"i2c", "read", "1", "1", "--camera", "VC0345"}, Failure::Failed, "I2C bus"},
        {{"meta", "999", "1", "--camera", "OV0570"}, Failure::Usage, "1000"},
        {{"meta", "1005", "1", "--camera", "VC0258"}, Failure::Failed, "invalid meta value 3ed"},
        {{"modfreq", "13", "--camera", "OV0570"}, Failure::Usage, "10, 12, 20, 30, 40"},
        {{"modfreq", "30", "--camera", "VC0345"}, Failure::Failed, "VC0345 has no command"},
        {{"xu", "set", "2", "1", "--camera", "OV0570"}, Failure::Usage, "pairs of digits"},
        {{"xu", "set", "2", "0102030405060708", "--camera", "OV0570"}, Failure::Usage, "0 to 7"},
        {{"xu", "len", "9"}, Failure::Failed, "no control 9"},
        {{"firmware", "dump", "x", "--start", "2", "--length", "65535"}, Failure::Usage, "1 to 65534"},
        {{"reg", "read", "tof", "1", "--camera", ""}, Failure::Usage, "name of the camera is empty"},
        {{"reg", "read", "tof", "1", "--direct", "--camera", "SIM0570"}, Failure::Usage, "no controller"},
    };
    for (const auto& [arguments, exitCode, text] : rows) {
        const ToolRun run = ToolTest::run(arguments);
        EXPECT_EQ(run.exitCode, exitCode) << run.err;
        EXPECT_THAT(run.err, HasSubstr(text));
        EXPECT_EQ(run.out, "");
    }
}

TEST_F(ChipVerbs, TellOfATransferThatFailsAndLeaveNoFile) {
    const TestSupport::SimulatedFaults faults("chip VC0258;transfer 4 short");
    const ToolRun run =
        ToolTest::run({"firmware", "dump", path("dump.bin"), "--trace", "--json", "--camera", "VC0258"});
    EXPECT_EQ(run.exitCode, Failure::Failed);
    EXPECT_TRUE(run.json().contains("error")) << "the trace stands beside it";
    EXPECT_THAT(run.err, HasSubstr("FAILED: control 24 of unit 4: 35 bytes came back, 36 were asked"));
    EXPECT_THAT(filesLeft(), testing::IsEmpty());
}

TEST_F(ChipVerbs, ReadNothingForAFileThatCannotBeWritten) {
    for (const std::string& file : {std::string(), path("not/there.bin"), path()}) {
        const ToolRun run = ToolTest::run({"firmware", "dump", file, "--trace"});
        EXPECT_NE(run.exitCode, 0);
        EXPECT_THAT(run.err, testing::Not(HasSubstr("GET"))) << file;
    }
    EXPECT_THAT(filesLeft(), testing::IsEmpty());
}

} // namespace
} // namespace Zentara::Tool
