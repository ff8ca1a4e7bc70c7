#pragma once

#include <filesystem>
#include <string>

namespace Zentara::Tests {

/// Where this test program lies, and the other programs of the build with it.
std::filesystem::path programDirectory();

/// Runs another program of the build to its end and returns its exit code.
/// \param arguments plain words between blanks.
int runProgram(const std::string& name, const std::string& arguments);

} // namespace Zentara::Tests
