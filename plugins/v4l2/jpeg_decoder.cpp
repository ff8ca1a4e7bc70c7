#include "plugins/v4l2/jpeg_decoder.h"

#include <array>
#include <string_view>

#include <turbojpeg.h>

namespace Zentara::V4l2 {

namespace {

using Table = std::array<std::byte, 256>;

/// JPEG uses all 256 steps; video leaves room at both ends.
constexpr Table narrowed(int least, int steps) {
    Table table{};
    for (int value = 0; value < 256; ++value)
        table[static_cast<std::size_t>(value)] = static_cast<std::byte>(least + (value * steps + 127) / 255);
    return table;
}

constexpr Table lumaOf = narrowed(16, 219);
constexpr Table chromaOf = narrowed(16, 224);

struct Planes {
    const unsigned char* plane[3];
    int stride[3];
    int shiftX; ///< pixels of a U: 1 << shiftX; beyond 1 every other pair shares one
    int shiftY;
    bool grey;
};

void weaveLine(const Planes& planes, int width, int y, std::byte* to) {
    const unsigned char* const luma = planes.plane[0] + static_cast<std::ptrdiff_t>(planes.stride[0]) * y;
    const auto chroma = [&](int index) {
        return planes.plane[index] + static_cast<std::ptrdiff_t>(planes.stride[index]) * (y >> planes.shiftY);
    };
    const unsigned char* const u = planes.grey ? nullptr : chroma(1);
    const unsigned char* const v = planes.grey ? nullptr : chroma(2);
    for (int x = 0; x < width; x += 2, to += 4) {
        to[0] = lumaOf[luma[x]];
        to[1] = planes.grey ? std::byte{128} : chromaOf[u[x >> planes.shiftX]];
        to[2] = lumaOf[luma[x + 1]];
        to[3] = planes.grey ? std::byte{128} : chromaOf[v[x >> planes.shiftX]];
    }
}

/// A warning is a picture that is cut short or damaged: what the decoder made up is no camera's. But some cameras fill
/// every picture up in front of a marker.
bool isHarmless(void* handle) {
    return tjGetErrorCode(handle) == TJERR_WARNING &&
           std::string_view(tjGetErrorStr2(handle)).find("extraneous bytes") != std::string_view::npos;
}

int shiftOf(int pixels) { return pixels == 8 ? 0 : pixels == 16 ? 1 : 2; }

} // namespace

JpegDecoder::JpegDecoder() : handle(tjInitDecompress()) {}

JpegDecoder::~JpegDecoder() {
    if (handle != nullptr)
        tjDestroy(handle);
}

bool JpegDecoder::decode(std::span<const std::byte> jpeg, std::uint32_t width, std::uint32_t height,
                         std::byte* yuy2) {
    const auto* const bytes = reinterpret_cast<const unsigned char*>(jpeg.data());
    const auto count = static_cast<unsigned long>(jpeg.size());
    int across = 0;
    int down = 0;
    int sampling = 0;
    int colors = 0;
    if (handle == nullptr ||
        tjDecompressHeader3(handle, bytes, count, &across, &down, &sampling, &colors) != 0 ||
        across != static_cast<int>(width) || down != static_cast<int>(height))
        return false;
    if ((colors != TJCS_YCbCr && colors != TJCS_GRAY) || sampling < 0 || sampling >= TJ_NUMSAMP)
        return false;
    Planes planes{};
    planes.grey = sampling == TJSAMP_GRAY;
    planes.shiftX = shiftOf(tjMCUWidth[sampling]);
    planes.shiftY = shiftOf(tjMCUHeight[sampling]);
    const int count3 = planes.grey ? 1 : 3;
    std::size_t total = 0;
    std::array<std::size_t, 3> starts{};
    for (int index = 0; index < count3; ++index) {
        starts[static_cast<std::size_t>(index)] = total;
        planes.stride[index] = tjPlaneWidth(index, across, sampling);
        total += tjPlaneSizeYUV(index, across, 0, down, sampling);
    }
    space.resize(total);
    std::array<unsigned char*, 3> places{};
    for (std::size_t index = 0; index < static_cast<std::size_t>(count3); ++index)
        planes.plane[index] = places[index] = space.data() + starts[index];
    if (tjDecompressToYUVPlanes(handle, bytes, count, places.data(), across, planes.stride, down, 0) != 0 &&
        !isHarmless(handle))
        return false;
    for (int y = 0; y < down; ++y)
        weaveLine(planes, across, y, yuy2 + std::size_t{2} * width * static_cast<std::size_t>(y));
    return true;
}

} // namespace Zentara::V4l2
