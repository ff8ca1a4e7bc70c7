#include <zentara/rom/string_serialization.h>

#include <algorithm>

namespace Zentara::ROM {

std::uint8_t* serialize(std::uint8_t* out, const std::string& text) {
    out = std::copy(text.begin(), text.end(), out);
    *out = 0;
    return out + 1;
}

std::size_t serializedLength(const std::string& text) { return text.size() + 1; }

// Looks for the zero byte without a bound: the caller has seen it.
const std::uint8_t* deserialize(const std::uint8_t* in, std::string* out) {
    *out = reinterpret_cast<const char*>(in);
    return in + serializedLength(*out);
}

const std::uint8_t* deserialize(const std::uint8_t* in, const std::uint8_t* end, std::string* out) {
    const std::uint8_t* zero = std::find(in, end, std::uint8_t{0});
    if (zero == end)
        return nullptr;
    out->assign(in, zero);
    return zero + 1;
}

} // namespace Zentara::ROM
