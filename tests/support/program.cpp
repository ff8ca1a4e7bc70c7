#include "support/program.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace Zentara::Tests {

namespace {

/// Where the C library hands over a wait status, the exit code is its second byte.
int exitCode(int status) { return status > 0xFF ? status >> 8 : status; }

/// The command that runs the program, for the system's own command interpreter. That of Windows takes a pair of
/// quotes from around the whole line if it begins with one.
std::string command(std::filesystem::path program, const std::string& arguments) {
    const std::string line = '"' + program.make_preferred().string() + "\" " + arguments;
    return std::filesystem::path::preferred_separator == '\\' ? '"' + line + '"' : line;
}

} // namespace

std::filesystem::path programDirectory() {
    const std::filesystem::path program = testing::internal::GetArgvs().at(0);
    return std::filesystem::absolute(program).make_preferred().parent_path();
}

int runProgram(const std::filesystem::path& program, const std::string& arguments) {
    return exitCode(std::system(command(programDirectory() / program, arguments).c_str()));
}

} // namespace Zentara::Tests
