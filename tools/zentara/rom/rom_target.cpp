#include "tools/zentara/rom/rom_target.h"

#include <algorithm>
#include <limits>
#include <utility>

#include <zentara/rom/chunked_memory_management_header.h>
#include <zentara/rom/file_accessor.h>
#include <zentara/utils/format.h>

#include "plugins/simulated/controllers/factory_flash.h"
#include "tools/zentara/interrupt.h"
#include "tools/zentara/rom/camera_flash.h"

namespace Zentara::Tool {
namespace {

using Utils::Format;

constexpr std::size_t PIECE = 0x400; ///< bytes between two looks at progress and Ctrl-C
constexpr std::uint64_t ADDRESSES = std::uint64_t{1} << 32;

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
    FileTarget(std::unique_ptr<ROM::FileAccessor> image, const FlashArea& area, const TargetOptions& options,
               Console& output)
        : RomTarget(output, area), file(std::move(image)) {
        detect(options);
    }

    [[nodiscard]] std::string name() const override { return "'" + file->getFileName() + "'"; }
    [[nodiscard]] std::string backupStem() const override { return file->getFileName(); }

protected:
    [[nodiscard]] ROM::Accessor& flash() override { return *file; }
    void save() override { file->save(); }

private:
    std::unique_ptr<ROM::FileAccessor> file;
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

std::unique_ptr<RomTarget> openCamera(TargetOptions options, Console& console) {
    if (!options.image.empty())
        options.camera = options.image.substr(std::string("camera:").size());
    if (!options.camera.empty() && !Simulated::chipKindFromName(options.camera))
        throw ToolFailure(ExitCode_USAGE,
                          "there is no camera '" + options.camera + "'; known: OV0570 VC0258 VC0345");
    ChipOptions wanted = options;
    wanted.json = false; // a trace goes to the error stream, beside whatever is printed
    const FlashArea area = options.size == 0 && !options.hasStart
                               ? areaOf(options, Simulated::romStart, Simulated::romSize)
                               : areaOf(options, options.start, options.size);
    auto session = std::make_unique<ChipSession>("rom", wanted, console);
    return std::make_unique<CameraTarget>(std::move(session), area, options, console);
}

} // namespace

bool isCamera(const TargetOptions& options) {
    return options.image.empty() || options.image.rfind("camera:", 0) == 0;
}

void addTargetOptions(CLI::App& command, TargetOptions& options) {
    command.add_option("IMAGE", options.image, "An image file, or camera:CHIP; the camera unless named");
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
    std::unique_ptr<ROM::FileAccessor> file;
    attempt("open the image", [&] { file = std::make_unique<ROM::FileAccessor>(options.image); });
    const std::uint64_t size = file->getImage().size();
    if (size == 0)
        throw ToolFailure(ExitCode_VERIFICATION, "'" + options.image + "' is empty: there is no flash in it");
    if (options.start >= size || options.size > size - options.start)
        throw ToolFailure(ExitCode_USAGE, Format("'%' has % bytes: the area is not inside") % options.image %
                                              static_cast<unsigned long long>(size));
    const FlashArea area =
        areaOf(options, options.start, options.size == 0 ? size - options.start : options.size);
    return std::make_unique<FileTarget>(std::move(file), area, options, console);
}

std::unique_ptr<RomTarget> RomTarget::create(const TargetOptions& options, Console& console) {
    const FlashArea area = areaOf(options, options.start, options.size);
    auto file = std::make_unique<ROM::FileAccessor>(options.image, static_cast<std::uint32_t>(area.end()));
    return std::make_unique<FileTarget>(std::move(file), area, options, console);
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

FlashImage RomTarget::load() {
    Bytes bytes;
    const InterruptWatch watch;
    while (bytes.size() < place.size) {
        if (watch.interrupted())
            throw ToolFailure(ExitCode_INTERRUPTED, "interrupted; nothing was changed");
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
