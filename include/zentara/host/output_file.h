#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include <zentara/host/export.h>

namespace Zentara::Host {

/// What becomes of a file that is there already.
enum class IfThere {
    Replace, ///< by the new one, once that is whole
    Refuse,  ///< it stays: Failure (Usage), for somebody may say that he means it
    Keep,    ///< it stays: Failure (Usage), whatever anybody says
};

/// STEM.ENDING or, where that is there, STEM-2.ENDING, STEM-3.ENDING and so on: the first that is not. Whoever writes it
/// asks for `IfThere::Keep`, for another program may have made it meanwhile. Safe.
[[nodiscard]] ZENTARA_HOST_API std::string unusedPath(const std::string& stem, const std::string& ending);

/// A file that takes its name only once it is whole. It is filled beside its place, as NAME.<16 digits>.part, a name
/// that nobody else has; commit() flushes it to the disk and gives it its name, replacing what was there. Without a
/// commit the destructor removes it; what a killed program left, the next one removes. While this lives, no other
/// program that writes files in this way can write the same one. The host library writes all its files so. Separate.
class ZENTARA_HOST_API OutputFile final {
public:
    /// What else holds for the file.
    struct Rules {
        IfThere ifThere = IfThere::Replace;
        /// The file whose readers may read this one; the file itself, or whoever may read a new one, unless named.
        std::string like = {};
        /// How the user of the program says that he means it; ends the message of a refusal: "--force replaces it".
        std::string hint = {};
    };

    /// Makes the part, empty: a place that cannot be written is told before any work is done for it. Waits at most a
    /// second for another writer.
    /// \param path UTF-8; where a link leads, the file there is replaced, not the link
    /// \throws Failure (Usage) when `path` is empty, or there already and not to be replaced; (Failed) when it names
    ///         something that a file must not replace: a directory, a device, a link that leads nowhere; (Busy) when
    ///         another program is writing the file; (Permission) or (Failed) when the part cannot be made
    explicit OutputFile(std::string path) : OutputFile(std::move(path), Rules{}) {}
    OutputFile(std::string path, const Rules& rules);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    [[nodiscard]] const std::string& path() const noexcept;
    /// For what can only be written by name. The bytes may be written so, or by the operations here. Not after discard().
    [[nodiscard]] const std::string& partPath() const noexcept;

    /// Replaces the part's bytes. \throws Failure naming the path and the system's reason, as all that follow; the part
    /// is then of an unknown length, until cut(). (Usage) after commit() and discard()
    void write(std::string_view bytes);
    /// Adds bytes at the end, at once.
    void append(const void* data, std::size_t size);
    /// Replaces bytes in the middle.
    void patch(std::uint64_t position, const void* data, std::size_t size);
    /// Cuts the part there.
    void cut(std::uint64_t size);
    /// Bytes; 0 after discard().
    [[nodiscard]] std::uint64_t size() const noexcept;

    /// Gives the file its name; does nothing when it has it. \throws Failure; nothing has changed then, and it may be
    /// tried again. (Busy) when another program has made the file meanwhile that was not to be replaced: the bytes are
    /// kept under a free name beside it, which the cause tells, and nothing is left to commit.
    void commit();
    [[nodiscard]] bool isCommitted() const noexcept;
    /// Removes the part, unless it has been committed; nothing is left to commit.
    void discard() noexcept;

private:
    struct Impl;
    std::unique_ptr<Impl> impl;
};

/// Writes a file whole or not at all. \throws Failure as OutputFile does. Safe.
ZENTARA_HOST_API void writeOutputFile(const std::string& path, std::string_view bytes,
                                      const OutputFile::Rules& rules = {});

} // namespace Zentara::Host
