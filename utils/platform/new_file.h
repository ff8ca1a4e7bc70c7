#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "utils/platform/owned.h"

/// How a file takes the place of another without anybody ever seeing a part of it. Paths are UTF-8. What fails leaves
/// the last error set.
namespace Zentara::Utils::Platform {

/// What lies at a path; a link counts as what it leads to.
enum class FileKind {
    Missing,
    DeadLink, ///< a link that leads nowhere
    Regular,
    Directory,
    Pipe,
    Device, ///< or a socket: whatever is no file
    Unknown ///< it cannot be asked
};
[[nodiscard]] FileKind fileKind(const std::string& path);

/// What the last error means to somebody who works with files.
enum class FileTrouble { Other, Permission, InUse, Full, Exists };
[[nodiscard]] FileTrouble lastFileTrouble() noexcept;

/// The right to put another file in the place of one. Programs that ask for it take turns; nobody else is kept from
/// reading or writing. It goes with its process, however that ends.
class FileLock {
public:
    /// Takes the right, and waits for it at most so long. The file need not be there: off Windows there is then nothing
    /// to hold, and whoever puts a file there first is the first.
    /// \return null on failure; the trouble is InUse when somebody holds it still.
    static FileLock* create(const std::string& path, unsigned long milliseconds);
    static void destroy(FileLock* lock) noexcept;

    /// Whether a file was there when the right was taken.
    [[nodiscard]] bool found() const noexcept;

    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

protected:
    FileLock() = default;
    ~FileLock() = default;
};

/// A file that is written beside the one whose name it will take, under a random name that ends in ".part".
class NewFile {
public:
    /// Makes it, empty, where nothing was: no file is replaced and no link followed. Who may not read the file `like`
    /// may not read this one either, from its first moment on; where no such file is, it is as the system makes files.
    /// \return null on failure
    static NewFile* create(const std::string& path, const std::string& like);
    /// Removes it, unless it has taken its name.
    static void destroy(NewFile* file) noexcept;

    /// Where it is being written; others may open it there by name.
    [[nodiscard]] const std::string& partPath() const noexcept;

    /// Appends bytes, at once. After a failure an unknown part of them stands there.
    bool append(const void* data, std::size_t size) noexcept;
    /// Replaces bytes in the middle.
    bool patch(std::uint64_t position, const void* data, std::size_t size) noexcept;
    /// Cuts or fills up with zeros; the next bytes are appended there.
    bool resize(std::uint64_t size) noexcept;
    /// The number of bytes, whoever wrote them; 0 when it cannot be told.
    [[nodiscard]] std::uint64_t size() const noexcept;

    /// Forces the bytes onto the disk and gives the file its name, in one step: whoever opens the path finds what was
    /// there before or this file, whole. A reader that has the old one open is waited for, at most so long, where the
    /// system lets it be in the way.
    /// The right to the path that the caller holds is then one to the new file, until this object goes.
    /// \param replaces  whether a file that is there goes; otherwise it is a failure of the trouble Exists.
    /// \return false on failure; nothing has changed then, and it can be tried again.
    bool take(const std::string& path, bool replaces, unsigned long milliseconds);

    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

protected:
    NewFile() = default;
    ~NewFile() = default;
};

/// Removes what programs that were killed left beside a file. What is still being written stays.
/// \return whether anything does.
bool removeLeftParts(const std::string& path);

} // namespace Zentara::Utils::Platform
