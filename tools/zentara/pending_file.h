#pragma once

#include <string>

namespace Zentara::Tool {

/// A file that takes its name only once it is whole. Whoever fills it writes to partPath(); commit() gives it
/// its name, replacing what was there. Without a commit the destructor removes the part. Not to be copied.
class PendingFile final {
public:
    /// Touches nothing yet. \throws ToolFailure when `path` is empty or names something that a file must not
    /// replace: a directory, a device.
    explicit PendingFile(std::string path);
    ~PendingFile();
    PendingFile(const PendingFile&) = delete;
    PendingFile& operator=(const PendingFile&) = delete;

    [[nodiscard]] const std::string& path() const noexcept { return finalPath; }
    [[nodiscard]] const std::string& partPath() const noexcept { return temporaryPath; }

    /// \throws ToolFailure naming both paths and the system's reason.
    void commit();
    /// Removes the part; nothing is left to commit.
    void discard() noexcept;

private:
    const std::string finalPath;
    const std::string temporaryPath;
    bool pending = true;
};

} // namespace Zentara::Tool
