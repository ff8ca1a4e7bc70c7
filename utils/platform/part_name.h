#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

/// What a file is called while it is being written: "NAME.0123456789abcdef.part". Of a name that would grow longer than
/// file systems take, as much as fits stands there.
namespace Zentara::Utils::Platform::PartName {

inline constexpr std::size_t digits = 16;
inline constexpr std::string_view ending = ".part";

inline constexpr std::size_t longestName = 255;
inline constexpr std::size_t longestStem = longestName - 1 - digits - ending.size();

inline std::size_t nameBegin(const std::string& path) {
    const std::size_t separator = path.find_last_of("/\\");
    return separator == std::string::npos ? 0 : separator + 1;
}

/// As much of a file's name as fits: whole characters of UTF-8.
inline std::string_view stemOf(const std::string& path, std::size_t longest = longestStem) {
    const std::string_view name = std::string_view(path).substr(nameBegin(path));
    if (name.size() <= longest)
        return name;
    std::size_t end = longest;
    while (end > 0 && (static_cast<unsigned char>(name[end]) & 0xC0U) == 0x80U)
        --end;
    return name.substr(0, end);
}

inline std::string make(const std::string& path, unsigned high, unsigned low) {
    std::string name = path.substr(0, nameBegin(path)).append(stemOf(path)) + '.';
    for (const unsigned half : {high, low})
        for (int shift = 28; shift >= 0; shift -= 4)
            name += "0123456789abcdef"[half >> shift & 0xFU];
    return name.append(ending);
}

/// Whether a name is one that make() gives a file at that path.
inline bool isOf(const std::string& path, std::string_view name) {
    const std::string_view own = stemOf(path);
    if (name.size() != own.size() + 1 + digits + ending.size() || !name.starts_with(own) ||
        !name.ends_with(ending) || name[own.size()] != '.')
        return false;
    const std::string_view middle = name.substr(own.size() + 1, digits);
    return middle.find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

} // namespace Zentara::Utils::Platform::PartName
