#include <algorithm>
#include <filesystem>
#include <memory>
#include <system_error>
#include <utility>

#include <zentara/utils/format.h>
#include <zentara/utils/log_area.h>

#include "host/files/paths.h"
#include "host/flash/backup.h"
#include "host/flash/flash_target.h"
#include "utils/platform/new_file.h"

namespace Zentara::Host {
namespace {

void checkApart(const Flash::Target& source, const std::string& path) {
    if (source.isAt(path))
        throw Failure(Failure::Usage, "'" + path + "' is the image itself: name another file");
}

/// A file that lacks its name only; null where one with these bytes is there already.
std::unique_ptr<OutputFile> written(const Flash::Target& source, const std::string& path,
                                    const Bytes& bytes) {
    checkApart(source, path);
    const std::string wanted(bytes.begin(), bytes.end());
    if (Utils::Platform::fileKind(path) == Utils::Platform::FileKind::Regular &&
        readFlashFile(path) == wanted)
        return nullptr;
    const OutputFile::Rules rules{.ifThere = IfThere::Keep, .like = source.file()};
    auto file = std::make_unique<OutputFile>(path, rules);
    file->write(wanted);
    return file;
}

/// Erased flash holds nothing to keep.
bool isErased(const FlashImage& image) { return image.bytes() == FlashImage(image.area()).bytes(); }

} // namespace

Flash::Flash(std::unique_ptr<Target> opened) : target(std::move(opened)) {}
Flash::Flash(Flash&&) noexcept = default;
Flash& Flash::operator=(Flash&&) noexcept = default;
Flash::~Flash() = default;

std::string Flash::name() const { return target->name(); }
std::string Flash::file() const { return target->file(); }
const std::optional<CameraInfo>& Flash::owner() const { return target->owner; }
const FlashArea& Flash::area() const { return target->place; }

FlashImage Flash::load(const Progress& progress) {
    const Utils::LogAreaScope scope(Utils::LogArea_ROM);
    return target->load(progress, "interrupted; nothing was changed");
}

FlashContent Flash::content(const FlashImage& image) const {
    if (!holdsStorage(image))
        throw Failure(Failure::Verification, name() + " holds no storage that can be read", {},
                      "a survey of it tells why");
    return contentOf(image);
}

std::string Flash::apply(const FlashChange& change, const ApplyOptions& options, const Progress& progress) {
    const Utils::LogAreaScope scope(Utils::LogArea_ROM);
    if (change.refusal)
        throw Failure(*change.refusal);
    if (change.writes.empty())
        return {};
    if (target->access == Access::Read)
        throw Failure(Failure::Usage, name() + " was opened to be read only");
    target->checkWritable();
    const std::uint64_t written = change.bytes();
    const std::uint64_t all = written + change.after.bytes().size();
    if (progress && !progress(0, all))
        throw Failure(Failure::Interrupted, "interrupted; nothing was changed");
    // A file may have been changed by another program since the plan. A camera's flash, which takes long to read, is not asked
    // for that once more.
    if (!target->isWrittenInPlace() && target->load({}, "").bytes() != change.before.bytes())
        throw Failure(Failure::Busy,
                      name() + " is not as it was when the change was planned; nothing was written");
    std::string kept;
    bool isNew = false;
    if (options.keeps && !isErased(change.before)) {
        kept = options.backup.empty() ? freeBackupName(target->backupStem()) : options.backup;
        isNew = !isThere(kept);
        backup(kept, change.before);
        if (options.kept)
            options.kept(kept);
    }
    bool isTouched = target->isWrittenInPlace(); // else the file is as it was until all is stored
    try {
        target->store(change.writes, progress, all);
        isTouched = true;
        target->place = change.after.area(); // a format or a rebuild may have moved the header
        const FlashImage found =
            target->load(progress, "interrupted before all of it was read once more", written);
        if (found.bytes() != change.after.bytes())
            throw Failure(Failure::Verification, name() + " holds other bytes than were written to it");
    } catch (const Failure& failure) {
        std::error_code ignored;
        if (!isTouched && isNew) // it holds what still stands in its place
            std::filesystem::remove(pathOf(kept), ignored);
        if (!isTouched || kept.empty())
            throw;
        throw Failure(failure.code(), failure.message(), failure.cause(), failure.remedy(),
                      {"the bytes of before are in '" + kept + "'"});
    }
    return kept;
}

void Flash::save(const std::string& path, const std::string& bytes, const OutputFile::Rules& rules) const {
    checkApart(*target, path);
    writeOutputFile(path, bytes, rules);
}

void Flash::keep(const std::string& path, const Bytes& bytes) const {
    if (const auto file = written(*target, path, bytes))
        file->commit();
}

void Flash::backup(const std::string& path, const FlashImage& image) const {
    std::unique_ptr<OutputFile> note; // of a backup that cannot be made it would tell of another one
    if (const auto& owner = target->owner; owner && !owner->serial.empty()) {
        const std::string text = backupNote(*owner, image.area());
        note = written(*target, backupNoteOf(path), Bytes(text.begin(), text.end()));
    }
    // The note is whole by now but without its name: it takes that only once there is a backup to tell of.
    keep(path, image.bytes());
    if (note)
        note->commit();
}

} // namespace Zentara::Host
