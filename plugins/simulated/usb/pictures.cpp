#include "plugins/simulated/usb/pictures.h"

#include <algorithm>
#include <cstring>

#define STB_IMAGE_WRITE_IMPLEMENTATION
#define STB_IMAGE_WRITE_STATIC
#define STBI_WRITE_NO_STDIO
#include <stb/stb_image_write.h>

#include "plugins/descriptions/wire.h"
#include "plugins/simulated/sensor_output.h"

namespace Zentara::Simulated {

using namespace Cameras;
namespace {

constexpr int jpegQuality = 85;
constexpr std::uint8_t huffmanMarker = 0xC4;
constexpr std::uint8_t scanMarker = 0xDA;

std::uint8_t toByte(float value) { return static_cast<std::uint8_t>(std::clamp(value + 0.5F, 0.0F, 255.0F)); }

/// Two pixels of YUY2 become two of red, green and blue.
void toRgb(const std::uint8_t* pair, std::uint8_t* pixels) {
    const float u = static_cast<float>(pair[1]) - 128;
    const float v = static_cast<float>(pair[3]) - 128;
    for (int i = 0; i < 2; ++i) {
        const float y = 1.164F * (static_cast<float>(pair[2 * i]) - 16);
        pixels[3 * i] = toByte(y + 1.596F * v);
        pixels[3 * i + 1] = toByte(y - 0.392F * u - 0.813F * v);
        pixels[3 * i + 2] = toByte(y + 2.017F * u);
    }
}

/// Segment by segment up to the picture's data, in which no marker counts.
Bytes withoutTables(const Bytes& jpeg) {
    Bytes bare(jpeg.begin(), jpeg.begin() + 2);
    std::size_t at = 2;
    while (at + 4 <= jpeg.size() && jpeg[at + 1] != scanMarker) {
        const std::size_t next = at + 2 + (std::size_t{jpeg[at + 2]} << 8 | jpeg[at + 3]);
        if (jpeg[at + 1] != huffmanMarker)
            bare.insert(bare.end(), jpeg.begin() + static_cast<std::ptrdiff_t>(at),
                        jpeg.begin() + static_cast<std::ptrdiff_t>(next));
        at = next;
    }
    bare.insert(bare.end(), jpeg.begin() + static_cast<std::ptrdiff_t>(at), jpeg.end());
    return bare;
}

void clearOutside(const RegionOfInterestInternal& region, std::uint16_t* plane) {
    for (std::uint32_t y = 0; y < frameHeight; ++y) {
        for (std::uint32_t x = 0; x < frameWidth; ++x, ++plane) {
            if (x - region.x >= region.width || y - region.y >= region.height)
                *plane = 0;
        }
    }
}

} // namespace

Bytes Pictures::draw(Coding coding, const PictureSize& size, std::uint32_t number, int brightness) const {
    switch (coding) {
    case Coding::Y16:
    case Coding::Z16:
        return drawDepth(size, number);
    case Coding::Yuy2:
        return drawColor(number, brightness);
    case Coding::Mjpeg:
        return compress(drawColor(number, brightness));
    }
    return {};
}

Bytes Pictures::drawDepth(const PictureSize& size, std::uint32_t number) const {
    std::vector<std::uint16_t> planes(2 * pixelCount);
    depthScene.render(number, planes.data(), planes.data() + pixelCount);
    SensorOutput output = SensorOutput::read(registers);
    if (output.dark)
        output.region = {0, 0, 0, 0};
    clearOutside(output.region, planes.data());
    clearOutside(output.region, planes.data() + pixelCount);
    Bytes picture(size.bytes());
    std::memcpy(picture.data(), planes.data(), std::min(picture.size(), 2 * planeBytes));
    return picture;
}

Bytes Pictures::drawColor(std::uint32_t number, int brightness) const {
    Bytes picture(colorBytes);
    colorScene.renderColor(number, brightness, picture.data());
    return picture;
}

Bytes Pictures::compress(const Bytes& color) const {
    Bytes rgb(pixelCount * 3);
    for (std::size_t pair = 0; pair < pixelCount / 2; ++pair)
        toRgb(&color[4 * pair], &rgb[6 * pair]);
    Bytes jpeg;
    const auto take = [](void* to, void* data, int size) {
        const auto* const first = static_cast<const std::uint8_t*>(data);
        static_cast<Bytes*>(to)->insert(static_cast<Bytes*>(to)->end(), first, first + size);
    };
    stbi_write_jpg_to_func(take, &jpeg, frameWidth, frameHeight, 3, rgb.data(), jpegQuality);
    return withTables ? jpeg : withoutTables(jpeg);
}

} // namespace Zentara::Simulated
