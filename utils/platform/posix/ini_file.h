#pragma once

#include <string>
#include <string_view>

#include "utils/platform/key_store.h"

namespace Zentara::Utils::Platform {

/// The section of an INI file that stands for a key in a view.
std::string iniSection(const std::string& key, KeyView view);

/// Equality of key and value names.
bool sameKeyName(std::string_view left, std::string_view right) noexcept;

/// The line without white space at its ends.
std::string_view trimmed(std::string_view line) noexcept;

/// Whether a trimmed line opens a section, and which.
bool isSectionLine(std::string_view line, std::string_view& section) noexcept;

} // namespace Zentara::Utils::Platform
