#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include <zentara/host/output_file.h>
#include <zentara/host/sound_file.h>

#include "tools/zentara/console.h"

namespace Zentara::Tool {

/// A file that a stream goes into. Made before the stream begins: a place that cannot be written is told then.
class StreamFile {
public:
    /// \param word what it is called in text \param jsonKey and in JSON
    StreamFile(const char* word, const char* jsonKey) : label(word), key(jsonKey) {}
    virtual ~StreamFile() = default;
    StreamFile(const StreamFile&) = delete;
    StreamFile& operator=(const StreamFile&) = delete;

    /// \param came the frame as the camera delivered it \param seen the same as it is shown, corrected where that is
    /// wanted \throws Failure when it cannot be written
    virtual void take(const Frame& came, const Frame& seen) = 0;
    virtual void commit() = 0;
    /// Removes what has been written.
    virtual void discard() noexcept = 0;
    [[nodiscard]] virtual const std::string& path() const noexcept = 0;
    /// Whether anything becomes of it.
    [[nodiscard]] virtual bool isThere() const noexcept { return true; }

    const char* const label;
    const char* const key;
};

/// What is made of the last frame.
class LastFrameFile final : public StreamFile {
public:
    using Make = std::function<std::string(const Frame& seen)>; ///< the file's bytes

    LastFrameFile(const char* word, const char* jsonKey, const std::string& path, Make maker)
        : StreamFile(word, jsonKey), make(std::move(maker)), file(path) {}

    void take(const Frame&, const Frame& seen) override { last = seen; }
    void commit() override {
        if (!last)
            return;
        file.write(make(*last));
        file.commit();
    }
    void discard() noexcept override { file.discard(); }
    [[nodiscard]] const std::string& path() const noexcept override { return file.path(); }
    [[nodiscard]] bool isThere() const noexcept override { return last.has_value(); }

private:
    const Make make;
    OutputFile file;
    std::optional<Frame> last;
};

/// All frames, as they came.
class RawFile final : public StreamFile {
public:
    explicit RawFile(const std::string& path) : StreamFile("raw", "raw"), file(path) {}

    void take(const Frame& came, const Frame&) override {
        file.append(came.bytes().data(), came.bytes().size());
        whole += came.bytes().size();
    }
    void commit() override {
        file.cut(whole); // no half frame
        file.commit();
    }
    void discard() noexcept override { file.discard(); }
    [[nodiscard]] const std::string& path() const noexcept override { return file.path(); }

private:
    OutputFile file;
    std::uint64_t whole = 0; ///< bytes of the whole frames
};

/// Sound.
class WavFile final : public StreamFile {
public:
    /// \param most samples a channel, 0: all that come
    WavFile(const std::string& path, const Mode& mode, std::uint64_t most)
        : StreamFile("wav", "wav"), file(path, mode), left(most == 0 ? UINT64_MAX : most) {}

    void take(const Frame& came, const Frame&) override { left -= file.add(came, left); }
    void commit() override { file.commit(); }
    void discard() noexcept override { file.discard(); }
    [[nodiscard]] const std::string& path() const noexcept override { return file.path(); }

private:
    SoundFile file;
    std::uint64_t left;
};

} // namespace Zentara::Tool
