#include "tools/zentara/rom/rom_target.h"

#include <algorithm>
#include <filesystem>
#include <limits>
#include <utility>

#include <CLI/CLI.hpp>

#include <zentara/rom/chunked_memory_management_header.h>
#include <zentara/rom/file_accessor.h>
#include <zentara/utils/format.h>

#include "plugins/simulated/controllers/factory_flash.h"
#include "tools/zentara/interrupt.h"
#include "tools/zentara/paths.h"
#include "tools/zentara/rom/camera_flash.h"

namespace Zentara::Tool {
namespace {

using Utils::Format;

constexpr std::size_t PIECE = 0x400; ///< bytes between two looks at progress and Ctrl-C
constexpr std::uint64_t ADDRESSES = std::uint64_t{1} << 32;
constexpr std::uint64_t MOST_FILE_BYTES = 64U << 20; ///< far more than a camera's flash has

namespace fs = std::filesystem;

void checkFileSize(const std::string& file, std::uint64_t size) {
    if (size > MOST_FILE_BYTES)
        throw ToolFailure(ExitCode_FAILED,
                          Format("'%' is too large for a flash image: % bytes, at most % are read") % file %
                              static_cast<unsigned long long>(size) %
                              static_cast<unsigned long long>(MOST_FILE_BYTES));
}

FlashArea areaOf(const TargetOptions& options, std::uint64_t start, std::uint64_t size) {
    if (size == 0 || size >= ADDRESSES || start >= ADDRESSES || start + size > ADDRESSES)
        throw ToolFailure(ExitCode_USAGE, Format("there is no flash area of % bytes at %") %
                                              static_cast<unsigned long long>(size) %
                                              static_cast<unsigned long long>(start));
    return {static_cast<std::uint32_t>(start), static_cast<std::uint32_t>(size), options.chunkSize,
            options.header != "end"};
}

class FileTarget final : public RomTarget {
public:
    /// \param onDisk  what the file holds; nothing when there is no file yet.
    FileTarget(std::unique_ptr<ROM::FileAccessor> image, std::optional<Bytes> onDisk, const FlashArea& area,
               const TargetOptions& options, Console& output)
        : RomTarget(output, area), file(std::move(image)), before(std::move(onDisk)) {
        detect(options);
    }

    [[nodiscard]] std::string name() const override { return "'" + file->getFileName() + "'"; }
    [[nodiscard]] std::string backupStem() const override { return file->getFileName(); }

    void checkWritable() const override {
        if (before && before->size() < file->getImage().size())
            throw ToolFailure(ExitCode_USAGE,
                              Format("cannot write to %: it has % bytes, the area is not inside") % name() %
                                  static_cast<unsigned long long>(before->size()));
        constexpr fs::perms anybody =
            fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
        std::error_code failure;
        const fs::file_status status = fs::status(pathOf(file->getFileName()), failure);
        if (!failure && fs::exists(status) && (status.permissions() & anybody) == fs::perms::none)
            throw ToolFailure(ExitCode_PERMISSION, "cannot write to " + name() + ": it is write-protected");
    }
    [[nodiscard]] bool isAt(const std::string& path) const override {
        std::error_code ignored;
        return fs::equivalent(pathOf(path), pathOf(file->getFileName()), ignored);
    }

protected:
    [[nodiscard]] ROM::Accessor& flash() override { return *file; }

    void save() override {
        checkUnchanged();
        file->save();
        before.reset();
        file =
            std::make_unique<ROM::FileAccessor>(file->getFileName()); // read from now on what is on the disk
    }

private:
    /// What another program wrote since the file was read would be lost.
    void checkUnchanged() const {
        const std::string& path = file->getFileName();
        const bool isUnchanged =
            before ? isThere(path) && ROM::FileAccessor(path).getImage() == *before : !isThere(path);
        if (!isUnchanged)
            throw ToolFailure(ExitCode_BUSY,
                              name() + " was changed by another program meanwhile; nothing was written");
    }

    std::unique_ptr<ROM::FileAccessor> file;
    std::optional<Bytes> before;
};

class CameraTarget final : public RomTarget {
public:
    CameraTarget(std::unique_ptr<ChipSession> camera, const FlashArea& area, const TargetOptions& options,
                 Console& output)
        : RomTarget(output, area), session(std::move(camera)), accessor(session->chip()) {
        detect(options);
    }

