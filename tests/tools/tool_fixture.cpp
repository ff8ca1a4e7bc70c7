#include "tools/tool_fixture.h"

#include <sstream>

#include <zentara/utils/files.h>

#include "support/program.h"
#include "support/scoped_variable.h"
#include "tools/zentara/verb.h"

namespace Zentara::Tool {

ToolRun ToolTest::run(const std::vector<std::string>& arguments) {
    std::ostringstream out;
    std::ostringstream err;
    Console console{out, err, false, builtTool().string()};
    ToolRun result;
    result.exitCode = runTool(arguments, console);
    result.out = out.str();
    result.err = err.str();
    return result;
}

std::filesystem::path ToolTest::builtTool() {
    const std::filesystem::path tool = Tests::programDirectory() / "zentara";
    return std::filesystem::exists(tool) ? tool : std::filesystem::path(tool.string() + ".exe");
}

ToolRun ToolTest::runBuilt(const std::string& arguments, const std::string& input) const {
    const std::string name = testing::UnitTest::GetInstance()->current_test_info()->name();
    const std::string base = (Tests::programDirectory() / ("tools_tests_" + name)).string();
    ToolRun result;
    Utils::writeFile(base + ".in", input);
    // Windows is handed commands in a code page that lacks most letters; from the environment it takes all of them.
    const TestSupport::ScopedVariable words("ZENTARA_TEST_WORDS", arguments + ' ');
    const bool isHanded = std::filesystem::path::preferred_separator != '\\';
    result.exitCode =
        Tests::runProgram("zentara", (isHanded ? arguments : "%ZENTARA_TEST_WORDS%") + " < \"" + base +
                                         ".in\" > \"" + base + ".out\" 2> \"" + base + ".err\"");
    result.out = Utils::readFile(base + ".out");
    result.err = Utils::readFile(base + ".err");
    for (const char* ending : {".in", ".out", ".err"})
        std::filesystem::remove(base + ending);
    return result;
}

bool ToolTest::exists(const std::string& name) const {
    return std::filesystem::exists(TestSupport::TemporaryDirectory::fromUtf8(path(name)));
}

std::vector<std::string> ToolTest::filesLeft() const { return Utils::getFileList(path(), ""); }

} // namespace Zentara::Tool
