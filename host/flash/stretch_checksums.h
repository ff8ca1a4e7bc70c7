#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace Zentara::Host {

/// The CRC-16 of any stretch of some bytes. They are gone through once; after that a stretch costs a few dozen
/// steps, however long it is. So a flash full of headers that each claim the whole rest is checked as fast as
/// any other.
class StretchChecksums {
public:
    explicit StretchChecksums(std::span<const std::uint8_t> bytes);

    /// \param offset, length  inside the bytes.
    [[nodiscard]] std::uint16_t of(std::size_t offset, std::size_t length) const;

private:
    /// What becomes of each bit of the register when so many zero bytes pass through it.
    using Passage = std::array<std::uint16_t, 16>;
    static std::uint16_t pass(const Passage& passage, std::uint16_t crc);

    std::vector<std::uint16_t> before; ///< of the bytes in front of each place
    std::vector<Passage> passages;     ///< of 1, 2, 4, 8... zero bytes
};

} // namespace Zentara::Host
