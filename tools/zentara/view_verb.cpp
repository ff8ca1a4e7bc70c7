#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include <zentara/utils/files.h>

#include "tools/viewer/view_wishes.h"
#include "tools/zentara/tool_log.h"
#include "tools/zentara/verb.h"
#include "utils/platform/program.h"

namespace Zentara::Tool {
namespace {

/// The viewer lies beside the tool, and is called as that is: with its ending, where programs have one.
std::string viewerBeside(const std::string& program) {
    return Utils::getDirectory(program) + "zentara-view" +
           program.substr(Utils::removeExtension(program).size());
}

ExitCode runView(const CLI::App& command, Console& console) {
    if (ToolLog::current() != nullptr)
        note(console, "--log ends here; the window logs as ZENTARASDK_LOG says, such as 'warning'");
    console.out.flush();
    console.err.flush();
    const std::string viewer = viewerBeside(console.program);
    if (const std::optional<int> code = Utils::Platform::handOver(viewer, Viewer::wordsOf(command)))
        return static_cast<ExitCode>(*code);
    const std::vector<std::string> beside = Utils::getFileList(Utils::getDirectory(viewer), "");
    if (std::find(beside.begin(), beside.end(), viewer) != beside.end())
        throw Failure(Failure::Failed, "cannot open a window", "'" + viewer + "' cannot be started");
    throw Failure(
        Failure::Failed, "cannot open a window", "there is no '" + viewer + "'",
        "Debian has it in the package zentara-viewer; a build makes it where SDL 2 and Dear ImGui are "
        "found (libsdl2-dev and libimgui-dev)");
}

} // namespace

Verb addViewVerb(CLI::App& program) {
    auto wishes = std::make_shared<Viewer::ViewWishes>();
    CLI::App* command =
        program
            .add_subcommand("view",
                            "Opens a window: live depth and colour, point cloud, recording, parameters")
            ->group("Verbs");
    command->footer(Viewer::viewFooter());
    Viewer::addViewOptions(*command, *wishes);
    return {command, [command, wishes](Console& console) { return runView(*command, console); }, true};
}

} // namespace Zentara::Tool
