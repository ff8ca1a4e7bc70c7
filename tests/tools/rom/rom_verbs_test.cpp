#include <filesystem>
#include <string>
#include <tuple>
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

using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

class RomVerbs : public ToolTest {
protected:
    /// `zentara rom ARGUMENTS...`
    static ToolRun rom(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "rom");
        return ToolTest::run(arguments);
    }
    /// The same; it must go well. Returns what it printed.
    static std::string done(const std::vector<std::string>& arguments) {
        const ToolRun run = rom(arguments);
        EXPECT_EQ(run.exitCode, Failure::None) << run.err;
        return run.out;
    }
    static void refused(const std::vector<std::string>& arguments, int exitCode, const std::string& text) {
        const ToolRun run = rom(arguments);
        EXPECT_EQ(run.exitCode, exitCode) << run.out << run.err;
        EXPECT_THAT(run.err, HasSubstr(text));
    }
    static std::string contentWith(const std::string& sections) {
        return R"({"schema":1,"kind":"rom content","sections":[)" + sections + "]}";
    }
    std::string file(const std::string& name, const std::string& bytes) {
        Utils::writeFile(path(name), bytes);
        return path(name);
    }
    /// The camera's own identity is read only; the rest of the document can still be had.
    void importBesideAReadOnlySection(const std::string& document) {
        const std::string own = done({"get", "1"});
        std::string other = Utils::readFile(document);
        other.replace(other.find("\"guid\": \"5a54"), 13, "\"guid\": \"0000");
        const std::string changed = file("changed.json", other);
        refused({"import", changed, "--yes"}, Failure::Permission,
                "section 1 (systemInfo, 30 bytes) is read only\n--keep-read-only");
        done({"import", changed, "--keep-read-only", "--yes", "--backup", fresh()});
        EXPECT_EQ(done({"get", "1"}), own);
        EXPECT_THAT(done({"list"}), HasSubstr("  256  type 119"));
    }
    void damage(std::size_t address) {
        std::string bytes = Utils::readFile(image);
        bytes.at(address) = static_cast<char>(bytes.at(address) ^ 0x40);
        Utils::writeFile(image, bytes);
    }

    /// A name for the next backup: none that is there is ever replaced.
    std::string fresh() { return backup = path("before-" + std::to_string(++backups) + ".bak"); }

    const std::string image = path("camera.bin");
    std::string backup; ///< the last one
    int backups = 0;
};

TEST_F(RomVerbs, SetGetAndEraseOneSection) {
    done({"create", image, "--size", "4096", "--backup", fresh()});
    done({"set", "7", image, "--type", "diagnostic", "--hex", "2001080000000102"});
    EXPECT_EQ(filesLeft().size(), 2U) << "the image, and a backup named after the time";
    EXPECT_EQ(done({"get", "7", image, "--hex"}), "2001080000000102\n");
    const std::string json = done({"get", "7", image});
    EXPECT_THAT(json, HasSubstr("\"softCounter\": 1"));

    std::string changed = json;
    changed.replace(changed.find("\"softCounter\": 1"), 16, "\"softCounter\": 9");
    const std::string input = file("section.json", changed);
    refused({"set", "7", image, "--file", input}, Failure::Usage,
            "section 7 (diagnostic, 8 bytes) changes\n    records/0/softCounter: 1 -> 9");
    EXPECT_THAT(done({"set", "7", image, "--file", input, "--dry-run"}), HasSubstr("nothing was written"));
    EXPECT_EQ(done({"get", "7", image}), json) << "neither wrote";
    done({"set", "7", image, "--file", input, "--yes", "--backup", fresh()});
    EXPECT_EQ(done({"get", "7", image}), changed);
    const ToolRun compared = rom({"diff", backup, image});
    EXPECT_EQ(compared.exitCode, Failure::Failed);
    EXPECT_THAT(compared.out, HasSubstr("records/0/softCounter: 1 -> 9"));
    refused({"erase", "7", image}, Failure::Usage, "--yes does it");
    done({"erase", "7", image, "--yes", "--backup", fresh()});
    refused({"get", "7", image}, Failure::Failed, "Section 7 is not defined");
    refused({"erase", "7", image, "--yes"}, Failure::Failed,
            "Cannot erase section - 7 is not a valid section uid");
    refused({"set", "0", image, "--type", "4", "--hex", ""}, Failure::Failed, "0 is not a valid section uid");
}

