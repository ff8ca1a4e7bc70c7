#pragma once

#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include <zentara/host/output_file.h>

namespace Zentara::Tool {

/// Takes seconds within a range; "nan", which is neither below nor above any number, is refused, too.
[[nodiscard]] CLI::Validator secondsBetween(double least, double most);

/// How long a verb watches, in seconds: up to a day.
inline constexpr double shortestWatch = 0.001;
inline constexpr double longestWatch = 86'400;

/// Takes any text but the empty one. \param what is named by it, for the message
[[nodiscard]] CLI::Validator anyName(const char* what);

/// An option that takes a list: words with commas between, or several of them. A place without a word is refused: what
/// was to stand there, a variable that was not set perhaps, would be left out silently. \param words are replaced
CLI::Option* addList(CLI::App& command, const std::string& name, std::vector<std::string>& words,
                     const std::string& text);

/// --plugin, which chooses among the device plug-ins.
CLI::Option* addPluginName(CLI::App& command, std::vector<std::string>& names);

/// Refuses an empty text wherever an option or an argument takes one, in all verbs: a variable that was not set must not
/// name something else. Bytes that may be none are left alone.
void refuseEmptyWords(CLI::App& program);

/// How a verb with the option --force writes a file.
[[nodiscard]] Host::OutputFile::Rules forced(bool force);

/// A path as a word of a command line that somebody pastes; it is taken for no option.
[[nodiscard]] std::string fileWord(const std::string& path);

/// For arguments whose range only the camera knows: what is past 32 bits is refused with their range.
[[nodiscard]] CLI::Range any32Bits();

} // namespace Zentara::Tool