    [[nodiscard]] std::string name() const override {
        return std::string("the camera (") + chipName(session->chip().kind()) + ")";
    }
    [[nodiscard]] std::string backupStem() const override {
        return std::string("camera-") + chipName(session->chip().kind());
    }
    [[nodiscard]] bool isWrittenInPlace() const override { return true; }
    void checkWritable() const override {
        if (!session->chip().canWriteFlash())
            throw ToolFailure(
                ExitCode_PERMISSION,
                Format(
                    "cannot write to %: its controller reads its flash by DMA and has no way to write it") %
                    name());
    }

protected:
    [[nodiscard]] ROM::Accessor& flash() override { return accessor; }

private:
    std::unique_ptr<ChipSession> session;
    CameraFlash accessor;
};

/// The image up to an address past its end: what the file lacks is erased flash.
std::unique_ptr<ROM::FileAccessor> continued(const std::string& file, const Bytes& bytes, std::uint64_t end) {
    checkFileSize(file, end);
    auto image = std::make_unique<ROM::FileAccessor>(file, static_cast<std::uint32_t>(end));
    image->write(0, bytes);
    return image;
}

std::unique_ptr<RomTarget> openCamera(TargetOptions options, Console& console) {
    if (!options.image.empty())
        options.camera = options.image.substr(std::string("camera:").size());
    ChipOptions wanted = options;
    wanted.json = false; // a trace goes to the error stream, beside whatever is printed
    const FlashArea area = options.size == 0 && !options.hasStart
                               ? areaOf(options, Simulated::romStart, Simulated::romSize)
                               : areaOf(options, options.start, options.size);
    auto session = std::make_unique<ChipSession>(wanted, console);
    return std::make_unique<CameraTarget>(std::move(session), area, options, console);
}

} // namespace

void checkFile(const std::string& file, bool mayBePipe) {
    std::error_code failure;
    const fs::file_status status = fs::status(pathOf(file), failure);
    if (!fs::exists(status))
        return; // opening it tells why
    if (!fs::is_regular_file(status) && !(mayBePipe && fs::is_fifo(status)))
        throw ToolFailure(ExitCode_FAILED, "cannot read '" + file + "': it is there and no file");
    const std::uint64_t size = fs::is_regular_file(status) ? fs::file_size(pathOf(file), failure) : 0;
    if (!failure)
        checkFileSize(file, size);
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

std::unique_ptr<RomTarget> RomTarget::open(const TargetOptions& options, Console& console) {
    if (isCamera(options))
        return openCamera(options, console);
    checkFile(options.image, false);
    std::unique_ptr<ROM::FileAccessor> file;
    attempt("open the image", [&] { file = std::make_unique<ROM::FileAccessor>(options.image); });
    Bytes onDisk = file->getImage();
    if (onDisk.empty())
        throw ToolFailure(ExitCode_VERIFICATION, "'" + options.image + "' is empty: there is no flash in it");
    if (options.start >= onDisk.size())
        throw ToolFailure(ExitCode_USAGE, Format("'%' has % bytes: the area is not inside") % options.image %
                                              static_cast<unsigned long long>(onDisk.size()));
    const FlashArea area =
        areaOf(options, options.start, options.size == 0 ? onDisk.size() - options.start : options.size);
    if (area.end() > onDisk.size())
        file = continued(options.image, onDisk, area.end());
    return std::make_unique<FileTarget>(std::move(file), std::move(onDisk), area, options, console);
}

std::unique_ptr<RomTarget> RomTarget::openToWrite(const TargetOptions& options, bool dryRun,
                                                  Console& console) {
    auto target = open(options, console);
    if (!dryRun)
        target->checkWritable();
    return target;
}

std::unique_ptr<RomTarget> RomTarget::create(const TargetOptions& options, Console& console) {
    const FlashArea area = areaOf(options, options.start, options.size);
    checkFileSize(options.image, area.end());
    auto file = std::make_unique<ROM::FileAccessor>(options.image, static_cast<std::uint32_t>(area.end()));
    return std::make_unique<FileTarget>(std::move(file), std::nullopt, area, options, console);
}

void RomTarget::detect(const TargetOptions& options) {
    using Header = ROM::ChunkedMemoryManagementHeader;
    if (place.size < Header::SIZE)
        return;
    const auto standsThere = [&](bool atStart) {
        FlashArea tried = place;
        tried.headerAtStart = atStart;
        const std::unique_ptr<Header> header(
            Header::deserialize(flash().read(tried.headerAddress(), Header::SIZE)));
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

void RomTarget::showProgress(const char* verb, std::size_t done, std::size_t all) const {
    if (console.showProgress && all > PIECE)
        console.err << '\r' << verb << ' ' << done << " of " << all << " bytes" << (done == all ? "\n" : "")
                    << std::flush;
}

FlashImage RomTarget::load(const char* whenInterrupted) {
    Bytes bytes;
    const InterruptWatch watch;
    while (bytes.size() < place.size) {
        if (watch.interrupted())
            throw ToolFailure(ExitCode_INTERRUPTED, whenInterrupted);
        const auto done = static_cast<std::uint32_t>(bytes.size());
        const std::uint32_t length = std::min<std::uint32_t>(place.size - done, PIECE);
        attempt(Format("read % bytes at % of %") % length % hexText(place.start + done) % name(), [&] {
            const Bytes piece = flash().read(place.start + done, length);
            if (piece.size() != length)
                throw Plugin::IOPluginException(Format("% bytes came back") %
                                                static_cast<unsigned long long>(piece.size()));
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
        if (flash().read(address, length) != bytes)
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
