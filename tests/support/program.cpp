#include "support/program.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace Zentara::Tests {

namespace {

/// Where the C library hands over a wait status, the exit code is its second byte.
int exitCode(int status) { return status > 0xFF ? status >> 8 : status; }

} // namespace

std::filesystem::path programDirectory() {
    const std::filesystem::path program = testing::internal::GetArgvs().at(0);
    return std::filesystem::absolute(program).make_preferred().parent_path();
}

int runProgram(const std::string& name, const std::string& arguments) {
    return exitCode(std::system(((programDirectory() / name).string() + " " + arguments).c_str()));
}

} // namespace Zentara::Tests
