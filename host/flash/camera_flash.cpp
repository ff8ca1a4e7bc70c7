#include "host/flash/camera_flash.h"

#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/format.h>

namespace Zentara::Host {
namespace {

/// The controllers know 16-bit addresses; a greater one would come out somewhere else.
void checkRange(std::uint32_t address, std::size_t length) {
    constexpr std::size_t flashBytes = IO::CameraChip::memoryBytes;
    if (address > flashBytes || length > flashBytes - address)
        throw Plugin::IOPluginException(Utils::Format("% bytes at 0x%{:x4} reach past the flash's 64 KiB") %
                                        static_cast<unsigned long long>(length) % address);
}

} // namespace

std::vector<std::uint8_t> CameraFlash::read(std::uint32_t address, std::uint32_t length) {
    checkRange(address, length);
    return length == 0 ? std::vector<std::uint8_t>() : chip.readConfiguration(address, length);
}

void CameraFlash::write(std::uint32_t address, const std::vector<std::uint8_t>& bytes) {
    checkRange(address, bytes.size());
    if (!bytes.empty())
        chip.writeConfiguration(address, bytes);
}

} // namespace Zentara::Host
