#include <algorithm>
#include <filesystem>
#include <sstream>
#include <string>
#include <utility>

#include <zentara/utils/files.h>

#include "support/camera_bus.h"
#include "support/scoped_variable.h"
#include "tools/progress_buffer.h"
#include "tools/tool_fixture.h"
#include "tools/zentara/verb.h"

namespace Zentara::Tool {
namespace {

using testing::AllOf;
using testing::HasSubstr;

constexpr const char* left = R"({"model": "ZS570", "serialNumber": "LEFT"})";
constexpr const char* right = R"({"model": "ZS345", "serialNumber": "RIGHT"})";

/// Runs the tool with cameras of the test's own on the bus.
class Cameras : public ToolTest {
protected:
    /// Says which cameras are plugged in: the elements of the list.
    void plug(const std::string& cameras) { bus.plug(cameras); }

    static std::string both() { return std::string(left) + "," + right; }

private:
    TestSupport::CameraBus bus;
};

TEST_F(Cameras, AreListed) {
    plug(both());
    EXPECT_THAT(run({"devices"}).out, AllOf(HasSubstr("LEFT"), HasSubstr("depth color audio")));
    EXPECT_THAT(run({"devices", "--watch", "--seconds", "3"}).out,
                AllOf(HasSubstr("arrived"), HasSubstr("RIGHT")));
    EXPECT_THAT(run({"info", "RIGHT"}).out, AllOf(HasSubstr("firmware  "), HasSubstr("RIGHT")));

    plug("");
    for (const char* verb : {"devices", "info", "stream", "sensors"})
        EXPECT_EQ(run({verb}).exitCode, 3) << verb;
}

TEST_F(Cameras, SayWhyThereAreNone) {
    plug(R"({"model": "ZS999"})");
    for (const char* verb : {"devices", "info", "stream"}) {
        const ToolRun run = ToolTest::run({verb});
        EXPECT_EQ(run.exitCode, 3) << verb;
        EXPECT_THAT(run.err,
                    AllOf(HasSubstr("cameras.json, line 1"), HasSubstr("no camera 'ZS999' is described")))
            << verb;
    }
}

TEST_F(Cameras, StreamInTheModeThatIsNamed) {
    plug(both());
    const auto modes = [](const std::vector<std::string>& words) {
        std::vector<std::string> arguments{"stream", "--frames", "2", "--json", "--mode"};
        arguments.insert(arguments.end(), words.begin(), words.end());
        const ToolRun run = ToolTest::run(arguments);
        EXPECT_EQ(run.exitCode, 0) << run.err;
        std::vector<std::string> names;
        const nlohmann::json json = run.json();
        for (const auto& stream : json.at("streams"))
            names.push_back(stream.at("mode"));
        return names;
    };
    using testing::ElementsAre;
    EXPECT_THAT(modes({"deff2fr60cm1s0"}), ElementsAre("DEFF2FR60CM1S0"));
    EXPECT_THAT(modes({"320x240"}), ElementsAre("DEFF2FR60CM0S0"));
    EXPECT_THAT(modes({"DEFF2FR60CM1S0,320x240@60,AUCH2BPS16SR48000", "--color", "--audio"}),
                ElementsAre("DEFF2FR60CM1S0", "COFF2FR60PLF0COMP0", "AUCH2BPS16SR48000"));

    const std::pair<const char*, const char*> wrong[]{
        {"640x480",
         "LEFT has no mode 640x480; it has DEFF2FR60CM0S0 (320x240@60), DEFF2FR60CM1S0 (320x240@60)"},
        {"320x", "has no mode 320x;"},
        {"COFF2FR60PLF0COMP0", "for color, which is not streamed: say --color"},
        {"320x240,160x120", "320x240 and 160x120 are for the same streams"},
        {"", "is empty"},
    };
    for (const auto& [words, message] : wrong) {
        const ToolRun run = ToolTest::run({"stream", "--mode", words});
        EXPECT_EQ(run.exitCode, 2) << words << run.err;
        EXPECT_THAT(run.err, HasSubstr(message)) << words;
    }
    EXPECT_THAT(run({"info", "--camera", "LEFT"}).out, HasSubstr("DEFF2FR60CM1S0"));
}

TEST_F(Cameras, StreamAllTheyHaveAtOnce) {
    plug(both());
    const ToolRun run =
        ToolTest::run({"stream", "--all", "--frames", "20", "--json", "--png", path("d.png"), "--color-png",
                       path("c.png"), "--wav", path("t.wav"), "--record", path("r")});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    const auto streams = run.json().at("streams");
    ASSERT_EQ(streams.size(), 6U);
    EXPECT_EQ(streams.at(3).at("camera").at("serial"), "RIGHT");
    EXPECT_EQ(streams.at(4).at("kind"), "color");
    EXPECT_EQ(streams.at(4).at("frames").at("received"), 20);
    for (const char* name :
         {"d.LEFT.png", "d.RIGHT.png", "c.LEFT.png", "c.RIGHT.png", "t.LEFT.wav", "t.RIGHT.wav"})
        EXPECT_TRUE(exists(name)) << name;

    const ToolRun played =
        ToolTest::run({"stream", "--play", path("r"), "--camera", "RIGHT", "--png", path("p.png"), "--json"});
    ASSERT_EQ(played.exitCode, 0) << played.err;
    EXPECT_EQ(played.json().at("streams").size(), 3U);
    EXPECT_TRUE(Utils::readFile(path("p.png")) == Utils::readFile(path("d.RIGHT.png")));
}

TEST_F(Cameras, ThatFailDoNotStopTheOthers) {
    const std::pair<const char*, int> cases[]{
        {"throw io at video.readBuffer after 3", 1},
        {"throw timeout at video.open", 7},
        {"throw unauthorizedAccess at video.enableDepth", 5},
    };
    for (const auto& [settings, exitCode] : cases) {
        plug(std::string(R"({"model": "ZS570", "serialNumber": "LEFT", "settings": ")") + settings + "\"}," +
             right);
        const ToolRun run =
            ToolTest::run({"stream", "--all", "--frames", "15", "--raw", path("d.raw"), "--json"});
        EXPECT_EQ(run.exitCode, exitCode) << settings << run.err;
        EXPECT_THAT(run.err, HasSubstr("LEFT")) << settings;
        EXPECT_FALSE(exists("d.LEFT.raw")) << settings;
        EXPECT_TRUE(exists("d.RIGHT.raw")) << settings;
        EXPECT_THAT(run.out, AllOf(HasSubstr("\"received\": 15"))) << settings;
    }
}

TEST_F(Cameras, GoOnWhenTheyArePutBack) {
    plug(both());
    ProgressBuffer progress;
    progress.atFrame(10, [this] { plug(left); });
    progress.after("was unplugged", [this] { plug(both()); });
    std::ostringstream out;
    std::ostream err(&progress);
    Console console{out, err, true};
    ASSERT_EQ(runTool({"stream", "--all", "--frames", "90", "--wait", "60", "--raw", path("d.raw"), "--json"},
                      console),
              0)
        << progress.str();
    const auto streams = nlohmann::json::parse(out.str()).at("streams");
    EXPECT_EQ(streams.at(0).at("absences"), 0);
    EXPECT_EQ(streams.at(1).at("camera").at("serial"), "RIGHT");
    EXPECT_EQ(streams.at(1).at("absences"), 1);
    EXPECT_EQ(streams.at(1).at("frames").at("received"), 90);
    EXPECT_EQ(Utils::readFile(path("d.LEFT.raw")).size(), Utils::readFile(path("d.RIGHT.raw")).size());
}

TEST_F(Cameras, KeepParametersWithinTheirRange) {
    plug(left);
    const ToolRun set = run({"params", "set", "0=42.5", "4=8", "7=off", "13=16,8,256,200", "--json"});
    ASSERT_EQ(set.exitCode, 0) << set.err;
    const auto rows = set.json().at("parameters");
    EXPECT_EQ(rows.at(0).at("value"), 42.5);
    EXPECT_EQ(rows.at(0).at("unit"), "%");
    EXPECT_EQ(rows.at(1).at("value"), 8);
    EXPECT_EQ(rows.at(2).at("value"), false);
    EXPECT_EQ(rows.at(3).at("value").at("width"), 256);
    EXPECT_EQ(run({"params", "list", "--json"}).json().at("parameters").size(), 16U);
    EXPECT_THAT(run({"params", "get", "2", "12"}).out, HasSubstr("MHz"));

    plug(R"({"model": "ZS570", "settings": "keepRegisters )" + path("registers") + "\"}");
    for (const std::string& damage : {std::string(), std::string(300, 'x')}) {
        Utils::writeFile(path("registers"), damage);
        EXPECT_EQ(run({"params", "set", "2=40"}).exitCode, 0);
        EXPECT_EQ(run({"params", "get", "2", "--json"}).json().at("parameters").at(0).at("value"), 40);
    }

