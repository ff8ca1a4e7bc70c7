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

/// Whether a person reads what is written to the stream.
bool isTerminal(std::FILE* stream) noexcept;

} // namespace Zentara::Utils::Platform
