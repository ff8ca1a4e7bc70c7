#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tools/zentara/chips/chip_session.h"
#include "tools/zentara/rom/flash_image.h"

namespace Zentara::Tool {

/// Which flash, and where on it the storage lies.
struct TargetOptions : ChipOptions {
    std::string image; ///< a file, or "camera:NAME"; empty for a camera
    std::uint64_t start = 0;
    std::uint64_t size = 0; ///< 0: to the end of the file, or the camera's own
    std::uint32_t chunkSize = 256;
    std::string header = "auto"; ///< start, end or auto
    bool hasStart = false;
};

/// Whether a camera is meant and not a file.
[[nodiscard]] bool isCamera(const TargetOptions& options);

/// \throws ToolFailure when a file that is there is none to read whole: a directory, a device, or more bytes than any
/// flash has. \param mayBePipe  whether a pipe will do.
void checkFile(const std::string& file, bool mayBePipe);

/// IMAGE, or --camera, and the options of the area.
void addTargetOptions(CLI::App& command, TargetOptions& options);

/// The flash that a verb works on: an image file, or a camera's.
class RomTarget {
public:
    /// Opens the file or the camera. \throws ToolFailure
    [[nodiscard]] static std::unique_ptr<RomTarget> open(const TargetOptions& options, Console& console);
    /// The same for a verb that writes, unless it only tries. \throws ToolFailure also when it cannot be written to.
    [[nodiscard]] static std::unique_ptr<RomTarget> openToWrite(const TargetOptions& options, bool dryRun,
                                                                Console& console);
    /// A new image file of erased flash; nothing is on disk before the first store().
    [[nodiscard]] static std::unique_ptr<RomTarget> create(const TargetOptions& options, Console& console);

    virtual ~RomTarget() = default;
    /// For messages: "'camera.bin'", "the camera (OV0570)".
    [[nodiscard]] virtual std::string name() const = 0;
    /// How the name of a backup file begins.
    [[nodiscard]] virtual std::string backupStem() const = 0;
    /// \throws ToolFailure when there is no way to write to it.
    virtual void checkWritable() const {}
    /// Whether a write that breaks off leaves a part of the change.
    [[nodiscard]] virtual bool isWrittenInPlace() const { return false; }
    /// Whether a path leads to this very file.
    [[nodiscard]] virtual bool isAt(const std::string&) const { return false; }

    /// The whole area. Progress shows on a terminal; Ctrl-C ends it as a ToolFailure of that text.
    [[nodiscard]] FlashImage load(const char* whenInterrupted = "interrupted; nothing was changed");
    /// Makes the writes in their order, reads each back and compares it, and makes all of it last. Ctrl-C does not
    /// break it off. \throws ToolFailure; the flash then holds a part of the writes, a file what it held before.
    void store(const std::vector<FlashWrite>& writes);

protected:
    RomTarget(Console& output, const FlashArea& area) : console(output), place(area) {}
    [[nodiscard]] virtual ROM::Accessor& flash() = 0;
    virtual void save() {}
    /// The position of the header, and the chunk size, of a storage that stands there already.
    void detect(const TargetOptions& options);

private:
    void storePiece(std::uint32_t address, const Bytes& bytes);
    void showProgress(const char* verb, std::size_t done, std::size_t all) const;

    Console& console;
    FlashArea place;
};

} // namespace Zentara::Tool
