#pragma once

#include <filesystem>
#include <string>

namespace Zentara::Host {

/// A UTF-8 path for the standard library.
[[nodiscard]] std::filesystem::path pathOf(const std::string& utf8);

/// The way back.
[[nodiscard]] std::string utf8Of(const std::filesystem::path& path);

/// Whether anything lies there; false also when that cannot be found out.
[[nodiscard]] bool isThere(const std::string& utf8);

/// Whether a directory lies there; false also when that cannot be found out.
[[nodiscard]] bool isDirectory(const std::string& utf8);

} // namespace Zentara::Host
