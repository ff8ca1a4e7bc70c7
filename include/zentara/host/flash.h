#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <zentara/host/correction_tables.h>
#include <zentara/host/export.h>
#include <zentara/host/failure.h>
#include <zentara/host/flash_content.h>
#include <zentara/host/flash_image.h>
#include <zentara/host/flash_map.h>
#include <zentara/host/flash_survey.h>
#include <zentara/host/output_file.h>
#include <zentara/host/progress.h>
#include <zentara/host/stream_info.h>

namespace Zentara::Host {

class Camera;

/// Which part of a flash the storage has, and how it is to be formatted. A plain value. Separate.
struct FlashOptions {
    /// Where the management header stands.
    enum class Header {
        Auto,  ///< where one stands; at the start where none does, and for a new storage
        Start, ///< in the area's first bytes
        End    ///< in its last ones
    };

    /// Its address; unset: what the camera's description says, of a file 0.
    std::optional<std::uint64_t> start;
    /// Its bytes; 0: what the camera's description says, of a file the rest, of a new file 65536.
    std::uint64_t size = 0;
    /// Bytes, to format with, 1 or more; a storage that is there keeps its own.
    std::uint32_t chunkSize = 256;
    Header header = Header::Auto;
};

/// How far a change may go; all that it does not ask for is refused. A plain value. Separate.
struct ChangeOptions {
    /// A flash that holds no storage is formatted first.
    bool formats = false;
    /// Write the whole content into a freshly formatted image; what cannot be read is given up.
    bool rebuild = false;
    /// Even where only another camera can have it: another GUID, of a restore another serial number or other read-only
    /// sections.
    bool otherCamera = false;
    /// Of a restore: even if something is wrong with the backup.
    bool damaged = false;
};

/// All bytes of a file that is to go into a flash, or is one. \param mayBePipe  whether a pipe will do, or standard input,
/// for "-"
/// \throws Failure also when it is none to read whole: a directory, a device, or more than 64 MiB. Safe.
[[nodiscard]] ZENTARA_HOST_API std::string readFlashFile(const std::string& path, bool mayBePipe = true);

/// A change that was planned, and tried on a copy in memory; nothing is written yet. A plain value. Separate.
struct FlashChange {
    /// Why it is refused.
    enum class Obstacle {
        None,
        ReadOnly,    ///< a section that may not be changed
        OtherCamera, ///< only another camera can have what is wanted
        Damaged,     ///< the backup is damaged
        Costly,      ///< it would cost more than it says, or the flash is damaged already
        Impossible,  ///< the library refuses it: mostly for lack of room
    };

    FlashImage before;                   ///< what the flash held when the change was planned
    FlashImage after;                    ///< what it is to hold
    std::vector<FlashWrite> writes;      ///< in their order
    std::vector<SectionChange> sections; ///< which sections come, go and become others
    std::vector<std::string> lines;      ///< all that becomes of it, for people; below a section its values
    bool takesAway = false;              ///< afterwards something is gone, or wrong, that was not
    std::vector<std::string> foreign;    ///< what only another camera can have, a line each

    Obstacle obstacle = Obstacle::None;
    std::optional<Failure> refusal; ///< what apply() throws; none without an obstacle
    bool rebuildHelps = false;      ///< of a costly or impossible one: ChangeOptions::rebuild would do it
    bool salvageHelps = false;      ///< sections may stand where no link leads

    /// The bytes that go out; 0 when nothing changes.
    [[nodiscard]] ZENTARA_HOST_API std::uint64_t bytes() const noexcept;
};

/// What to do around a change. A plain value. Separate.
struct ApplyOptions {
    bool keeps = true;  ///< the bytes of before are kept in a file; without it nothing brings them back
    std::string backup; ///< the file for the bytes of before; a name of its own, with the time, when empty
    /// Is told where they are, before the first byte goes out: nothing may be told any more when the power fails. Not
    /// called where there was nothing to keep. May be empty; must throw nothing.
    std::function<void(const std::string& file)> kept;
};

/// The flash that holds a camera's calibration: an image file's, or a camera's through its controller. Reading it, trying
/// a change of it, and making the change so that nothing is lost:
///
/// \code
/// Flash flash = Flash::image("camera.bin", {}, Flash::Access::Write);
/// const FlashImage before = flash.load();
/// FlashContent wanted = contentOf(before);
/// wanted.erase(7);
/// const FlashChange change = flash.plan(before, wanted);
/// if (change.obstacle == FlashChange::Obstacle::None)
///     flash.apply(change);
/// \endcode
///
/// A handle that moves; it owns the file's lock, and shares the controller. Separate. A transfer to
/// a camera takes 2 s at most; the whole is as long as its bytes take, and ends sooner when the progress says so. Every
/// operation throws Failure: Failed for what does not work, Usage for what makes no sense, and what is named below.
class ZENTARA_HOST_API Flash final {
public:
    enum class Access { Read, Write };

