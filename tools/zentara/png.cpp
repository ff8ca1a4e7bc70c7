#include "tools/zentara/png.h"

#include "tools/zentara/exit_code.h"

#define STB_IMAGE_WRITE_IMPLEMENTATION
#define STB_IMAGE_WRITE_STATIC
#define STBI_WRITE_NO_STDIO
#include <stb/stb_image_write.h>

namespace Zentara::Tool {

std::string encodePng(const std::vector<std::uint8_t>& pixels, int width, int height) {
    std::string bytes;
    const auto append = [](void* target, void* data, int size) {
        static_cast<std::string*>(target)->append(static_cast<const char*>(data),
                                                  static_cast<std::size_t>(size));
    };
    if (stbi_write_png_to_func(append, &bytes, width, height, 3, pixels.data(), 3 * width) == 0)
        throw ToolFailure(ExitCode_FAILED, "cannot encode the picture: out of memory");
    return bytes;
}

} // namespace Zentara::Tool
