#pragma once

#include <string>

#include <zentara/export.h>

namespace Zentara::Utils {

/// Loads a shared library, with all its symbols resolved and none given to others, and without a system
/// dialog. Each success is paired with one freeSharedLibrary(). Anything but a regular file is refused, so a
/// pipe cannot hold the caller up. An exception from the library's static initialisation is a failure, too.
/// \param mode not used
/// \return the handle, or null, and then getLastError() on this thread tells the reason. On Windows that may be
///         an empty text: what the system says for error 193 (no library, or one of another machine) wants the
///         name of the program filled in. Safe.
ZENTARA_API void* loadSharedLibrary(const std::string& path, int mode);

/// The address of an exported function; null when the library is null or has no such symbol.
/// Safe.
ZENTARA_API void* getFunction(void* library, const std::string& name);

/// True on success; false for null. Safe, as long as nobody still runs the library's code.
ZENTARA_API bool freeSharedLibrary(void* library);

} // namespace Zentara::Utils
