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

/// Whether the system still has a named object whose name holds this text. Where names are no files they go with their
/// last user, and there is none.
inline bool isNameLeft(const std::string& text) {
    std::error_code missing;
    for (const auto& entry : std::filesystem::directory_iterator("/dev/shm", missing)) {
        if (entry.path().filename().string().find(text) != std::string::npos)
            return true;
    }
    return false;
}

} // namespace Zentara::Tests
