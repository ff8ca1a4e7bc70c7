#include <algorithm>
#include <cctype>
#include <functional>
#include <utility>

#include <zentara/host/camera.h>
#include <zentara/io/camera_chip.h>
#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/rom_element.h>
#include <zentara/utils/format.h>
#include <zentara/utils/log_area.h>

#include "host/cameras/real_camera.h"
#include "host/flash/backup.h"
#include "host/flash/flash_target.h"
#include "utils/visible_text.h"

namespace Zentara::Host {
namespace {

using Utils::Format;

/// The controllers know 16-bit addresses; a greater one would come out somewhere else.
void checkRange(std::uint32_t address, std::size_t length) {
    constexpr std::size_t flashBytes = IO::CameraChip::memoryBytes;
    if (address > flashBytes || length > flashBytes - address)
        throw Plugin::IOPluginException(Format("% bytes at 0x%{:x4} reach past the flash's 64 KiB") %
                                        static_cast<unsigned long long>(length) % address);
}

/// Throws when the camera is closed, whose device must not be used then.
using Guard = std::function<void()>;

/// A camera's flash through its controller. Throws what the chip and the guard throw.
class CameraFlash final : public ROM::Accessor {
public:
    CameraFlash(IO::CameraChip& controller, const Guard& guard) : chip(controller), checkOpen(guard) {}

    std::vector<std::uint8_t> read(std::uint32_t address, std::uint32_t length) override {
        check(address, length);
        return length == 0 ? std::vector<std::uint8_t>() : chip.readConfiguration(address, length);
    }
    void write(std::uint32_t address, const std::vector<std::uint8_t>& bytes) override {
        check(address, bytes.size());
        if (!bytes.empty())
            chip.writeConfiguration(address, bytes);
    }

private:
    void check(std::uint32_t address, std::size_t length) const {
        checkRange(address, length);
        checkOpen();
    }

    IO::CameraChip& chip;
    const Guard& checkOpen;
};

/// A name in a file's name.
std::string plainName(std::string text) {
    std::replace_if(
        text.begin(), text.end(),
        [](unsigned char letter) { return std::isalnum(letter) == 0 && letter != '-'; }, '_');
    return text;
}

class CameraTarget final : public Flash::Target {
public:
    CameraTarget(std::shared_ptr<IO::CameraChip> controller, Guard usable, const CameraInfo& who,
                 const FlashArea& area, const FlashOptions& wanted, Flash::Access purpose)
        : Target(area, wanted, purpose), guard(std::move(usable)), chip(std::move(controller)),
          accessor(*chip, guard) {
        owner = who;
        owner->controller = chip->name();
        detect();
    }

    [[nodiscard]] std::string name() const override {
        const std::string& serial = owner->serial;
        return "the camera " + (serial.empty() ? "" : Utils::visibleText(serial) + " ") + "(" +
               owner->controller + ")";
    }
    [[nodiscard]] std::string backupStem() const override {
        std::string stem = "camera-" + plainName(owner->product.empty() ? owner->controller : owner->product);
        if (!owner->serial.empty())
            stem += "-" + plainName(owner->serial);
        return stem + "-sdk" + sdkVersion();
    }
    [[nodiscard]] bool isWrittenInPlace() const override { return true; }
    void checkWritable() const override {
        if (!chip->canWriteConfiguration())
            throw Failure(
                Failure::Permission,
                Format(
                    "cannot write to %: its controller reads its flash by DMA and has no way to write it") %
                    name());
    }
    [[nodiscard]] ROM::Accessor& flash() override { return accessor; }
    [[nodiscard]] bool mayMisread() const override { return true; }

private:
    const Guard guard; ///< it may keep the camera, and goes last
    const std::shared_ptr<IO::CameraChip> chip;
    CameraFlash accessor;
};

/// Where the description puts the storage, as far as the options do not say.
FlashArea areaOnCamera(const FlashOptions& options, const std::optional<ROMElement>& described) {
    if (options.size == 0 && !described)
        throw Failure(Failure::Usage, "no description says where the camera's storage lies", {},
                      "say its start and its size");
    const std::uint64_t start = options.start.value_or(described ? described->address : 0);
    const std::uint64_t end = described ? std::uint64_t{described->address} + described->size : 0;
    return flashArea(options, start, options.size != 0 ? options.size : end > start ? end - start : 0);
}

/// Nothing for a bare device, and where the description does not say.
std::optional<ROMElement> storageOf(const Camera& camera) {
    return dynamic_cast<RealCamera*>(camera.held().get()) == nullptr ? std::nullopt : camera.storage();
}

} // namespace

Flash Flash::camera(const Camera& camera, const FlashOptions& options, Access access) {
    const Utils::LogAreaScope scope(Utils::LogArea_ROM);
    std::shared_ptr<IO::CameraChip> chip = camera.held()->chip({});
    auto usable = [held = camera.held()] { held->checkOpen("use the flash"); };
    auto target = std::make_unique<CameraTarget>(std::move(chip), std::move(usable), camera.info(),
                                                 areaOnCamera(options, storageOf(camera)), options, access);
    if (access == Access::Write)
        target->checkWritable();
    return Flash(std::move(target));
}

Flash Camera::flash() const { return Flash::camera(*this); }

} // namespace Zentara::Host
