#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include <zentara/host/export.h>
#include <zentara/host/frame.h>
#include <zentara/host/mode.h>
#include <zentara/host/output_file.h>
#include <zentara/host/sound_file.h>

namespace Zentara::Host {

/// A file that the frames of one stream go into, made before the stream begins: a place that cannot be written is told
/// then, by the constructors, which throw as OutputFile does. The file takes its name with commit(); without one it is
/// removed. Separate.
class ZENTARA_HOST_API FrameFile {
public:
    FrameFile();
    virtual ~FrameFile();
    FrameFile(const FrameFile&) = delete;
    FrameFile& operator=(const FrameFile&) = delete;

    /// \param came the frame as the camera delivered it \param seen the same as it is to be shown: corrected, where that
    ///        is wanted
    /// \throws Failure (Failed) when it cannot be written: what is whole stays whole
    virtual void take(const Frame& came, const Frame& seen) = 0;

    /// Gives the file its name, with all that is whole. \throws Failure
    virtual void commit() = 0;

    /// Removes what has been written; nothing else may be called then.
    virtual void discard() noexcept = 0;

    [[nodiscard]] virtual const std::string& path() const noexcept = 0;

    /// Whether a commit leaves a file: of no frame some make none.
    [[nodiscard]] virtual bool isThere() const noexcept { return true; }
};

/// What is made of the last frame, as it is shown: a picture, or a point cloud.
class ZENTARA_HOST_API LastFrameFile final : public FrameFile {
public:
    /// The file's bytes. \throws Failure as commit() does
    using Make = std::function<std::string(const Frame& seen)>;

    LastFrameFile(const std::string& path, Make maker);
    ~LastFrameFile() override;

    void take(const Frame& came, const Frame& seen) override;
    void commit() override;
    void discard() noexcept override;
    [[nodiscard]] const std::string& path() const noexcept override;
    [[nodiscard]] bool isThere() const noexcept override;

private:
    const Make make;
    OutputFile file;
    std::optional<Frame> last;
};

/// The bytes of all frames, as they came, without anything between.
class ZENTARA_HOST_API RawFile final : public FrameFile {
public:
    explicit RawFile(const std::string& path);
    ~RawFile() override;

    void take(const Frame& came, const Frame& seen) override;
    void commit() override;
    void discard() noexcept override;
    [[nodiscard]] const std::string& path() const noexcept override;

private:
    OutputFile file;
    std::uint64_t whole = 0; ///< bytes of the whole frames
};

/// The sound of all blocks, as a WAV file of PCM samples.
class ZENTARA_HOST_API WavFile final : public FrameFile {
public:
    /// \param mode of the sound \param most samples a channel, 0: all that come
    WavFile(const std::string& path, const Mode& mode, std::uint64_t most = 0);
    ~WavFile() override;

    void take(const Frame& came, const Frame& seen) override;
    void commit() override;
    void discard() noexcept override;
    [[nodiscard]] const std::string& path() const noexcept override;

private:
    SoundFile file;
    std::uint64_t left; ///< samples a channel that are still wanted
};

} // namespace Zentara::Host
