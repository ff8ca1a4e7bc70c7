#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "utils/platform/new_file.h"

namespace Zentara::Host {

/// What becomes of a file that is there already.
enum class IfThere {
    Replace,
    Refuse, ///< unless the user says --force
    Keep,   ///< whatever the user says
};

/// What --force makes of it.
[[nodiscard]] constexpr IfThere forced(bool force) { return force ? IfThere::Replace : IfThere::Refuse; }

/// A file that takes its name only once it is whole. It is filled beside its place, under a name that nobody else has;
/// commit() flushes it to the disk and gives it its name, replacing what was there. Without a commit the destructor
/// removes it; what a killed program left, the next one removes. While this lives, no other program that writes files
/// in this way can write the same one. Every file of the tool is written by one of these. Not to be copied.
class PendingFile final {
public:
    /// Makes the part, empty: a place that cannot be written is told before any work is done for it.
    /// \param like  the file whose readers may read this one; the file itself unless named.
    /// \throws Failure when `path` is empty, names something that a file must not replace (a directory, a device, a
    /// link that leads nowhere; a file that is to be kept), when another program is writing the file (exit code 6), or
    /// the part cannot be made.
    explicit PendingFile(std::string path, IfThere ifThere = IfThere::Replace, const std::string& like = {});
    ~PendingFile() = default;
    PendingFile(const PendingFile&) = delete;
    PendingFile& operator=(const PendingFile&) = delete;

    [[nodiscard]] const std::string& path() const noexcept { return finalPath; }
    /// For what can only be written by name. The bytes may be written so, or by the operations here.
    [[nodiscard]] const std::string& partPath() const noexcept { return part->partPath(); }

    /// Replaces the part's bytes. \throws Failure naming the path and the system's reason.
    void write(const std::string& bytes);
    /// Adds bytes at the end, at once. \throws Failure as write(); the end may then be ragged.
    void append(const void* data, std::size_t size);
    /// Replaces bytes in the middle.
    void patch(std::uint64_t position, const void* data, std::size_t size);
    /// Cuts the part there.
    void cut(std::uint64_t size);
    [[nodiscard]] std::uint64_t size() const noexcept { return part->size(); }

    /// \throws Failure naming the path and the system's reason.
    void commit();
    /// Removes the part; nothing is left to commit.
    void discard() noexcept { part.reset(); }

private:
    const std::string finalPath;
    const std::string target; ///< where a link leads
    const IfThere rule;
    Utils::Platform::Owned<Utils::Platform::FileLock> right;
    Utils::Platform::Owned<Utils::Platform::NewFile> part;
};

} // namespace Zentara::Host
