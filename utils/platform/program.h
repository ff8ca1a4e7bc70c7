#pragma once

#include <cstdio>
#include <string>
#include <vector>

/// What a program asks the system about itself. Not part of the library: programs link zentara_program_port.
namespace Zentara::Utils::Platform {

/// The absolute path of the running program's file (UTF-8, '/' as separator); empty when the system does not tell.
std::string executablePath();

/// The program's arguments in UTF-8, without its name. The parameters are main's.
std::vector<std::string> programArguments(int argc, char** argv);

/// Gives each of the three standard streams that was closed when the program started a place of its own that takes
/// and has nothing. Without it the next file that is opened takes the place, and gets what is meant for the stream.
/// Writing to such a stream fails as before. Before any file is opened.
void reserveStandardStreams() noexcept;

/// From now on a write beyond the limit of a file's size, or to a reader that has gone, fails, instead of ending the
/// process without a word.
void failInsteadOfDying() noexcept;

/// The system's error numbers that mean a lack of permission.
std::vector<long> permissionErrors();

/// Whether a person reads what is written to the stream.
bool isTerminal(std::FILE* stream) noexcept;

/// A word of a command line as a person pastes it into the system's command interpreter: in quotes where it needs them.
std::string shellWord(const std::string& text);

} // namespace Zentara::Utils::Platform
