#include "rom/coefficients.h"

#include <limits>

#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/format.h>

namespace Zentara::ROM {

namespace {
constexpr std::size_t MAX_COUNT = std::numeric_limits<std::uint8_t>::max();
}

std::vector<float> readCoefficients(BigEndianReader& in) {
    // The count stands first, so the list takes memory only for floats that are there.
    BigEndianReader floats(in.readBytes(std::size_t{in.readU8()} * sizeof(float)));
    std::vector<float> values(floats.remaining() / sizeof(float));
    for (float& value : values)
        value = floats.readFloat();
    return values;
}

void writeCoefficients(BigEndianWriter& out, const std::vector<float>& values) {
    if (values.size() > MAX_COUNT)
        throw Plugin::ArgumentPluginException(
            Utils::Format("cannot store % coefficients - at most % fit in a record") %
            static_cast<unsigned long long>(values.size()) % static_cast<unsigned int>(MAX_COUNT));
    out.writeU8(static_cast<std::uint8_t>(values.size()));
    for (const float value : values)
        out.writeFloat(value);
}

} // namespace Zentara::ROM
