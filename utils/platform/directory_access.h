#pragma once

#include <string>

/// Not part of the library: programs link zentara_program_port.
namespace Zentara::Utils::Platform {

/// Whether every user of this machine may put files into the directory. False when that cannot be found out.
bool everybodyMayWrite(const std::string& directory);

/// Whether the calling user may read and write the file, a device's included. True when that cannot be found out. The file
/// is not opened.
bool mayReadAndWrite(const std::string& path);

} // namespace Zentara::Utils::Platform
