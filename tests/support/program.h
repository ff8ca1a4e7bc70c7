#pragma once

#include <filesystem>
#include <string>

namespace Zentara::Tests {

/// Where this test program lies, and the other programs of the build with it.
std::filesystem::path programDirectory();

/// Runs another program to its end and returns its exit code.
/// \param program a name in the build, or an absolute path; it may hold blanks.
/// \param arguments plain words, or words in double quotes, between blanks.
int runProgram(const std::filesystem::path& program, const std::string& arguments);

} // namespace Zentara::Tests
