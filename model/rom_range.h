#pragma once

#include <cstdint>
#include <optional>
#include <vector>

namespace Zentara::Model {

/// How a camera's ROM stores coefficients: an algorithm, their number, and big-endian floats.
struct RomRange {
    std::uint8_t algorithm = 0;
    std::vector<float> parameters;

    static constexpr unsigned int headerBytes = 2;
    static constexpr unsigned int parameterBytes = 4;

    [[nodiscard]] unsigned int size() const {
        return headerBytes + parameterBytes * static_cast<unsigned int>(parameters.size());
    }
};

/// The range that begins at the first byte; nothing if the bytes do not hold it whole.
[[nodiscard]] std::optional<RomRange> parseRomRange(const unsigned char* bytes, unsigned int size);

} // namespace Zentara::Model
