#include "tools/zentara/rom/rom_target.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <limits>
#include <utility>

#include <CLI/CLI.hpp>

#include <zentara/host/output_file.h>
#include <zentara/rom/chunked_memory_management_header.h>
#include <zentara/rom/file_accessor.h>
#include <zentara/utils/format.h>

#include "host/files/file_failure.h"
#include "host/files/paths.h"
#include "host/flash/camera_flash.h"
#include "tools/zentara/interrupt.h"
#include "utils/platform/new_file.h"

namespace Zentara::Tool {
namespace {

using Utils::Format;

constexpr std::size_t PIECE = 0x400; ///< bytes between two looks at progress and Ctrl-C
constexpr int MOST_READINGS = 4;     ///< after the first
constexpr std::uint64_t ADDRESSES = std::uint64_t{1} << 32;
constexpr std::uint64_t MOST_FILE_BYTES = 64U << 20; ///< far more than a camera's flash has

namespace fs = std::filesystem;

void checkFileSize(const std::string& file, std::uint64_t size) {
    if (size > MOST_FILE_BYTES)
        throw Failure(Failure::Failed,
                      Format("'%' is too large for a flash image: % bytes, at most % are read") % file %
                          static_cast<unsigned long long>(size) %
                          static_cast<unsigned long long>(MOST_FILE_BYTES));
}

FlashArea areaOf(const TargetOptions& options, std::uint64_t start, std::uint64_t size) {
    if (size == 0 || size >= ADDRESSES || start >= ADDRESSES || start + size > ADDRESSES)
        throw Failure(Failure::Usage, Format("there is no flash area of % bytes at %") %
                                          static_cast<unsigned long long>(size) %
                                          static_cast<unsigned long long>(start));
    return {static_cast<std::uint32_t>(start), static_cast<std::uint32_t>(size), options.chunkSize,
            options.header != "end"};
}

class FileTarget final : public RomTarget {
public:
    /// \param onDisk  what the file holds; nothing when there is no file yet. \param place  where to save it; null for a
    /// target that is only read.
    FileTarget(std::unique_ptr<ROM::FileAccessor> image, std::optional<Bytes> onDisk,
               std::unique_ptr<OutputFile> place, const FlashArea& area, const TargetOptions& options,
               Console& output)
        : RomTarget(output, area), file(std::move(image)), before(std::move(onDisk)),
          pending(std::move(place)) {
        detect(options);
    }

    [[nodiscard]] std::string name() const override { return "'" + file->getFileName() + "'"; }
    [[nodiscard]] std::string backupStem() const override { return file->getFileName(); }
    [[nodiscard]] std::string imageFile() const override { return file->getFileName(); }

    void checkWritable() const override {
        if (before && before->size() < file->getImage().size())
            throw Failure(Failure::Usage,
                          Format("cannot write to %: it has % bytes, the area is not inside") % name() %
                              static_cast<unsigned long long>(before->size()));
    }
    [[nodiscard]] bool isAt(const std::string& path) const override {
        std::error_code ignored;
        return fs::equivalent(pathOf(path), pathOf(file->getFileName()), ignored);
    }

protected:
    [[nodiscard]] ROM::Accessor& flash() override { return *file; }

    void save() override {
        if (!pending)
            throw Failure(Failure::Failed, name() + " was opened to be read only");
        checkUnchanged();
        const Bytes& image = file->getImage();
        pending->write(std::string(image.begin(), image.end()));
        pending->commit();
        before.reset();
        // Read from now on what is on the disk.
        file = std::make_unique<ROM::FileAccessor>(file->getFileName());
    }

private:
    /// What a program that does not ask for the right to write has written since the file was read would be lost.
    void checkUnchanged() const {
        const std::string& path = file->getFileName();
        const bool isUnchanged =
            before ? isThere(path) && ROM::FileAccessor(path).getImage() == *before : !isThere(path);
        if (!isUnchanged)
            throw Failure(Failure::Busy,
                          name() + " was changed by another program meanwhile; nothing was written");
    }

