#pragma once

#include <optional>
#include <string>
#include <vector>

namespace Zentara::Host::Check {

/// The first word of the arguments with which a program is started to check a plug-in; then come the file, the limit of a
/// step in milliseconds, the steps to be left out with '|' between them, and the report's channel.
inline constexpr const char* checkWord = "--check-plugin";

/// In the child: checks the file, tells of it and ends the process. Nothing where the program was started otherwise; its
/// exit code where nobody takes the report.
[[nodiscard]] std::optional<int> answerPluginCheck(const std::vector<std::string>& arguments);

} // namespace Zentara::Host::Check
