#pragma once

#include <zentara/host/flash.h>
#include <zentara/rom/accessor.h>

namespace Zentara::Host {

/// What a Flash works on: an image file, or a camera.
struct Flash::Target {
    Target(const FlashArea& area, const FlashOptions& wanted, Access purpose)
        : place(area), options(wanted), access(purpose) {}
    virtual ~Target() = default;
    Target(const Target&) = delete;
    Target& operator=(const Target&) = delete;

    [[nodiscard]] virtual std::string name() const = 0;
    /// How the name of a backup file begins.
    [[nodiscard]] virtual std::string backupStem() const = 0;
    [[nodiscard]] virtual std::string file() const { return {}; }
    /// All bytes that are there, also outside the area; none for a file that is to be made.
    [[nodiscard]] virtual std::optional<FlashImage> whole() const { return std::nullopt; }
    [[nodiscard]] virtual bool isNew() const { return false; }
    /// \throws Failure when there is no way to write to it.
    virtual void checkWritable() const {}
    /// Whether a write that breaks off leaves a part of the change.
    [[nodiscard]] virtual bool isWrittenInPlace() const { return false; }
    /// Whether a path leads to this very file.
    [[nodiscard]] virtual bool isAt(const std::string&) const { return false; }
    [[nodiscard]] virtual ROM::Accessor& flash() = 0;
    /// Makes what was written last.
    virtual void save() {}
    /// Whether a reading may give other bytes than the flash has.
    [[nodiscard]] virtual bool mayMisread() const { return false; }

    /// Finds the position of the header, and the chunk size, of a storage that stands there already.
    void detect();
    /// \param done, all  what the progress is told beside the bytes that are read
    [[nodiscard]] FlashImage load(const Progress& progress, const char* whenInterrupted,
                                  std::uint64_t done = 0);
    /// Makes the writes in their order, reads each back and compares it, and makes all of it last. What the progress
    /// answers is not heeded: half of a change is worse than a late end.
    void store(const std::vector<FlashWrite>& writes, const Progress& progress, std::uint64_t all);

    FlashArea place;
    const FlashOptions options;
    const Access access;
    std::optional<CameraInfo> owner;

private:
    [[nodiscard]] Bytes readOnce(std::uint32_t address, std::uint32_t length);
    [[nodiscard]] Bytes readSurely(std::uint32_t address, std::uint32_t length);
    void storePiece(std::uint32_t address, const Bytes& bytes);
};

/// \throws Failure (Usage) for an area that no flash has
[[nodiscard]] FlashArea flashArea(const FlashOptions& options, std::uint64_t start, std::uint64_t size);

/// \throws Failure when an image of that file would be larger than any flash
void checkFlashFileSize(const std::string& file, std::uint64_t size);

} // namespace Zentara::Host