    std::unique_ptr<ROM::FileAccessor> file; ///< the image in memory
    std::optional<Bytes> before;
    std::unique_ptr<OutputFile> pending; ///< holds the right to write from before the reading to the end
};

void checkProtection(const std::string& path) {
    constexpr fs::perms anybody = fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
    std::error_code failure;
    const fs::file_status status = fs::status(pathOf(path), failure);
    if (!failure && fs::exists(status) && (status.permissions() & anybody) == fs::perms::none)
        throw Failure(Failure::Permission, "cannot write to '" + path + "': it is write-protected");
}

/// A name in a file's name.
std::string plainName(std::string text) {
    std::replace_if(
        text.begin(), text.end(),
        [](unsigned char letter) { return std::isalnum(letter) == 0 && letter != '-'; }, '_');
    return text;
}

class CameraTarget final : public RomTarget {
public:
    CameraTarget(std::unique_ptr<ChipSession> camera, const FlashArea& area, const TargetOptions& options,
                 Console& output)
        : RomTarget(output, area), session(std::move(camera)), accessor(session->chip()) {
        detect(options);
    }

    [[nodiscard]] std::string name() const override {
        const std::string serial = session->cameraEntry().serialNumber();
        return "the camera " + (serial.empty() ? "" : printable(serial) + " ") + "(" +
               session->chip().name() + ")";
    }
    [[nodiscard]] std::string backupStem() const override {
        const CameraIdentity who = *camera();
        std::string stem = "camera-" + plainName(who.name.empty() ? who.controller : who.name);
        if (!who.serial.empty())
            stem += "-" + plainName(who.serial);
        return stem + "-sdk" + sdkVersion;
    }
    [[nodiscard]] std::optional<CameraIdentity> camera() const override {
        const CameraEntry& entry = session->cameraEntry();
        return CameraIdentity{entry.serialNumber(), entry.product, entry.path, session->chip().name()};
    }
    [[nodiscard]] Json identity() const override { return session->identity(); }
    [[nodiscard]] bool isWrittenInPlace() const override { return true; }
    void checkWritable() const override {
        if (!session->chip().canWriteConfiguration())
            throw Failure(
                Failure::Permission,
                Format(
                    "cannot write to %: its controller reads its flash by DMA and has no way to write it") %
                    name());
    }

protected:
    [[nodiscard]] ROM::Accessor& flash() override { return accessor; }
    [[nodiscard]] bool mayMisread() const override { return true; }

private:
    std::unique_ptr<ChipSession> session;
    CameraFlash accessor;
};

/// The image up to an address, past its end perhaps: what the file lacks is erased flash.
std::unique_ptr<ROM::FileAccessor> continued(const std::string& file, const Bytes& bytes, std::uint64_t end) {
    checkFileSize(file, end);
    auto image = std::make_unique<ROM::FileAccessor>(file, static_cast<std::uint32_t>(end));
    image->write(0, bytes);
    return image;
}

/// Where the description puts the storage, as far as the user does not say.
FlashArea areaOnCamera(const TargetOptions& options, const ChipSession& session) {
    const std::optional<ROMElement> described = session.storage();
    if (options.size == 0 && !described)
        throw Failure(Failure::Usage, "no description says where the camera's storage lies", {},
                      "--start and --size say it");
    const std::uint64_t start = options.hasStart || !described ? options.start : described->address;
    const std::uint64_t end = described ? std::uint64_t{described->address} + described->size : 0;
    return areaOf(options, start, options.size != 0 ? options.size : end > start ? end - start : 0);
}

std::unique_ptr<RomTarget> openCamera(TargetOptions options, bool toWrite, Console& console) {
    const std::string named =
        options.image.empty() ? options.camera : options.image.substr(std::string("camera:").size());
    if (named.empty() && !options.image.empty())
        throw Failure(Failure::Usage, "the name of the camera is empty");
    if (!options.camera.empty() && named != options.camera)
        throw Failure(Failure::Usage,
                      Format("--camera % stands beside %: name one camera") % options.camera % options.image);
    options.camera = named;
    ChipOptions wanted = options;
    wanted.json = false; // a trace goes to the error stream, beside whatever is printed
    wanted.writes = toWrite;
    auto session = std::make_unique<ChipSession>(wanted, console);
    const FlashArea area = areaOnCamera(options, *session);
    return std::make_unique<CameraTarget>(std::move(session), area, options, console);
}

} // namespace

std::string readFileHere(const std::string& file, bool mayBePipe) {
    using Utils::Platform::FileKind;
    const FileKind kind = Utils::Platform::fileKind(file);
    const bool isNoFile =
        kind == FileKind::Directory || kind == FileKind::Device || (kind == FileKind::Pipe && !mayBePipe);
    if (isNoFile)
        throw Failure(Failure::Failed, "cannot read '" + file + "': it is there and no file");
    std::error_code failure;
    const std::uint64_t size = kind == FileKind::Regular ? fs::file_size(pathOf(file), failure) : 0;
    if (!failure)
        checkFileSize(file, size);
    return readFileBytes(file, MOST_FILE_BYTES);
}

bool isCamera(const TargetOptions& options) {
    return options.image.empty() || options.image.rfind("camera:", 0) == 0;
}

void addTargetOptions(CLI::App& command, TargetOptions& options) {
    command.add_option(
        "IMAGE", options.image,
        "An image file, or camera:NAME with a name as --camera takes it; the camera unless named");
    command.add_option("--start", options.start, "Where the storage begins on the flash")
        ->each([&options](const std::string&) { options.hasStart = true; });
    command.add_option("--size", options.size,
                       "Its bytes; the rest of the file, or the camera's own, unless set");
    command.add_option("--chunk", options.chunkSize, "Chunk size to format with")
        ->capture_default_str()
        ->check(CLI::Range(1U, std::numeric_limits<std::uint32_t>::max()));
    command.add_option("--header", options.header, "Where the management header stands")
        ->capture_default_str()
        ->check(CLI::IsMember({"start", "end", "auto"}));
    addChipOptions(command, options);
}

namespace {

std::unique_ptr<RomTarget> openImage(const TargetOptions& options, bool toWrite, Console& console) {
    if (!options.camera.empty())
        throw Failure(Failure::Usage, Format("--camera % stands beside the image '%': name one of them") %
                                          options.camera % options.image);
    std::unique_ptr<OutputFile> place;
    if (toWrite && isThere(options.image)) {
        checkProtection(options.image);
        place = std::make_unique<OutputFile>(options.image);
    }
    const std::string bytes = readFileHere(options.image, false);
    Bytes onDisk(bytes.begin(), bytes.end());
    if (onDisk.empty())
        throw Failure(Failure::Verification, "'" + options.image + "' is empty: there is no flash in it");
    if (options.start >= onDisk.size())
        throw Failure(Failure::Usage, Format("'%' has % bytes: the area is not inside") % options.image %
                                          static_cast<unsigned long long>(onDisk.size()));
    const FlashArea area =
        areaOf(options, options.start, options.size == 0 ? onDisk.size() - options.start : options.size);
    auto file = continued(options.image, onDisk, std::max<std::uint64_t>(area.end(), onDisk.size()));
    return std::make_unique<FileTarget>(std::move(file), std::move(onDisk), std::move(place), area, options,
                                        console);
}

} // namespace

std::unique_ptr<RomTarget> RomTarget::open(const TargetOptions& options, Console& console) {
    return isCamera(options) ? openCamera(options, false, console) : openImage(options, false, console);
}

std::unique_ptr<RomTarget> RomTarget::openToWrite(const TargetOptions& options, bool dryRun,
                                                  Console& console) {
    auto target =
        isCamera(options) ? openCamera(options, true, console) : openImage(options, !dryRun, console);
    if (!dryRun)
        target->checkWritable();
    return target;
}

std::unique_ptr<RomTarget> RomTarget::create(const TargetOptions& options, bool dryRun, Console& console) {
    const FlashArea area = areaOf(options, options.start, options.size);
    checkFileSize(options.image, area.end());
    auto place =
        dryRun ? nullptr
               : std::make_unique<OutputFile>(options.image, OutputFile::Rules{.ifThere = IfThere::Keep});
    auto file = std::make_unique<ROM::FileAccessor>(options.image, static_cast<std::uint32_t>(area.end()));
    return std::make_unique<FileTarget>(std::move(file), std::nullopt, std::move(place), area, options,
                                        console);
}

void RomTarget::detect(const TargetOptions& options) {
    using Header = ROM::ChunkedMemoryManagementHeader;
    if (place.size < Header::SIZE)
        return;
    const auto standsThere = [&](bool atStart) {
        FlashArea tried = place;
        tried.headerAtStart = atStart;
        const std::unique_ptr<Header> header(
            Header::deserialize(readSurely(tried.headerAddress(), Header::SIZE)));
        if (header && header->getChunkSize() != 0)
            place.chunkSize = header->getChunkSize();
        return header != nullptr;
    };
    attempt("read " + std::string("the management header"), [&] {
        if (options.header == "auto")
            place.headerAtStart = standsThere(true) || !standsThere(false);
        else
            static_cast<void>(standsThere(place.headerAtStart));
    });
}

Json RomTarget::beginJson() const {
    Json json = Tool::beginJson(console);
    json["target"] = name();
    json["camera"] = identity();
    return json;
}

void RomTarget::showProgress(const char* verb, std::size_t done, std::size_t all) const {
    if (console.showProgress && all > PIECE)
        console.err << '\r' << verb << ' ' << done << " of " << all << " bytes" << (done == all ? "\n" : "")
                    << std::flush;
}

Bytes RomTarget::readOnce(std::uint32_t address, std::uint32_t length) {
    Bytes bytes = flash().read(address, length);
    if (bytes.size() != length)
        throw Plugin::IOPluginException(Format("% bytes came back") %
                                        static_cast<unsigned long long>(bytes.size()));
    return bytes;
}

/// A wire may garble a reading: what comes twice in a row is believed.
Bytes RomTarget::readSurely(std::uint32_t address, std::uint32_t length) {
    Bytes bytes = readOnce(address, length);
    for (int tries = 1; mayMisread(); ++tries) {
        Bytes again = readOnce(address, length);
        if (again == bytes)
            break;
        if (tries == MOST_READINGS)
            throw Plugin::IOPluginException(Format("other bytes came each of % times") % (tries + 1));
        bytes = std::move(again);
    }
    return bytes;
}

FlashImage RomTarget::load(const char* whenInterrupted) {
    Bytes bytes;
    const InterruptWatch watch;
    while (bytes.size() < place.size) {
        if (watch.interrupted())
            throw Failure(Failure::Interrupted, whenInterrupted);
        const auto done = static_cast<std::uint32_t>(bytes.size());
        const std::uint32_t length = std::min<std::uint32_t>(place.size - done, PIECE);
        attempt(Format("read % bytes at % of %") % length % hexText(place.start + done) % name(), [&] {
            const Bytes piece = readSurely(place.start + done, length);
            bytes.insert(bytes.end(), piece.begin(), piece.end());
        });
        showProgress("read", bytes.size(), place.size);
    }
    return {place, std::move(bytes)};
}

void RomTarget::storePiece(std::uint32_t address, const Bytes& bytes) {
    const auto length = static_cast<std::uint32_t>(bytes.size());
    attempt(Format("write % bytes at % of %") % length % hexText(address) % name(), [&] {
        flash().write(address, bytes);
        if (readOnce(address, length) != bytes && readSurely(address, length) != bytes)
            throw Plugin::IOPluginException("other bytes were read back");
    });
}

void RomTarget::store(const std::vector<FlashWrite>& writes) {
    const InterruptWatch finishesFirst; // half of a change is worse than a late end
    std::size_t all = 0;
    std::size_t done = 0;
    for (const FlashWrite& write : writes)
        all += write.bytes.size();
    for (const FlashWrite& write : writes)
        for (std::size_t at = 0; at < write.bytes.size(); at += PIECE) {
            const std::size_t length = std::min(PIECE, write.bytes.size() - at);
            const auto from = write.bytes.begin() + static_cast<std::ptrdiff_t>(at);
            storePiece(static_cast<std::uint32_t>(write.address + at),
                       Bytes(from, from + static_cast<std::ptrdiff_t>(length)));
            showProgress("written", done += length, all);
        }
    attempt("save " + name(), [&] { save(); });
}

} // namespace Zentara::Tool
