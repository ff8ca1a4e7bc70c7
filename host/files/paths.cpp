#include "host/files/paths.h"

#include <system_error>

namespace Zentara::Host {

std::filesystem::path pathOf(const std::string& utf8) {
    return std::filesystem::path(std::u8string(utf8.begin(), utf8.end()));
}

std::string utf8Of(const std::filesystem::path& path) {
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

bool isThere(const std::string& utf8) {
    std::error_code ignored;
    return std::filesystem::exists(pathOf(utf8), ignored);
}

bool isDirectory(const std::string& utf8) {
    std::error_code ignored;
    return std::filesystem::is_directory(pathOf(utf8), ignored);
}

} // namespace Zentara::Host
