#include <string>
#include <vector>

#include <zentara/host/recording.h>
#include <zentara/utils/files.h>

#include "plugins/descriptions/wire.h"
#include "support/simulated_faults.h"
#include "tools/tool_fixture.h"
#include "tools/zentara/verb.h"

namespace Zentara::Tool {
namespace {

using testing::HasSubstr;

class StreamVerb : public ToolTest {};

TEST_F(StreamVerb, WritesWhatItSawAndHeardAndTellsIt) {
    for (const bool direct : {false, true}) {
        std::vector<std::string> arguments{"stream",      "--frames", "30",          "--json", "--png",
                                           path("d.png"), "--raw",    path("d.raw"), "--wav",  path("t.wav")};
        if (direct)
            arguments.emplace_back("--direct");
        const ToolRun run = ToolTest::run(arguments);
        ASSERT_EQ(run.exitCode, 0) << run.err;
        const auto json = run.json();
        EXPECT_EQ(json.at("proxified"), !direct);
        const auto depth = json.at("streams").at(0);
        EXPECT_EQ(depth.at("name"), direct ? "MOCKVIDEODEVICE_IMPL" : "ZS570 depth");
        EXPECT_EQ(depth.at("frames").at("received"), 30);
        EXPECT_GT(depth.at("framesPerSecond"), 0.0);
        EXPECT_GT(depth.at("depth").at("nearestMillimetres"), 400);
        EXPECT_GT(depth.at("depth").at("farthestMillimetres"), 2000);
        EXPECT_EQ(json.at("streams").at(1).at("audio").at("samples"), 24000);

        const std::string picture = Utils::readFile(path("d.png"));
        EXPECT_THAT(picture, testing::StartsWith("\x89PNG"));
        EXPECT_GT(picture.size(), 10'000U) << "the scene is no even surface";
        EXPECT_EQ(Utils::readFile(path("d.raw")).size() % (30 * Zentara::Cameras::frameBytes / 2), 0U);
        EXPECT_EQ(Utils::readFile(path("t.wav")).size(), 44U + 24000 * 4);
    }
    EXPECT_EQ(filesLeft().size(), 3U);
}

TEST_F(StreamVerb, PlaysWhatItRecorded) {
    const ToolRun recorded = run(
        {"stream", "--direct", "--frames", "12", "--audio", "--raw", path("a.raw"), "--record", path("r")});
    ASSERT_EQ(recorded.exitCode, 0) << recorded.err;
    const ToolRun played =
        run({"stream", "--play", path("r"), "--raw", path("b.raw"), "--wav", path("b.wav"), "--json"});
    ASSERT_EQ(played.exitCode, 0) << played.err;
    EXPECT_TRUE(Utils::readFile(path("a.raw")) == Utils::readFile(path("b.raw")));
    EXPECT_EQ(played.json().at("streams").at(0).at("frames").at("received"), 12);
    EXPECT_EQ(played.json().at("streams").at(0).at("name"), "MOCKVIDEODEVICE_IMPL");
    EXPECT_GE(played.json().at("streams").at(1).at("audio").at("samples"), 9600);

    // A recording of a camera becomes the same cloud without it; a bare device has no lens model.
    ASSERT_EQ(run({"stream", "--frames", "2", "--color", "--corrected", "--record", path("n"), "--ply",
                   path("a.ply")})
                  .exitCode,
              0);
    const ToolRun cloud = run({"stream", "--play", path("n"), "--corrected", "--ply", path("b.ply"),
                               "--cloud-png", path("b.png"), "--json"});
    ASSERT_EQ(cloud.exitCode, 0) << cloud.err;
    EXPECT_TRUE(Utils::readFile(path("a.ply")) == Utils::readFile(path("b.ply")));
    const auto depth = cloud.json().at("streams").at(0);
    EXPECT_GT(depth.at("cloud").at("colored"), 1000);
    EXPECT_EQ(depth.at("depth").at("uncorrected").size(), 0U);
    EXPECT_GT(Utils::readFile(path("b.png")).size(), 10'000U) << "it is no even surface";
    EXPECT_THAT(run({"stream", "--play", path("r"), "--ply", path("c.ply")}).err,
                HasSubstr("no lens model is known"));

    EXPECT_EQ(run({"stream", "--play", path("r"), "--frames", "5", "--raw", path("c.raw")}).exitCode, 0);
    EXPECT_EQ(Utils::readFile(path("c.raw")).size(), 5 * Zentara::Cameras::frameBytes);
}

TEST_F(StreamVerb, KeepsWhatACutRecordingHolds) {
    ASSERT_EQ(run({"stream", "--direct", "--frames", "6", "--record", path("r")}).exitCode, 0);
    const std::string whole = Utils::readFile(path("r"));
    Utils::writeFile(path("r"), whole.substr(0, whole.size() - Zentara::Cameras::frameBytes));
    EXPECT_EQ(run({"stream", "--play", path("r"), "--raw", path("c.raw")}).exitCode, 1);
    EXPECT_EQ(Utils::readFile(path("c.raw")).size(), 5 * Zentara::Cameras::frameBytes);
}

TEST_F(StreamVerb, RunsAsAProgram) {
    const ToolRun run = runBuilt("stream --frames 5");
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, testing::AllOf(HasSubstr("frames   5 of 5"), HasSubstr(" mm, ")));
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(runBuilt("--version").out.substr(0, 24), "zentara 1.4.5 build 2151");
}

TEST_F(StreamVerb, KeepsHelpAndUsageErrorsApart) {
    const ToolRun help = ToolTest::run({"--help"});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_THAT(help.out,
                testing::AllOf(HasSubstr("plugins"), HasSubstr("stream"), HasSubstr("ZENTARASDK_ROOT")));
    EXPECT_EQ(help.err, "");
    const std::vector<std::vector<std::string>> wrong{{},
                                                      {"dance"},
                                                      {"stream", "--frames", "0"},
                                                      {"stream", "--frames"},
                                                      {"plugins", "now"},
                                                      {"stream", "--record", path("x"), "--play", path("x")},
                                                      {"stream", "--direct", "--color"},
                                                      {"stream", "--all", "--camera", "x"},
                                                      {"stream", "--play", path("x"), "--color"},
                                                      {"stream", "--camera", "SIM0570,,"},
                                                      {"stream", "--png", path("x"), "--raw", path("./x")},
                                                      {"devices", "--watch", "--seconds", "0"},
                                                      {"stream", "--wait", "-1"}};
    for (const auto& arguments : wrong) {
        const ToolRun run = ToolTest::run(arguments);
        EXPECT_EQ(run.exitCode, 2) << testing::PrintToString(arguments);
        EXPECT_EQ(run.out, "") << testing::PrintToString(arguments);
        EXPECT_NE(run.err, "") << testing::PrintToString(arguments);
    }
}

TEST_F(StreamVerb, TellsWhatFailedAndLeavesNoFile) {
    // The fault, the exit status, what is said of a bare device and what of a camera.
    const std::tuple<const char*, int, const char*, const char*> rows[]{
        {"throw io at open saying lens cap", 1, "cannot open MOCKVIDEODEVICE_IMPL: I/O failure: lens cap",
         "cannot open ZS570 depth SIM0570 through MOCKDEPTH_IMPL: I/O failure: lens cap"},
        {"throw timeout at video.enableDepth", 7,
         "cannot stream DEFF2FR60CM0S0 from MOCKVIDEODEVICE_IMPL: timed out: enableDepth: simulated fault",
         "from ZS570 depth SIM0570: timed out: enableDepth: simulated fault"},
        {"throw foreign at audio.readBuffer after 2 saying huh", 1,
         "cannot read unit 2 from MOCKAUDIODEVICE_IMPL: huh",
         "cannot read unit 2 from ZS570 microphones SIM0570: huh"},
        {"throw io at disable", 1, "cannot stop the stream of", "cannot stop the stream of"},
        {"snooze", 1, "ZENTARA_SIMULATED, line 1: unknown statement 'snooze'",
         "ZENTARA_SIMULATED, line 1: unknown statement 'snooze'"},
    };
    for (const auto& [fault, exitCode, bare, proxified] : rows) {
        for (const bool direct : {false, true}) {
            const TestSupport::SimulatedFaults faults(fault);
            std::vector<std::string> arguments{"stream", "--frames",    "20",    "--png",      path("d.png"),
                                               "--raw",  path("d.raw"), "--wav", path("t.wav")};
            if (direct)
                arguments.emplace_back("--direct");
            const ToolRun run = ToolTest::run(arguments);
            EXPECT_EQ(run.exitCode, exitCode) << fault << run.err;
            EXPECT_THAT(run.err, HasSubstr(direct ? bare : proxified)) << fault;
            EXPECT_EQ(run.out, "") << fault;
            EXPECT_THAT(filesLeft(), testing::IsEmpty()) << fault;
        }
    }
}

TEST_F(StreamVerb, WantsStreamsAndPlacesForTheFilesThatAreNamed) {
    ASSERT_EQ(run({"stream", "--direct", "--frames", "2", "--record", path("r")}).exitCode, 0);
    const std::vector<std::vector<std::string>> rows{{"--wav", "f", "there is no audio stream"},
                                                     {"--color-png", "f", "there is no color stream"},
                                                     {"--png", "no/such/dir", "no/such/dir"},
                                                     {"--raw", "", "it is there and no file"}};
    for (const auto& row : rows) {
        const ToolRun run = ToolTest::run({"stream", "--play", path("r"), row[0], path(row[1])});
        EXPECT_EQ(run.exitCode, 1) << row[0];
        EXPECT_THAT(run.err, HasSubstr(row[2]));
    }
    EXPECT_EQ(filesLeft().size(), 1U);
}

} // namespace
} // namespace Zentara::Tool
