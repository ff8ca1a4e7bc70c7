#include <algorithm>
#include <filesystem>
#include <limits>
#include <utility>

#include <zentara/host/user_log.h>
#include <zentara/rom/file_accessor.h>
#include <zentara/utils/format.h>
#include <zentara/utils/log_area.h>

#include "host/files/file_failure.h"
#include "host/files/paths.h"
#include "host/flash/flash_target.h"
#include "utils/platform/new_file.h"

namespace Zentara::Host {
namespace {

using Utils::Format;

namespace fs = std::filesystem;

constexpr std::uint64_t MOST_FILE_BYTES = 64U << 20; ///< far more than a camera's flash has
constexpr std::uint64_t NEW_FILE_BYTES = 0x10000;

class ImageTarget final : public Flash::Target {
public:
    /// \param onDisk  what the file holds; nothing when there is no file yet. \param right  to save it; null for a target
    /// that is only read.
    ImageTarget(std::unique_ptr<ROM::FileAccessor> image, std::optional<Bytes> onDisk,
                std::unique_ptr<OutputFile> right, const FlashArea& area, const FlashOptions& wanted,
                Flash::Access purpose)
        : Target(area, wanted, purpose), accessor(std::move(image)), before(std::move(onDisk)),
          pending(std::move(right)) {
        detect();
    }

    [[nodiscard]] std::string name() const override { return "'" + file() + "'"; }
    [[nodiscard]] std::string backupStem() const override { return file(); }
    [[nodiscard]] std::string file() const override { return accessor->getFileName(); }
    [[nodiscard]] std::optional<FlashImage> whole() const override {
        const Bytes& bytes = accessor->getImage();
        FlashArea area = place;
        area.start = 0;
        area.size = static_cast<std::uint32_t>(bytes.size());
        return FlashImage(area, bytes);
    }
    [[nodiscard]] bool isNew() const override { return !before; }
    [[nodiscard]] ROM::Accessor& flash() override { return *accessor; }

    void checkWritable() const override {
        if (before && before->size() < accessor->getImage().size())
            throw Failure(Failure::Usage,
                          Format("cannot write to %: it has % bytes, the area is not inside") % name() %
                              static_cast<unsigned long long>(before->size()));
    }
    [[nodiscard]] bool isAt(const std::string& path) const override {
        std::error_code ignored;
        return fs::equivalent(pathOf(path), pathOf(file()), ignored);
    }

    void save() override {
        if (isUsedUp) { // the change before took it; what came between is noticed
            pending.reset();
            pending = std::make_unique<OutputFile>(file());
            isUsedUp = false;
        }
        checkUnchanged(); // with the right in hand: nobody else who asks for it can write from here on
        const Bytes& image = accessor->getImage();
        pending->write(std::string(image.begin(), image.end()));
        pending->commit();
        isUsedUp = true;
        // Read from now on what is on the disk.
        accessor = std::make_unique<ROM::FileAccessor>(file());
        before = accessor->getImage();
    }

private:
    /// What a program that does not ask for the right to write has written since the file was read would be lost.
    void checkUnchanged() const {
        const bool isUnchanged =
            before ? isThere(file()) && ROM::FileAccessor(file()).getImage() == *before : !isThere(file());
        if (!isUnchanged)
            throw Failure(Failure::Busy,
                          name() + " was changed by another program meanwhile; nothing was written");
    }

