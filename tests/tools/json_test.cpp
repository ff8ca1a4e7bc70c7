#include <map>
#include <sstream>

#include <zentara/core/plugin_probe.h>
#include <zentara/utils/files.h>

#include "support/simulated_faults.h"
#include "tools/tool_fixture.h"

namespace Zentara::Tool {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using TestSupport::SimulatedFaults;

/// Holds what a verb prints against the block of that name in the document.
class JsonOutput : public ToolTest {
protected:
    void SetUp() override {
        std::istringstream document(Utils::readFile(ZENTARA_DOCUMENTS "/json.md"));
        std::string name;
        std::string text;
        for (std::string line; std::getline(document, line);) {
            if (line.rfind("```json ", 0) == 0) {
                name = line.substr(8);
            } else if (line == "```") {
                shapes[name] = json::parse(text);
                name = text = "";
            } else if (!name.empty()) {
                text += line;
            }
        }
    }

    /// What is wrong with a value, and where; empty if it is as the shape says.
    std::string fault(const json& value, const json& shape, const std::string& path) {
        if (shape.is_array()) {
            if (!value.is_array())
                return path + " is no list";
            std::string found;
            for (const json& element : value)
                found += fault(element, shape.front(), path + "/-");
            return found;
        }
        if (shape.is_object())
            return objectFault(value, shape, path);
        std::istringstream kinds(shape.get<std::string>());
        std::string all;
        for (std::string kind; std::getline(kinds, kind, '|');) {
            if (kind == "any" || (kind == "number" && value.is_number()) ||
                (kind == "text" && value.is_string()) || (kind == "bool" && value.is_boolean()) ||
                (kind == "null" && value.is_null()))
                return {};
            if (shapes.count(kind) == 0)
                continue;
            const std::string inner = fault(value, shapes.at(kind), path);
            if (inner.empty())
                return {};
            all += inner;
        }
        return all + "; " + path + " is not " + shape.dump() + ": " + value.dump();
    }

