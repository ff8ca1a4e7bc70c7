#pragma once

#include <string>

namespace Zentara::Utils::Platform {

/// Loads a library, all symbols resolved and kept local, without a dialog; null on failure, and then the
/// thread's lastErrorText() is the loader's reason. Refuses an empty path and what is no regular file. An exception
/// from the library's static initialisation is such a failure too; off Windows that library stays in the process,
/// is refused from then on, and the loader keeps its lock for the calling thread: others wait for it for ever.
/// \param isRegular the caller has seen that the path leads to a regular file
void* openLibrary(const std::string& path, bool isRegular = false);

/// Null for a null library and for a missing symbol.
void* findSymbol(void* library, const char* name);

/// False for null and on failure.
bool closeLibrary(void* library) noexcept;

} // namespace Zentara::Utils::Platform
