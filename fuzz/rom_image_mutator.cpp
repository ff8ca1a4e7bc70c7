// Mutations of a flash image that get past the checksums: after most of them the headers and sections that
// the chain reaches are given the checksums that they should have.
#include <algorithm>
#include <cstddef>
#include <cstdint>

#include <zentara/utils/crc.h>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maximum);

namespace {

constexpr std::size_t MANAGEMENT_HEADER = 17;
constexpr std::size_t BLOCK_HEADER = 10;
constexpr std::size_t SECTION_HEADER = 11;
constexpr int MOST_BLOCKS = 64;

struct Image {
    std::uint8_t* bytes;
    std::size_t size;

    bool has(std::size_t at, std::size_t length) const { return at <= size && length <= size - at; }
    std::uint32_t number(std::size_t at) const {
        return static_cast<std::uint32_t>(bytes[at]) << 24 | static_cast<std::uint32_t>(bytes[at + 1]) << 16 |
               static_cast<std::uint32_t>(bytes[at + 2]) << 8 | bytes[at + 3];
    }
    void seal(std::size_t at, std::size_t length) const {
        const unsigned crc = Zentara::Utils::Crc16::compute(bytes + at, static_cast<unsigned>(length), 0);
        bytes[at + length] = static_cast<std::uint8_t>(crc >> 8);
        bytes[at + length + 1] = static_cast<std::uint8_t>(crc);
    }
};

void sealContent(const Image& image, std::size_t at) {
    if (image.has(at, 4) && image.bytes[at] != 0xA5)
        image.seal(at, 2); // a container header
    if (!image.has(at, SECTION_HEADER + 2) || image.bytes[at] != 0xA5)
        return;
    image.seal(at, SECTION_HEADER - 2);
    const std::uint32_t length = image.number(at + 1);
    if (length >= SECTION_HEADER + 2 && image.has(at, length))
        image.seal(at + SECTION_HEADER, length - SECTION_HEADER - 2);
}

void sealAll(const Image& image, std::size_t header) {
    if (!image.has(header, MANAGEMENT_HEADER))
        return;
    image.bytes[header] = 1;
    image.seal(header, MANAGEMENT_HEADER - 2);
    std::uint32_t address = image.number(header + 11);
    for (int i = 0; i < MOST_BLOCKS && address != 0 && image.has(address, BLOCK_HEADER); ++i) {
        image.seal(address, BLOCK_HEADER - 2);
        sealContent(image, address + BLOCK_HEADER);
        address = image.number(address + 4);
    }
}

} // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maximum,
                                               unsigned int seed) {
    size = LLVMFuzzerMutate(data, size, maximum);
    if (seed % 8 == 0 || size < 1 + MANAGEMENT_HEADER)
        return size;
    const Image image{data + 1, size - 1};
    const std::size_t start = std::min<std::size_t>((data[0] >> 1 & 3u) * 64, image.size);
    const bool headerAtStart = (data[0] & 1) != 0;
    sealAll(image, headerAtStart ? start : image.size - MANAGEMENT_HEADER);
    return size;
}
