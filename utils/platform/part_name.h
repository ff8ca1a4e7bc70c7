#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

/// What a file is called while it is being written: "NAME.0123456789abcdef.part".
namespace Zentara::Utils::Platform::PartName {

inline constexpr std::size_t digits = 16;
inline constexpr std::string_view ending = ".part";

inline std::string make(const std::string& path, unsigned high, unsigned low) {
    std::string name = path + '.';
    for (const unsigned half : {high, low})
        for (int shift = 28; shift >= 0; shift -= 4)
            name += "0123456789abcdef"[half >> shift & 0xFU];
    return name.append(ending);
}

/// Whether a name is one that make() gives a file at that path.
inline bool isOf(const std::string& path, std::string_view name) {
    const std::size_t separator = path.find_last_of("/\\");
    const std::string_view own =
        std::string_view(path).substr(separator == std::string::npos ? 0 : separator + 1);
    if (name.size() != own.size() + 1 + digits + ending.size() || !name.starts_with(own) ||
        !name.ends_with(ending) || name[own.size()] != '.')
        return false;
    const std::string_view middle = name.substr(own.size() + 1, digits);
    return middle.find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

} // namespace Zentara::Utils::Platform::PartName