    std::map<std::string, json> shapes;

private:
    std::string objectFault(const json& value, const json& shape, const std::string& path) {
        if (!value.is_object())
            return path + " is no object";
        std::string found;
        for (const auto& [key, unused] : value.items())
            if (!shape.contains(key) && !shape.contains(key + "?") && !shape.contains("*"))
                found += "; " + path + "/" + key + " is not in the document";
        for (const auto& [key, inner] : shape.items()) {
            const bool mayMiss = key.back() == '?';
            const std::string name = mayMiss ? key.substr(0, key.size() - 1) : key;
            if (value.contains(name))
                found += fault(value.at(name), inner, path + "/" + name);
            else if (!mayMiss && key != "*")
                found += "; " + path + "/" + name + " is missing";
        }
        return found;
    }
};

TEST_F(JsonOutput, IsWhatTheDocumentSays) {
    const std::string values = path("values.json");
    const std::string calibration = path("calibration.json");
    const std::string image = path("image.bin");
    const std::string content = path("content.json");
    const std::string chip = "camera:VC0345";
    const std::string plugin = (builtTool().parent_path() / "Plugins" /
                                ("descriptor_store." + std::string(Core::pluginFileExtension())))
                                   .string();
    const std::vector<std::pair<const char*, std::vector<std::string>>> rows{
        {"plugins", {"plugins", "--all"}},
        {"plugins --check", {"plugins", "--check", plugin}},
        {"devices", {"devices"}},
        {"doctor", {"doctor"}},
        {"devices --watch", {"devices", "--watch", "--seconds", "1"}},
        {"info", {"info", "VC0258"}},
        {"params list", {"params", "list"}},
        {"params list", {"params", "set", "exposure time=3", "0=50", "--camera", "SIM0570"}},
        {"params save", {"params", "save", values}},
        {"params load", {"params", "load", values, "--camera", "SIM0570"}},
        {"sensors", {"sensors"}},
        {"sensors", {"sensors", "--watch", "--seconds", "0.01"}},
        {"calibration export", {"calibration", "export", calibration}},
        {"calibration import", {"calibration", "import", calibration, "--camera", "SIM0570"}},
        {"calibration diff", {"calibration", "diff", calibration}},
        {"stream", {"stream", "--frames", "2", "--color", "--audio", "--png", path("d.png")}},
        {"stream", {"stream", "--frames", "2", "--direct"}},
        {"reg read", {"reg", "read", "tof", "5", "--trace"}},
        {"reg read several", {"reg", "read", "tof", "5-7", "--trace"}},
        {"reg watch", {"reg", "watch", "tof", "5", "--seconds", "0.01"}},
        {"i2c scan", {"i2c", "scan"}},
        {"i2c read", {"i2c", "read", "0x23", "0x21", "--camera", "VC0258"}},
        {"xu list", {"xu", "list"}},
        {"xu get", {"xu", "len", "2", "--direct"}},
        {"meta", {"meta", "1000", "1", "--camera", "SIM0570"}},
        {"modfreq", {"modfreq", "20", "--camera", "SIM0570"}},
        {"firmware dump", {"firmware", "dump", path("f"), "--length", "16"}},
        {"rom set", {"rom", "create", image}},
        {"rom set", {"rom", "set", "9", image, "--type", "77", "--hex", "01"}},
        {"rom set", {"rom", "set", "9", image, "--hex", "02", "--dry-run"}},
        {"rom get", {"rom", "get", "9", image}},
        {"rom get", {"rom", "get", "2", chip, "--hex"}},
        {"rom info", {"rom", "info", chip}},
        {"rom list", {"rom", "list", chip}},
        {"rom verify", {"rom", "verify", chip}},
        {"rom export", {"rom", "export", image, "--output", content}},
        {"rom document", {"rom", "export", chip}},
        {"rom set", {"rom", "import", content, image}},
        {"rom diff", {"rom", "diff", image, image}},
        {"rom backup", {"rom", "backup", path("b"), "camera:SIM0570"}},
        {"rom salvage", {"rom", "salvage", path("s"), chip}},
        {"rom map", {"rom", "map", chip}},
        {"rom draw", {"rom", "draw", chip, "--png", path("t.png")}},
    };
    for (auto [name, arguments] : rows) {
        arguments.emplace_back("--json");
        const ToolRun run = ToolTest::run(arguments);
        EXPECT_EQ(run.exitCode, 0) << name << run.err;
        const bool goesOn = arguments[1].find("watch") != std::string::npos;
        const std::string one = goesOn ? run.out.substr(0, run.out.find('\n')) : run.out;
        EXPECT_EQ(fault(json::parse(one), shapes.at(name), ""), "") << testing::PrintToString(arguments);
    }
}

TEST_F(JsonOutput, TellsAFailureToo) {
    const SimulatedFaults slow("throw timeout at video.enableDepth");
    const std::string image = path("image.bin");
    run({"rom", "create", image});
    run({"rom", "set", "9", image, "--type", "77", "--hex", "01"});
    Utils::writeFile(image + "2", std::string(65536, 'x'));
    const std::tuple<std::vector<std::string>, int, const char*, const char*> rows[]{
        {{"dance"}, 2, "null", "'zentara --help' lists them"},
        {{"steam", "--frames", "2"}, 2, "null", "did you mean 'zentara stream'?"},
        {{"calibration", "improt", "x"}, 2, "\"calibration\"", "did you mean 'zentara calibration import'?"},
        {{"help", "devcies"}, 2, "null", "did you mean 'zentara devices'?"},
        {{"stream", "--frames", "0"}, 2, "\"stream\"", "'zentara stream --help' tells more"},
        {{"info", "nobody"}, 3, "\"info\"", "'zentara --log devices' lists"},
        {{"stream", "--frames", "2"}, 7, "\"stream\"", "try again"},
        {{"params", "get", "99"}, 2, "\"params\"", ""},
        {{"calibration", "diff", path("none")}, 1, "\"calibration\"", ""},
        {{"params", "get", "exposure tme"}, 2, "\"params\"", "did you mean 'exposure time'?"},
        {{"rom", "erase", "9", image}, 2, "\"rom\"", "--yes does it"},
        {{"rom", "set", "9", image, "--hex", "03"}, 2, "\"rom\"", "--yes does it"},
        {{"rom", "salvage", path("s"), image + "2"}, 8, "\"rom\"", ""},
        {{"rom", "restore", image + "2", image}, 8, "\"rom\"", "--damaged"},
        {{"rom", "set", "1", "camera:VC0258", "--hex", "03"}, 5, "\"rom\"", ""},
        {{"rom", "get", "7", image + "\x1b[31m"}, 1, "\"rom\"", ""},
    };
    for (auto [arguments, code, verb, remedy] : rows) {
        arguments.emplace_back("--json=true");
        const ToolRun run = ToolTest::run(arguments);
        EXPECT_EQ(run.exitCode, code) << run.err;
        const json told = json::parse(run.out);
        EXPECT_EQ(fault(told, shapes.at("error"), ""), "");
        EXPECT_EQ(told.at("verb").dump(), verb);
        EXPECT_EQ(told.at("error").at("code"), code);
        EXPECT_THAT(told.at("error").at("remedy").dump(), HasSubstr(remedy));
        EXPECT_THAT(run.err, HasSubstr(told.at("error").at("message").get<std::string>()));
        EXPECT_THAT(run.err, testing::Not(HasSubstr("\x1b")));
    }
    EXPECT_EQ(ToolTest::run({"help", "rom", "get"}).out, ToolTest::run({"rom", "get", "--help"}).out);
}

/// A camera that can be told apart from its description says which numbers are its own.
TEST_F(JsonOutput, SaysWhereNumbersComeFrom) {
    const std::string flash = path("flash.bin");
    Utils::writeFile(flash, std::string(65536, '\xFF'));
    const auto told = [](const std::string& settings, const char* verb) {
        const SimulatedFaults faults(settings);
        return ToolTest::run({verb, "--json"});
    };
    const ToolRun whole = told("seed 1", "info");
    EXPECT_EQ(whole.json().at("source").at("lens"), "camera");
    EXPECT_EQ(whole.err, "");
    const ToolRun empty = told("flash " + flash, "info");
    EXPECT_EQ(empty.json().at("source").at("lens"), "description");
    EXPECT_EQ(empty.json().at("source").at("accelerometer"), json());
    EXPECT_THAT(empty.err,
                HasSubstr("ZS570 depth SIM0570: its flash does not hold lens, extrinsics, corrections"));
    EXPECT_EQ(told("transfer 40 fail", "info").json().at("source").at("lens"), "failure");
    EXPECT_THAT(told("transfer 40 fail", "sensors").err,
                testing::AllOf(HasSubstr("its flash cannot be read ("), HasSubstr(": lens, extrinsics")));
}

} // namespace
} // namespace Zentara::Tool