    const std::tuple<const char*, int, const char*> wrong[]{
        {"0=200", 1, "value out of range"},  {"12=1", 1, "cannot set parameter 12 to 1: it can only be read"},
        {"0=nan", 2, "takes a number"},      {"0=[[1]]", 2, "takes a number, not \"[[1]]\""},
        {"0=1e39", 2, "takes a number"},     {"-1=1", 2, ""},
        {"16=1", 2, "'16' is no parameter"}, {"4=3000000000", 2, "takes a whole number of 32 bits"},
        {"0", 2, "PARAMETER=VALUE"},         {"4=1.5", 2, "takes a whole number"},
        {"7=1", 2, "takes true or false"},   {"13=1,2,3", 2, "takes x, y, width and height"},
        {"4=-3000000000", 2, "a whole"},     {"13=1,2,3,65536", 2, "takes x, y, width and height"},
    };
    for (const auto& [word, exitCode, message] : wrong) {
        const ToolRun run = ToolTest::run({"params", "set", word});
        EXPECT_EQ(run.exitCode, exitCode) << word << run.err;
        EXPECT_THAT(run.err, HasSubstr(message)) << word;
    }
}

TEST_F(Cameras, SaveAndLoadParameters) {
    plug(left);
    ASSERT_EQ(run({"params", "save", path("p.json")}).exitCode, 0);
    auto saved = nlohmann::json::parse(Utils::readFile(path("p.json")));
    EXPECT_FALSE(saved.at("values").contains("12")) << "it cannot be written";
    saved["values"]["0"] = 12.5;
    Utils::writeFile(path("q.json"), saved.dump());
    EXPECT_EQ(run({"params", "load", path("q.json"), "--dry-run"}).out, "0: 80 -> 12.5\n");
    EXPECT_EQ(run({"params", "load", path("q.json")}).out, "0: 80 -> 12.5\n") << "the first only tried";

    const std::pair<const char*, const char*> wrong[]{
        {R"({"schema":1,"values":{"0":50,"4":3}})",
         "': /values/4: cannot set parameter 4 to 3: value out of"},
        {R"({"schema":1,"values":{"12":3}})",
         "': /values/12: cannot set parameter 12 to 3: it can only be read"},
    };
    for (const auto& [text, message] : wrong) {
        Utils::writeFile(path("w.json"), text);
        const ToolRun run = ToolTest::run({"params", "load", path("w.json"), "--dry-run"});
        EXPECT_EQ(run.exitCode, 1) << message;
        EXPECT_THAT(run.err, AllOf(HasSubstr("w.json'"), HasSubstr(message)));
    }
}

/// The transfer with the last value fails; the log of a run that went well tells which one that is.
TEST_F(Cameras, SayWhatWasSetBeforeAFailure) {
    const std::string camera = R"({"model": "ZS570", "serialNumber": "LEFT", "settings": ")";
    const auto failing = [&](const std::vector<std::string>& words) {
        plug(camera + "transferLog " + path("log") + "\"}");
        EXPECT_EQ(run(words).exitCode, 0);
        const std::string log = Utils::readFile(path("log"));
        const std::string until = log.substr(0, log.rfind(" write device 1 register"));
        plug(camera + "transfer " + std::to_string(1 + std::count(until.begin(), until.end(), '\n')) +
             " fail\"}");
        std::filesystem::remove(TestSupport::TemporaryDirectory::fromUtf8(path("log")));
        return run(words).err;
    };
    EXPECT_THAT(failing({"params", "set", "0=50", "4=8"}),
                AllOf(HasSubstr("cannot set parameter 4 to 8"), HasSubstr("; set before it: 0")));
    EXPECT_THAT(failing({"params", "set", "0=50"}), HasSubstr("; nothing was set"));
    for (const auto& [values, taken] : {std::pair{R"({"0":50,"4":8})", "it has changed all the same: 4\n"},
                                        {R"({"4":8})", "; nothing was changed"}}) {
        Utils::writeFile(path("p.json"), std::string(R"({"schema":1,"values":)") + values + "}");
        EXPECT_THAT(failing({"params", "load", path("p.json")}), HasSubstr(taken));
    }
}

