#pragma once

#include <string>

namespace Zentara::Utils::Platform {

/// The ending of shared libraries, without the dot: "dll" on Windows, "so" elsewhere.
const char* libraryExtension() noexcept;

/// Whether this file is mapped into the process as a library, by whoever opened it. False for a missing file.
bool isLibraryLoaded(const std::string& path);

enum class LibraryFileState {
    Damaged, ///< it is cut short or contradicts itself, so that the loader would read beyond its end
    Whole,   ///< a regular file in which nothing of that kind was found
    Unknown, ///< everything else, also what is no library or cannot be read: left to the loader's own checks
};

/// Looks at a file before the loader sees it.
/// \param problem tells where a damaged one is damaged
LibraryFileState examineLibrary(const std::string& path, std::string& problem);

} // namespace Zentara::Utils::Platform
