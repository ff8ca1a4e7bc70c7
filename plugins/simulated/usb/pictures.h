#pragma once

#include <cstdint>
#include <vector>

#include "plugins/simulated/port.h"
#include "plugins/simulated/scene.h"
#include "plugins/simulated/usb/camera_shape.h"

namespace Zentara::Simulated {

/// What the camera sees, as its streams send it: picture N of a coding is always the same, and like no other. Safe.
class Pictures final {
public:
    /// \param eyes of the camera
    /// \param port whose registers change the depth picture; null for none
    /// \param huffmanTables whether a JPEG picture holds them; many cameras leave them out, for they are always the same
    Pictures(std::uint32_t seed, const Eyes& eyes, const Port* port, bool huffmanTables)
        : depthScene(seed, eyes.depth), colorScene(seed, eyes.color), registers(port),
          withTables(huffmanTables) {}

    /// \param brightness of a colour picture
    [[nodiscard]] Bytes draw(Coding coding, const PictureSize& size, std::uint32_t number,
                             int brightness) const;

private:
    [[nodiscard]] Bytes drawDepth(const PictureSize& size, std::uint32_t number) const;
    [[nodiscard]] Bytes drawColor(std::uint32_t number, int brightness) const;
    [[nodiscard]] Bytes compress(const Bytes& color) const;

    Scene depthScene;
    Scene colorScene;
    const Port* registers;
    bool withTables;
};

} // namespace Zentara::Simulated