TEST_F(RomVerbs, ReplaceNoFileThatIsNeededStill) {
    done({"create", image, "--size", "4096"});
    done({"set", "1", image, "--type", "77", "--hex", "01", "--backup", fresh()});
    const std::string before = Utils::readFile(image);
    const std::vector<std::string> outputs[] = {
        {"backup", image, image, "--size", "100"},
        {"salvage", image, image},
        {"export", image, "--output", image},
        {"map", image, "--png", image},
        {"set", "2", image, "--type", "77", "--hex", "02", "--backup", image}};
    for (const std::vector<std::string>& output : outputs)
        refused(output, Failure::Usage, "is the image itself");
    EXPECT_EQ(Utils::readFile(image), before);

    const std::string other = file("other.bin", "needed");
    const std::vector<std::string> keepers[] = {
        {"backup", other, image},
        {"salvage", other, image},
        {"set", "2", image, "--type", "77", "--hex", "02", "--backup", other}};
    for (const std::vector<std::string>& keeper : keepers)
        refused(keeper, Failure::Usage, "is there already");
    EXPECT_EQ(Utils::readFile(other), "needed");
    EXPECT_EQ(Utils::readFile(image), before);
    done({"backup", file("same.bin", before), image});
}

TEST_F(RomVerbs, VerifyNamesTheDamageAndSalvageSavesWhatIsWhole) {
    done({"create", image, "--size", "4096", "--backup", fresh()});
    done({"import", file("content.json", contentWith(R"({"uid":1,"type":77,"flags":1,"data":"01"},
        {"uid":2,"type":77,"flags":1,"data":"02"},{"uid":3,"type":77,"flags":1,"data":"03"})")),
          image, "--backup", fresh()});
    const std::string exported = done({"export", image});
    damage(17 + 256 * 2); // the header of the second section's block
    const ToolRun verified = rom({"verify", image, "--json"});
    EXPECT_EQ(verified.exitCode, Failure::Verification);
    EXPECT_EQ(verified.json().at("findings").at(0).at("kind"), "unknownType");
    EXPECT_THAT(verified.out, AllOf(HasSubstr("\"blockHeader\""), HasSubstr("\"unreachable\"")));
    EXPECT_THAT(rom({"list", image}).out, StartsWith("    1  type 77"));
    refused({"set", "9", image, "--type", "77", "--hex", "09"}, Failure::Verification,
            "a change could cost more of it\n--rebuild writes");
    refused({"set", "9", image, "--type", "77", "--hex", "09", "--rebuild"}, Failure::Usage,
            "section 3 (type 77, 1 bytes), which no link leads to, is given up");

    EXPECT_THAT(done({"salvage", path("saved.bin"), image}), StartsWith("3 sections"));
    EXPECT_EQ(done({"export", path("saved.bin")}), exported);
    EXPECT_THAT(runBuilt("rom import - \"" + path("saved.bin") + '"', exported).out,
                StartsWith("nothing changes"));
    EXPECT_EQ(rom({"verify", image}).exitCode, Failure::Verification) << "the damaged image stays as it is";
}

TEST_F(RomVerbs, AnswerBadInputAndLeaveTheImageAlone) {
    done({"create", image, "--size", "4096", "--backup", fresh()});
    done({"set", "9", image, "--type", "77", "--hex", "01", "--read-only", "--backup", fresh()});
    const std::string before = Utils::readFile(image);
    const std::string none = file("none.bin", "");
    const std::string shortFile = file("short.bin", "abc");
    const std::string zeros = file("zeros.bin", std::string(4096, '\0'));
    const std::string ones = file("ones.bin", std::string(4096, '\xFF'));
    const std::string huge = file("huge.bin", "");
    std::filesystem::resize_file(TestSupport::TemporaryDirectory::fromUtf8(huge), (64U << 20) + 1);
    const std::string guarded = file("guarded.bin", before);
    std::filesystem::permissions(TestSupport::TemporaryDirectory::fromUtf8(guarded),
                                 std::filesystem::perms::owner_read);
    const std::tuple<std::vector<std::string>, int, const char*> rows[]{
        {{"verify", none}, Failure::Verification, "is empty"},
        {{"verify", path("missing.bin")}, Failure::Failed, "missing.bin"},
        {{"verify", path()}, Failure::Failed, "no file"},
        {{"info", huge}, Failure::Failed, "too large for a flash image: 67108865 bytes"},
        {{"create", path("new.bin"), "--size", "0xFFFFFFFF"}, Failure::Failed, "too large"},
        {{"set", "1", guarded, "--type", "4", "--hex", ""}, Failure::Permission, "write-protected"},
        {{"set", "1", image, "--type", "4", "--hex", "", "--size", "8192"}, Failure::Usage, "not inside"},
        {{"list", shortFile}, Failure::Verification, "holds no storage"},
        {{"set", "1", ones, "--type", "4", "--hex", ""}, Failure::Verification, "never formatted"},
        {{"salvage", path("x"), zeros}, Failure::Verification, "no whole section"},
        {{"import", file("bad.json", contentWith(R"({"uid":"1"})")), image},
         Failure::Failed,
         "bad.json': /sections/0/uid: expected"},
        {{"set", "1", image, "--hex", "01"}, Failure::Usage, "needs --type"},
        {{"erase", "9", image, "--yes", "--rebuild"},
         Failure::Permission,
         "section 9 (type 77, 1 bytes) is read only"},
        {{"set", "1", image, "--type", "4", "--hex", std::string(8000, '0')},
         Failure::Failed,
         "failed to allocate"},
        {{"set", "1", image, "--type", "256", "--hex", "01"}, Failure::Usage, "256"},
        {{"set", "1", image, "--type", "4", "--hex", "0g"}, Failure::Usage, "pairs"},
        {{"restore", shortFile, image}, Failure::Failed, "has 3 bytes, the flash area has 4096"},
        {{"restore", zeros, image}, Failure::Verification, "is damaged"},
        {{"create", path("new.bin"), "--size", "20"}, Failure::Usage, "no room"},
        {{"verify", "camera:OV9999"}, Failure::NoDevice, "OV9999"},
    };
    for (const auto& [arguments, exitCode, text] : rows) {
        SCOPED_TRACE(text);
        refused(arguments, exitCode, text);
    }
    EXPECT_EQ(Utils::readFile(image), before);
}

/// What a run writes, the next one reads: the flash is kept in a file.
TEST_F(RomVerbs, WorkOnTheFlashOfEachCamera) {
    const std::tuple<const char*, const char*, bool> rows[]{
        {"OV0570", "ZS570", true}, {"VC0345", "ZS345", true}, {"VC0258", "ZS258", false}};
    for (const auto& [chip, model, isWritable] : rows) {
        SCOPED_TRACE(chip);
        const std::string kept = path(std::string(chip) + ".flash");
        const TestSupport::SimulatedFaults settings(std::string("chip ") + chip + ";keepFlash " + kept);
        const TestSupport::ScopedVariable camera(
            Simulated::SimulatedBus::variable,
            file("bus.json", std::string(R"({"format": 1, "cameras": [{"model": ")") + model + "\"}]}"));
        EXPECT_THAT(done({"info"}), AllOf(HasSubstr("16384 bytes at 0x00000000, chunks of 256"),
                                          HasSubstr("table 0: frequency")));
        EXPECT_THAT(done({"verify", "--direct", "--size", "0x4000"}),
                    HasSubstr("5 sections in 6 blocks: all is right"));
        const std::string before = Utils::readFile(kept);
        const std::string example =
            file("example.json", Utils::readFile(ZENTARA_EXAMPLES "/camera_rom.json"));
        const std::vector<std::string> set{"set",   "4",        "--type", "4", "--hex", "2001080000000301",
                                           "--yes", "--backup", fresh()};
        if (!isWritable) {
            refused(set, Failure::Permission, "has no way to write it");
            refused({"import", example, "--yes"}, Failure::Permission, "has no way to write it");
            EXPECT_EQ(Utils::readFile(kept), before);
            continue;
        }
        done(set);
        const std::string original = backup;
        EXPECT_EQ(Utils::readFile(original), before.substr(Simulated::romStart, Simulated::romSize));
        EXPECT_EQ(done({"get", "4", "--hex"}), "2001080000000301\n");
        const std::string after = Utils::readFile(kept);
        EXPECT_EQ(after.substr(Simulated::romSize), before.substr(Simulated::romSize));
        // The same area of the file, read as an image.
        EXPECT_EQ(done({"export"}), done({"export", kept, "--size", "0x4000"}));
        done({"create", "--yes", "--backup", fresh()});
        EXPECT_EQ(done({"list"}), "");
        EXPECT_EQ(Utils::readFile(kept).substr(Simulated::romSize), before.substr(Simulated::romSize));
        done({"import", example, "--backup", fresh()});
        EXPECT_EQ(done({"export"}), Utils::readFile(example));
        if (chip == std::string("VC0345")) // the example is of a camera with the other controller
            refused({"restore", original, "--yes"}, Failure::Usage,
                    "(systemInfo, 30 bytes) would be another\n  the camera's GUID would change: "
                    "5a540057-0536-4001-8053-360000000057 -> 5a540045-0536-4001-8053-360000000045\n--other-");
        done({"restore", original, "--yes", "--other-camera", "--backup", fresh()});
        EXPECT_EQ(Utils::readFile(kept), before);
        importBesideAReadOnlySection(example);
        done({"restore", original, "--yes", "--backup", fresh()});
    }
}

TEST_F(RomVerbs, WriteNowhereElseThanWhereItIsMeant) {
    const TestSupport::ScopedVariable cameras(
        Simulated::SimulatedBus::variable,
        file("bus.json", R"({"format": 1, "cameras": [{"model": "ZS570", "serialNumber": "ONE"},
                                                      {"model": "ZS570", "serialNumber": "TWO"}]})"));
    const std::vector<std::string> writers[] = {{"rom", "create", "--yes"},
                                                {"rom", "erase", "4", "--yes"},
                                                {"reg", "write", "tof", "1", "1"},
                                                {"i2c", "write", "1", "1", "1"},
                                                {"xu", "set", "1", "00"},
                                                {"meta", "1005", "1"},
                                                {"modfreq", "20"},
                                                {"params", "set", "0=1"}};
    for (const std::vector<std::string>& writer : writers) {
        const ToolRun unnamed = run(writer);
        EXPECT_EQ(unnamed.exitCode, Failure::Usage) << writer.front();
        EXPECT_THAT(unnamed.err, AllOf(HasSubstr("ONE, TWO"), HasSubstr("--camera")));
    }
    done({"info"});
    done({"create", image, "--size", "4096"});
    refused({"create", "", "--yes"}, Failure::Usage, "IMAGE");
    refused({"map", image, "--png", ""}, Failure::Usage, "--png");
    refused({"info", "camera:"}, Failure::Usage, "empty");
    refused({"info", image, "--camera", "ONE"}, Failure::Usage, "stands beside the image");
    refused({"info", "camera:TWO", "--camera", "ONE"}, Failure::Usage, "name one camera");
    done({"backup", path("one.bin"), "camera:ONE"});
    refused({"restore", path("one.bin"), "camera:TWO"}, Failure::Usage,
            "it is of camera ONE, this one is TWO");
}

