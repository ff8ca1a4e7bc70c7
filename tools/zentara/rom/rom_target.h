#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <zentara/version.h>

#include "host/flash/flash_image.h"
#include "tools/zentara/chips/chip_session.h"

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

/// All bytes of a file. \throws Failure also when it is none to read whole: a directory, a device, or more bytes than
/// any flash has. \param mayBePipe  whether a pipe will do.
[[nodiscard]] std::string readFileHere(const std::string& file, bool mayBePipe);

/// Which camera a flash belongs to; what is not known is empty.
struct CameraIdentity {
    std::string serial;
    std::string name; ///< the model's
    std::string path;
    std::string controller; ///< "OV0570"
};

/// "1.4.5": what wrote a backup.
inline const std::string sdkVersion = std::to_string(ZENTARA_SDK_VERSION_MAJOR) + "." +
                                      std::to_string(ZENTARA_SDK_VERSION_MINOR) + "." +
                                      std::to_string(ZENTARA_SDK_VERSION_PATCH);

/// IMAGE, or --camera, and the options of the area.
void addTargetOptions(CLI::App& command, TargetOptions& options);

/// The flash that a verb works on: an image file, or a camera's.
class RomTarget {
public:
    /// Opens the file or the camera. \throws Failure
    [[nodiscard]] static std::unique_ptr<RomTarget> open(const TargetOptions& options, Console& console);
    /// The same for a verb that writes, unless it only tries: of several cameras one has to be named, and of two
    /// programs that would write a file the second one is told so (exit code 6).
    /// \throws Failure also when it cannot be written to.
    [[nodiscard]] static std::unique_ptr<RomTarget> openToWrite(const TargetOptions& options, bool dryRun,
                                                                Console& console);
    /// A new image file of erased flash; it appears with the first store().
    [[nodiscard]] static std::unique_ptr<RomTarget> create(const TargetOptions& options, bool dryRun,
                                                           Console& console);

    virtual ~RomTarget() = default;
    /// For messages: "'camera.bin'", "the camera (OV0570)".
    [[nodiscard]] virtual std::string name() const = 0;
    /// How the name of a backup file begins.
    [[nodiscard]] virtual std::string backupStem() const = 0;
    /// The file that it is; empty for a camera.
    [[nodiscard]] virtual std::string imageFile() const { return {}; }
    /// Whose flash it is; nothing for a file.
    [[nodiscard]] virtual std::optional<CameraIdentity> camera() const { return std::nullopt; }
    /// The same for JSON, as every verb has it; null for a file.
    [[nodiscard]] virtual Json identity() const { return {}; }
    /// \throws Failure when there is no way to write to it.
    virtual void checkWritable() const {}
    /// Whether a write that breaks off leaves a part of the change.
    [[nodiscard]] virtual bool isWrittenInPlace() const { return false; }
    /// Whether a path leads to this very file.
    [[nodiscard]] virtual bool isAt(const std::string&) const { return false; }

    /// Begins what a verb prints with --json: the target, and of a camera who it is.
    [[nodiscard]] Json beginJson() const;

    /// The whole area; what may be garbled on its way is read twice. Progress shows on a terminal; Ctrl-C ends it as a Failure of that text.
    [[nodiscard]] FlashImage load(const char* whenInterrupted = "interrupted; nothing was changed");
    /// Makes the writes in their order, reads each back and compares it, and makes all of it last. Ctrl-C does not
    /// break it off. \throws Failure; the flash then holds a part of the writes, a file what it held before.
    void store(const std::vector<FlashWrite>& writes);

protected:
    RomTarget(Console& output, const FlashArea& area) : console(output), place(area) {}
    [[nodiscard]] virtual ROM::Accessor& flash() = 0;
    virtual void save() {}
    /// Whether a reading may give other bytes than the flash has.
    [[nodiscard]] virtual bool mayMisread() const { return false; }
    /// The position of the header, and the chunk size, of a storage that stands there already.
    void detect(const TargetOptions& options);

private:
    [[nodiscard]] Bytes readOnce(std::uint32_t address, std::uint32_t length);
    [[nodiscard]] Bytes readSurely(std::uint32_t address, std::uint32_t length);
    void storePiece(std::uint32_t address, const Bytes& bytes);
    void showProgress(const char* verb, std::size_t done, std::size_t all) const;

    Console& console;
    FlashArea place;
};

} // namespace Zentara::Tool
