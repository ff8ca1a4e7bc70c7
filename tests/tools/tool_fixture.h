#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "support/scoped_variable.h"
#include "support/temporary_directory.h"

namespace Zentara::Tool {

/// What a run of the tool left behind.
struct ToolRun {
    int exitCode = -1;
    std::string out;
    std::string err;

    [[nodiscard]] nlohmann::json json() const { return nlohmann::json::parse(out); }
};

/// Runs the tool, inside this process or as the built program, with a directory of its own for files.
class ToolTest : public testing::Test {
protected:
    /// In this process.
    static ToolRun run(const std::vector<std::string>& arguments);

    /// The built program. \param arguments plain words between blanks. \param input its standard input
    ToolRun runBuilt(const std::string& arguments, const std::string& input = {}) const;

    [[nodiscard]] static std::filesystem::path builtTool();

    /// For the system's command interpreter, off Windows: runs what follows without the right to read everything. As
    /// the same user, who may be the only one that gets as far as to the program.
    static constexpr const char* unprivileged = "$([ $(id -u) = 0 ] && echo setpriv --bounding-set -all) ";

    /// A file in the test's directory, and whether it is there.
    [[nodiscard]] std::string path(const std::string& name = {}) const { return directory.path(name); }
    [[nodiscard]] bool exists(const std::string& name) const;
    [[nodiscard]] std::vector<std::string> filesLeft() const;

private:
    TestSupport::TemporaryDirectory directory;
};

/// An install root for one scope.
struct InstallRoot : TestSupport::ScopedVariable {
    explicit InstallRoot(const std::string& root) : ScopedVariable("ZENTARASDK_ROOT", root) {}
};

} // namespace Zentara::Tool
