#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

namespace Zentara::Utils::Platform {

enum class FileMode {
    ReadBinary,
    WriteBinary, ///< creates or empties
    AppendText   ///< creates if missing
};

/// Opens a file by its UTF-8 path; null on failure, with the last error set. Never waits for the other end of
/// a pipe, and child processes do not inherit the file. A path with a zero byte inside is refused.
std::FILE* openFile(const std::string& path, FileMode mode);

/// Writes at once and past the stream's buffer, which must be empty; what fails is lost.
void writeThrough(std::FILE* file, std::string_view text) noexcept;

/// How many bytes a regular file has, without what is still buffered; -1 for anything else.
std::int64_t fileLength(std::FILE* file) noexcept;

/// The working directory (UTF-8) with '/' as separator; empty on failure.
std::string workingDirectory();

/// The path made absolute with '/' as separator; "." and ".." may still stand in it.
std::string absolutePath(const std::string& path);

/// The path with the system's own separators.
std::string nativeSeparators(const std::string& path);

/// Whether the system takes this character as a separator. '/' is one everywhere.
bool isSeparator(char character) noexcept;

} // namespace Zentara::Utils::Platform
