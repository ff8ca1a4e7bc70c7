#pragma once

#include <string>

namespace Zentara::Utils::Platform {

/// The ending of shared libraries, without the dot: "dll" on Windows, "so" elsewhere.
const char* libraryExtension() noexcept;

/// Whether this file is mapped into the process as a library, by whoever opened it. False for a missing file.
bool isLibraryLoaded(const std::string& path);

/// True for a file that begins as a library of this system and is cut short or contradicts itself, so that the
/// loader would read beyond its end; `problem` tells where. Everything else, also what is no library at all or
/// cannot be read, is left to the loader's own checks.
bool isDamagedLibrary(const std::string& path, std::string& problem);

} // namespace Zentara::Utils::Platform
