#include "host/pictures/png.h"

#include <zentara/host/failure.h>

#define STB_IMAGE_WRITE_IMPLEMENTATION
#define STB_IMAGE_WRITE_STATIC
#define STBI_WRITE_NO_STDIO
#include <stb/stb_image_write.h>

namespace Zentara::Host {

std::string encodePng(const std::vector<std::uint8_t>& pixels, int width, int height) {
    std::string bytes;
    const auto append = [](void* target, void* data, int size) {
        static_cast<std::string*>(target)->append(static_cast<const char*>(data),
                                                  static_cast<std::size_t>(size));
    };
    if (stbi_write_png_to_func(append, &bytes, width, height, 3, pixels.data(), 3 * width) == 0)
        throw Failure(Failure::Failed, "cannot encode the picture: out of memory");
    return bytes;
}

} // namespace Zentara::Host
