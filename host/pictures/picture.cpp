#include <zentara/host/picture.h>

#include <utility>

#include <zentara/host/failure.h>
#include <zentara/utils/format.h>

#define STB_IMAGE_WRITE_IMPLEMENTATION
#define STB_IMAGE_WRITE_STATIC
#define STBI_WRITE_NO_STDIO // OutputFile writes the files
#include <stb/stb_image_write.h>

namespace Zentara::Host {
namespace {

using Utils::Format;

std::size_t pixelsOf(std::uint32_t width, std::uint32_t height) {
    const std::uint64_t pixels = std::uint64_t{width} * height;
    if (pixels > Picture::mostPixels)
        throw Failure(Failure::Usage,
                      Format("a picture of % x % pixels is too large: at most % are possible") % width %
                          height % Picture::mostPixels);
    return static_cast<std::size_t>(pixels);
}

} // namespace

Picture::Picture(std::uint32_t width, std::uint32_t height, Color background) : columns(width), rows(height) {
    const std::size_t count = pixelsOf(width, height);
    pixels.resize(3 * count);
    for (std::size_t i = 0; i < count; ++i) {
        pixels[3 * i] = background.red;
        pixels[3 * i + 1] = background.green;
        pixels[3 * i + 2] = background.blue;
    }
}

Picture Picture::fromRgb(std::uint32_t width, std::uint32_t height, std::vector<std::uint8_t> rgb) {
    if (rgb.size() != 3 * pixelsOf(width, height))
        throw Failure(Failure::Usage, Format("a picture of % x % pixels takes % bytes, there are %") % width %
                                          height % (3 * pixelsOf(width, height)) % rgb.size());
    Picture made;
    made.columns = width;
    made.rows = height;
    made.pixels = std::move(rgb);
    return made;
}

Color Picture::at(std::uint32_t x, std::uint32_t y) const noexcept {
    const std::uint8_t* const pixel = pixels.data() + 3 * (std::size_t{y} * columns + x);
    return {pixel[0], pixel[1], pixel[2]};
}

void Picture::set(std::uint32_t x, std::uint32_t y, Color color) noexcept {
    std::uint8_t* const pixel = pixels.data() + 3 * (std::size_t{y} * columns + x);
    pixel[0] = color.red;
    pixel[1] = color.green;
    pixel[2] = color.blue;
}

std::string Picture::png() const {
    if (pixels.empty())
        throw Failure(Failure::Failed, "cannot encode the picture: it has no pixel");
    std::string bytes;
    const auto append = [](void* target, void* data, int size) {
        static_cast<std::string*>(target)->append(static_cast<const char*>(data),
                                                  static_cast<std::size_t>(size));
    };
    if (stbi_write_png_to_func(append, &bytes, static_cast<int>(columns), static_cast<int>(rows), 3,
                               pixels.data(), static_cast<int>(3 * columns)) == 0)
        throw Failure(Failure::Failed, "cannot encode the picture: out of memory");
    return bytes;
}

void Picture::writePng(const std::string& path, const OutputFile::Rules& rules) const {
    OutputFile file(path, rules);
    file.write(png());
    file.commit();
}

} // namespace Zentara::Host
