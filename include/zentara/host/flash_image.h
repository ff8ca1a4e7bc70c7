#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include <zentara/host/export.h>
#include <zentara/host/hex_bytes.h>
#include <zentara/rom/accessor.h>

namespace Zentara::Host {

/// Where a storage lies on a flash. Addresses are those of the flash, sizes are bytes; the end is at most 2^32. A plain
/// value. Separate.
struct FlashArea {
    std::uint32_t start = 0;       ///< the address of its first byte
    std::uint32_t size = 0;        ///< bytes, the management header included
    std::uint32_t chunkSize = 256; ///< bytes, to format with, 1 or more
    bool headerAtStart = true;     ///< the management header; else it ends the area

    /// Of an area that has room for a header.
    [[nodiscard]] ZENTARA_HOST_API std::uint32_t headerAddress() const;
    /// Behind the last byte.
    [[nodiscard]] std::uint64_t end() const { return std::uint64_t{start} + size; }
    [[nodiscard]] bool holds(std::uint64_t address, std::uint64_t length) const {
        return address >= start && length <= size && address - start <= size - length;
    }
    /// The same bytes with the header at the other end.
    [[nodiscard]] FlashArea mirrored() const { return {start, size, chunkSize, !headerAtStart}; }
};

/// Bytes to be written to a place. A plain value. Separate.
struct FlashWrite {
    std::uint32_t address; ///< absolute, of the first one
    Bytes bytes;
};

/// The bytes of one area of flash, by absolute address; what is written to it is kept in its order as well. The
/// library's storage can be laid over it. A copyable value. Separate.
class ZENTARA_HOST_API FlashImage final : public ROM::Accessor {
public:
    /// Erased flash: every byte is 0xFF. \throws Failure (Usage) for an area that ends beyond 2^32, as the next one does
    explicit FlashImage(const FlashArea& where);
    /// \param content  as many bytes as the area has. \throws Failure (Usage) for another number
    FlashImage(const FlashArea& where, Bytes content);
    FlashImage(const FlashImage&);
    FlashImage(FlashImage&&) noexcept;
    FlashImage& operator=(const FlashImage&);
    FlashImage& operator=(FlashImage&&) noexcept;
    ~FlashImage() override;

    /// Both throw IOPluginException for a byte outside the area.
    std::vector<std::uint8_t> read(std::uint32_t address, std::uint32_t length) override;
    void write(std::uint32_t address, const std::vector<std::uint8_t>& written) override;

    [[nodiscard]] const FlashArea& area() const noexcept { return place; }
    [[nodiscard]] const Bytes& bytes() const noexcept { return content; }
    /// What was written to this image since it was made, in its order.
    [[nodiscard]] const std::vector<FlashWrite>& writes() const noexcept { return history; }

private:
    void check(const char* verb, std::uint32_t address, std::size_t length) const;

    FlashArea place;
    Bytes content;                   ///< always as many as the area has
    std::vector<FlashWrite> history; ///< what was written since the image was made
};

/// What turns one image into another of the same area: the changed ranges in ascending order, but the management
/// header's last, so that what it leads to stands before. \throws Failure (Usage) for images of two areas. Safe.
[[nodiscard]] ZENTARA_HOST_API std::vector<FlashWrite> differences(const FlashImage& before,
                                                                   const FlashImage& after);

} // namespace Zentara::Host