    std::unique_ptr<ROM::FileAccessor> accessor; ///< the image in memory
    std::optional<Bytes> before;
    std::unique_ptr<OutputFile> pending; ///< holds the right to write from before the reading to the end
    bool isUsedUp = false;               ///< it has become the file; the right is held nevertheless
};

/// A new file takes the old one's name, which the old one's own protection need not hinder; but it was meant to.
void checkProtection(const std::string& path) {
    constexpr fs::perms anybody = fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
    std::error_code failure;
    const fs::file_status status = fs::status(pathOf(path), failure);
    if (!failure && fs::exists(status) && (status.permissions() & anybody) == fs::perms::none)
        throw Failure(Failure::Permission, "cannot write to '" + path + "': it is write-protected");
}

/// The image up to an address, past its end perhaps: what the file lacks is erased flash.
std::unique_ptr<ROM::FileAccessor> continued(const std::string& path, const Bytes& bytes, std::uint64_t end) {
    checkFlashFileSize(path, end);
    auto image = std::make_unique<ROM::FileAccessor>(path, static_cast<std::uint32_t>(end));
    image->write(0, bytes);
    return image;
}

} // namespace

void checkFlashFileSize(const std::string& file, std::uint64_t size) {
    if (size > MOST_FILE_BYTES)
        throw Failure(Failure::Failed,
                      Format("'%' is too large for a flash image: % bytes, at most % are read") % file %
                          static_cast<unsigned long long>(size) %
                          static_cast<unsigned long long>(MOST_FILE_BYTES));
}

std::string readFlashFile(const std::string& file, bool mayBePipe) {
    using Utils::Platform::FileKind;
    if (file == "-" && mayBePipe)
        return readInputBytes(MOST_FILE_BYTES);
    const FileKind kind = Utils::Platform::fileKind(file);
    const bool isNoFile =
        kind == FileKind::Directory || kind == FileKind::Device || (kind == FileKind::Pipe && !mayBePipe);
    if (isNoFile)
        throw Failure(Failure::Failed, "cannot read '" + file + "': it is there and no file");
    std::error_code failure;
    // Before anything is read of it; what has no size is refused while it is read.
    const std::uint64_t size = kind == FileKind::Regular ? fs::file_size(pathOf(file), failure) : 0;
    if (!failure)
        checkFlashFileSize(file, size);
    return readFileBytes(file, MOST_FILE_BYTES);
}

Flash Flash::image(const std::string& path, const FlashOptions& options, Access access) {
    beginUserLog();
    const Utils::LogAreaScope scope(Utils::LogArea_ROM);
    std::unique_ptr<OutputFile> right;
    // The right first, then the bytes: whoever else writes the file comes before or after, never between.
    if (access == Access::Write && isThere(path)) {
        checkProtection(path);
        right = std::make_unique<OutputFile>(path);
    }
    const std::string bytes = readFlashFile(path, false);
    Bytes onDisk(bytes.begin(), bytes.end());
    if (onDisk.empty())
        throw Failure(Failure::Verification, "'" + path + "' is empty: there is no flash in it");
    const std::uint64_t start = options.start.value_or(0);
    if (start >= onDisk.size())
        throw Failure(Failure::Usage, Format("'%' has % bytes: the area is not inside") % path %
                                          static_cast<unsigned long long>(onDisk.size()));
    const FlashArea area =
        flashArea(options, start, options.size == 0 ? onDisk.size() - start : options.size);
    auto image = continued(path, onDisk, std::max<std::uint64_t>(area.end(), onDisk.size()));
    auto target = std::make_unique<ImageTarget>(std::move(image), std::move(onDisk), std::move(right), area,
                                                options, access);
    if (access == Access::Write)
        target->checkWritable();
    return Flash(std::move(target));
}

Flash Flash::create(const std::string& path, const FlashOptions& options, Access access) {
    beginUserLog();
    const Utils::LogAreaScope scope(Utils::LogArea_ROM);
    if (isThere(path))
        return image(path, options, access);
    const FlashArea area =
        flashArea(options, options.start.value_or(0), options.size == 0 ? NEW_FILE_BYTES : options.size);
    checkFlashFileSize(path, area.end());
    auto right = access == Access::Read
                     ? nullptr
                     : std::make_unique<OutputFile>(path, OutputFile::Rules{.ifThere = IfThere::Keep});
    auto image = std::make_unique<ROM::FileAccessor>(path, static_cast<std::uint32_t>(area.end()));
    return Flash(std::make_unique<ImageTarget>(std::move(image), std::nullopt, std::move(right), area,
                                               options, access));
}

} // namespace Zentara::Host
