#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include <zentara/host/export.h>
#include <zentara/host/frame.h>
#include <zentara/host/mode.h>
#include <zentara/host/output_file.h>

namespace Zentara::Host {

/// Writes sound as a WAV file of PCM samples. The file takes its name with commit(); without one it is removed.
/// Separate.
class ZENTARA_HOST_API SoundFile final {
public:
    /// \param mode of the sound: channels, bits and samples a second
    /// \throws Failure as OutputFile does
    SoundFile(const std::string& path, const Mode& mode, const OutputFile::Rules& rules = {});
    ~SoundFile();
    SoundFile(const SoundFile&) = delete;
    SoundFile& operator=(const SoundFile&) = delete;

    /// Adds the whole samples of a block of that mode. \param most samples a channel that are taken of it
    /// \return how many were
    /// \throws Failure (Failed) when it cannot be written
    std::uint64_t add(const Frame& block, std::uint64_t most = UINT64_MAX);

    /// Completes the file. One that could not be written on to, because the disk is full, ends with its last whole
    /// sample. \throws Failure when even that is not possible
    void commit();
    /// Removes what has been written, unless commit() was called.
    void discard() noexcept;

    [[nodiscard]] const std::string& path() const noexcept;

private:
    struct Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace Zentara::Host