/// The old header is not where the new one is sought.
TEST_F(RomVerbs, NameEverySectionThatAnotherLayoutCosts) {
    done({"create", image, "--size", "8192", "--header", "end"});
    done({"set", "7", image, "--type", "77", "--hex", "01", "--backup", fresh()});
    for (const std::vector<std::string>& layout : {std::vector<std::string>{}, {"--size", "4096"}}) {
        std::vector<std::string> again{"create", image, "--header", "start"};
        again.insert(again.end(), layout.begin(), layout.end());
        refused(again, Failure::Usage, "section 7 (type 77, 1 bytes) is erased");
    }
    refused({"export", image, "--output", file("there.json", "mine")}, Failure::Usage, "--force replaces it");
    done({"export", image, "--output", path("there.json"), "--force"});
}

TEST_F(RomVerbs, DrawTheMapAndTheTables) {
    const std::string text = done({"map", "camera:VC0345"});
    EXPECT_THAT(text, AllOf(StartsWith("each character 16 bytes\n0x00000000  H"),
                            HasSubstr("section 3 (configuration"), HasSubstr(" more such rows\n")));
    done({"map", "camera:VC0345", "--svg", path("map.svg"), "--png", path("map.png")});
    EXPECT_THAT(
        Utils::readFile(path("map.svg")),
        AllOf(StartsWith("<svg"), HasSubstr("gradientDistortionCorrection"), testing::EndsWith("</svg>\n")));
    EXPECT_THAT(Utils::readFile(path("map.png")), StartsWith("\x89PNG"));
    EXPECT_THAT(done({"draw", "camera:VC0345", "--table", "1", "--png", path("table.png")}),
                HasSubstr("table 1 (30 MHz), 40 by 30 values"));
    EXPECT_THAT(Utils::readFile(path("table.png")), StartsWith("\x89PNG"));
    refused({"draw", "camera:VC0345", "--table", "2", "--png", path("none.png")}, Failure::Failed,
            "there are 2 tables");
}

} // namespace
} // namespace Zentara::Tool
