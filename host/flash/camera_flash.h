#pragma once

#include <zentara/io/camera_chip.h>
#include <zentara/rom/accessor.h>

namespace Zentara::Host {

/// A camera's flash through its controller. The chip must outlive it. Throws what the chip throws.
class CameraFlash final : public ROM::Accessor {
public:
    explicit CameraFlash(IO::CameraChip& controller) : chip(controller) {}

    std::vector<std::uint8_t> read(std::uint32_t address, std::uint32_t length) override;
    void write(std::uint32_t address, const std::vector<std::uint8_t>& bytes) override;

private:
    IO::CameraChip& chip;
};

} // namespace Zentara::Host