TEST_F(Cameras, PlotTheirTemperatures) {
    plug(left);
    const ToolRun run = ToolTest::run({"sensors", "--watch", "--seconds", "0.3", "--interval", "50", "--json",
                                       "--png", path("t.png"), "--accelerometer", "0x71"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    std::istringstream lines(run.out);
    std::string line;
    unsigned count = 0;
    for (; std::getline(lines, line); ++count)
        EXPECT_EQ(nlohmann::json::parse(line).at("temperatures").size(), 2U);
    EXPECT_GE(count, 2U);
    EXPECT_TRUE(exists("t.png"));
    EXPECT_THAT(ToolTest::run({"sensors"}).out, AllOf(HasSubstr("sensor 0"), HasSubstr("degC")));
}

TEST_F(Cameras, KeepThePlotOfWhatCameBeforeTheyWent) {
    plug(left);
    std::ostringstream err;
    ProgressBuffer lines;
    lines.after("sensor", [this] { plug(""); });
    std::ostream out(&lines);
    Console console{out, err};
    EXPECT_EQ(runTool({"sensors", "--watch", "--interval", "50", "--png", path("t.png")}, console), 3);
    EXPECT_THAT(err.str(), HasSubstr("camera LEFT is not plugged in any more"));
    EXPECT_TRUE(exists("t.png"));
    plug(left);
    const ToolRun nowhere = run({"sensors", "--watch", "--png", path("no/t.png")});
    EXPECT_EQ(nowhere.exitCode, 1);
    EXPECT_EQ(nowhere.out, "") << "told before anything is read";
}

TEST_F(Cameras, TellATimeOutThatOnlyTheLogKnows) {
    plug(R"({"model": "ZS570", "serialNumber": "LEFT", "settings": "hang 3000 at video.recv"})");
    const ToolRun open = run({"params", "list"});
    EXPECT_EQ(open.exitCode, 7) << open.err;
    EXPECT_THAT(open.err, AllOf(HasSubstr("LEFT"), HasSubstr("timed out: ")));
    const TestSupport::ScopedVariable chip("ZENTARA_SIMULATED_CHIP", "VC0345");
    const ToolRun tried = runBuilt("--log reg read tof 0x21 --direct");
    EXPECT_EQ(tried.exitCode, 0) << tried.err;
    EXPECT_THAT(tried.err, AllOf(HasSubstr("log started"), testing::Not(HasSubstr("WARNING"))));
}

TEST_F(Cameras, ArePlayedFromAPathThatIsNoOption) {
    EXPECT_THAT(run({"stream", "--play", "/no/such/recording"}).err, HasSubstr("'/no/such/recording'"));
}

TEST_F(Cameras, TakeTheirCalibrationFromAFile) {
    plug(left);
    const std::string exported = runBuilt("calibration export").out;
    Utils::writeFile(path("a.json"), exported);
    EXPECT_EQ(run({"calibration", "diff", path("a.json")}).exitCode, 0);

    auto changed = nlohmann::json::parse(Utils::readFile(path("a.json")));
    changed["calibration"]["phaseDelay"] = -321;
    changed["calibration"]["temperatureCompensation"] = {
        {"kind", 2}, {"firstCoefficients", {1, -2}}, {"secondCoefficients", {3, 4}}};
    Utils::writeFile(path("b.json"), changed.dump());
    const ToolRun diff = run({"calibration", "diff", path("a.json"), path("b.json"), "--json"});
    EXPECT_EQ(diff.exitCode, 1);
    EXPECT_THAT(diff.out, AllOf(HasSubstr("phaseDelay"), HasSubstr("-321")));

    EXPECT_EQ(run({"calibration", "import", path("b.json")}).exitCode, 2) << "not without --yes";
    EXPECT_THAT(run({"calibration", "import", path("b.json"), "--dry-run"}).out,
                HasSubstr("phaseDelay: 87 -> -321\n"));
    const ToolRun written =
        run({"calibration", "import", path("b.json"), "--yes", "--backup", path("c.json"), "--json"});
    EXPECT_EQ(written.exitCode, 0) << written.err;
    EXPECT_EQ(written.json().at("written"), true);
    EXPECT_EQ(written.json().at("lasts"), false);
    EXPECT_THAT(written.err, HasSubstr("only while this program runs"));
    const ToolRun piped = runBuilt("calibration import - --camera LEFT", Utils::readFile(path("a.json")));
    EXPECT_THAT(piped.out, HasSubstr("has this calibration already")) << piped.err;
    EXPECT_EQ(run({"calibration", "diff", path("a.json"), path("c.json")}).exitCode, 0)
        << "what it was before";
    for (const char* taken : {"b.json", "c.json"}) {
        const std::string before = Utils::readFile(path(taken));
        EXPECT_THAT(run({"calibration", "import", path("b.json"), "--yes", "--backup", path(taken)}).err,
                    HasSubstr("is there already"));
        EXPECT_EQ(Utils::readFile(path(taken)), before);
    }
    plug(right);
    EXPECT_THAT(run({"calibration", "import", path("b.json"), "--dry-run"}).err,
                HasSubstr("the file is of camera LEFT, this one is RIGHT"));
}

} // namespace
} // namespace Zentara::Tool