    /// Opens an image file, of at most 64 MiB. To write, it holds the file's lock from here to its end: of two programs
    /// that would change one file the second one waits a second. A file that is shorter than the area reads as erased
    /// flash behind its end.
    /// \throws Failure (Busy) when another program is writing it, (Permission) when it may not be written,
    /// (Verification) when it is empty
    [[nodiscard]] static Flash image(const std::string& path, const FlashOptions& options = {},
                                     Access access = Access::Read);

    /// An image file that is to be formatted: the one that is there, opened as image() does, or a new one of erased
    /// flash, which appears with the first change that is applied. With Access::Read it is only tried.
    [[nodiscard]] static Flash create(const std::string& path, const FlashOptions& options = {},
                                      Access access = Access::Write);

    /// A camera's flash, where its description puts the storage unless the options say. It keeps the camera; once
    /// that is closed, it throws. The controller is reached at once.
    /// \throws Failure as Camera::chip(), (Usage) where neither the description nor the options say where the storage
    /// lies, (Permission) to write through a controller that cannot
    [[nodiscard]] static Flash camera(const Camera& camera, const FlashOptions& options = {},
                                      Access access = Access::Read);

    Flash(Flash&&) noexcept;
    Flash& operator=(Flash&&) noexcept;
    ~Flash();

    /// For messages: "'camera.bin'", "the camera SIM0570 (OV0570)".
    [[nodiscard]] std::string name() const;
    /// The image file; empty for a camera.
    [[nodiscard]] std::string file() const;
    /// Whose flash it is, with the controller that was found; nothing for a file.
    [[nodiscard]] const std::optional<CameraInfo>& owner() const;
    /// Where the storage lies.
    [[nodiscard]] const FlashArea& area() const;

    /// Reads the whole area. What may be garbled on its way is read until it comes twice the same, five times at most.
    /// \param progress  in bytes; false ends it \throws Failure (Interrupted), nothing was changed; what the camera throws
    [[nodiscard]] FlashImage load(const Progress& progress = {});

    /// What a fresh load of the image finds. \throws Failure (Verification) when it holds no storage
    [[nodiscard]] FlashContent content(const FlashImage& image) const;

    /// Plans to bring the flash to a content: erases what is not in it, writes what differs. The change is made on a copy
    /// in memory by the library's own code, and the copy checked whole: its content is exactly the wanted one, and no
    /// header, link or place is wrong. Reads and writes nothing. \param before  what load() gave
    [[nodiscard]] FlashChange plan(const FlashImage& before, const FlashContent& wanted,
                                   const ChangeOptions& options = {}) const;
    /// Plans a new storage as the options say that the flash was opened with; all that stands there goes, read-only
    /// sections and those of another layout among it. \throws Failure (Usage) when there is no room for one
    [[nodiscard]] FlashChange planFormat(const FlashImage& before) const;
    /// Plans to put back what backup() kept. \throws Failure when the file cannot be read, or has another size
    [[nodiscard]] FlashChange planRestore(const FlashImage& before, const std::string& backupFile,
                                          const ChangeOptions& options = {}) const;

    /// Makes a planned change: keeps the bytes of before in a file, makes the writes in their order, each read back and
    /// compared, and reads everything once more. A file gets the change in one step, after it was seen that it is
    /// still as it was when the change was planned.
    /// \param progress  in bytes, those that are written and those that are read once more. False before the first byte
    /// leaves everything as it was; later it is heeded when all is written, before all is read once more
    /// \return the file with the bytes of before; empty where the flash was erased, or the change has no writes
    /// \throws Failure: the change's refusal; (Busy) when the file was changed meanwhile; (Verification) when it holds
    /// other bytes than were written. When the flash may hold a part of the change, details() say where the bytes of
    /// before are
    std::string apply(const FlashChange& change, const ApplyOptions& options = {},
                      const Progress& progress = {});

    /// Keeps an image of this flash in a file, and beside that of a camera, in FILE.json, whose it is and which SDK read
    /// it. Nothing that is there is replaced, but a file of the same bytes will do; who may not read the image may not
    /// read this either. \throws Failure also when the file is the image itself
    void backup(const std::string& path, const FlashImage& image) const;
    /// The same for any bytes that a camera may be brought back with.
    void keep(const std::string& path, const Bytes& bytes) const;
    /// Puts bytes of any kind into a file, whole or not at all. \throws Failure as OutputFile, and when the file is the
    /// image itself
    void save(const std::string& path, const std::string& bytes, const OutputFile::Rules& rules = {}) const;

    struct Target;

private:
    explicit Flash(std::unique_ptr<Target> opened);
    std::unique_ptr<Target> target;
};

} // namespace Zentara::Host
