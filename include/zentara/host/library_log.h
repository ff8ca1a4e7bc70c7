#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include <zentara/host/export.h>

namespace Zentara::Host {

/// What the library below this one logs in this process, warnings and errors: it holds causes that a failure does not
/// tell. Goes to a file that nobody else sees, and is gone with it, also after a crash where the system allows that. One at
/// a time: where somebody logs already, this stays empty. Beside the log that a user asks for (see beginUserLog()) nothing
/// is written twice: since() is empty, for the lines stand there. Safe.
class ZENTARA_HOST_API LibraryLog {
public:
    /// Begins to log. \param program who does, for the log's first line
    explicit LibraryLog(const std::string& program);
    LibraryLog(const LibraryLog&) = delete;
    LibraryLog& operator=(const LibraryLog&) = delete;
    ~LibraryLog();

    /// Ends the logging; what was logged can still be read. Twice is harmless.
    void stop();

    /// The place behind what has been logged so far, in bytes.
    [[nodiscard]] std::size_t end() const;
    /// What was logged from that place on, in lines; empty for nothing.
    [[nodiscard]] std::string since(std::size_t place) const;
    /// The cause of the first time-out that was logged from that place on; empty when there was none.
    [[nodiscard]] std::string timeoutSince(std::size_t place) const;
    /// Forgets what was logged from that place on: it came of attempts that may fail and mean nothing.
    void forget(std::size_t place);

private:
    struct Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace Zentara::Host
