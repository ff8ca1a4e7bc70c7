#pragma once

#include <string>
#include <vector>

#include <zentara/export.h>

namespace Zentara::Utils {

/// Paths are UTF-8 on every system. The separator is '/'; on Windows '\' is one as well. The functions on
/// paths alone look at the text only, never at the disk. Everything here is safe.

/// The process's working directory, without a separator at its end; empty if it no longer exists.
ZENTARA_API std::string getWorkingDirectory();

/// The path made absolute, separators turned to '/', without doubled separators, "." and "..". Links are not
/// resolved and nothing needs to exist. An empty path gives the working directory.
ZENTARA_API std::string canonicalPath(const std::string& path);

/// The path with the system's own separators: '\' on Windows, unchanged elsewhere.
ZENTARA_API std::string nativePath(const std::string& path);

/// The path with a '/' appended, unless it is empty or ends in a separator.
ZENTARA_API std::string addTrailingSeparator(const std::string& path);

/// Everything up to and including the last separator, and what follows it: together they are the path.
ZENTARA_API std::string getDirectory(const std::string& path);
ZENTARA_API std::string getFilename(const std::string& path);

/// The path without the last '.' of its file name and what follows. A '.' that begins the name stays.
ZENTARA_API std::string removeExtension(const std::string& path);

/// The regular files in a directory whose extension is `pattern` ("dll", without the dot; letter case is
/// ignored on Windows), as directory plus name, sorted by bytes. An empty pattern lists every regular file.
/// Links count as what they point to. A missing directory gives an empty list; a walk that fails is logged
/// with "FindNextFile error" and gives what was found until then.
ZENTARA_API std::vector<std::string> getFileList(const std::string& directory, const std::string& pattern);

/// All bytes of a file.
/// \throws UIOException with the path and the system's text.
ZENTARA_API std::string readFile(const std::string& path);

/// Creates or replaces a file. After a failure its contents are unknown.
/// \throws UIOException with the path and the system's text.
ZENTARA_API void writeFile(const std::string& path, const std::string& contents);

/// Whether a key is waiting on the console; never blocks, takes no key, and is false without a console.
ZENTARA_API bool keyPressed();

} // namespace Zentara::Utils
