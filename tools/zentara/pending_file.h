#pragma once

#include <string>

namespace Zentara::Tool {

/// A file that takes its name only once it is whole. Whoever fills it writes to partPath(), whose name no other
/// program uses; commit() gives it its name, replacing what was there. Without a commit the destructor removes the
/// part. Not to be copied.
class PendingFile final {
public:
    /// Makes the part, empty: a place that cannot be written is told before any work is done for it.
    /// \throws ToolFailure when `path` is empty or names something that a file must not replace, a directory or a
    /// device, or the part cannot be made.
    explicit PendingFile(std::string path);
    ~PendingFile();
    PendingFile(const PendingFile&) = delete;
    PendingFile& operator=(const PendingFile&) = delete;

    [[nodiscard]] const std::string& path() const noexcept { return finalPath; }
    [[nodiscard]] const std::string& partPath() const noexcept { return temporaryPath; }

    /// Replaces the part's bytes. \throws ToolFailure naming the path and the system's reason.
    void write(const std::string& bytes);
    /// \throws ToolFailure naming both paths and the system's reason.
    void commit();
    /// Removes the part; nothing is left to commit.
    void discard() noexcept;

private:
    const std::string finalPath;
    const std::string temporaryPath;
    bool pending = false;
};

} // namespace Zentara::Tool
