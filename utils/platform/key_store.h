#pragma once

#include <string>

namespace Zentara::Utils::Platform {

enum class KeyView { Bits32, Bits64 };

enum class KeyRead {
    Found,
    Missing,   ///< no such store, key or value
    Unreadable ///< the value exists but is no text
};

/// The store that holds the machine's settings: "HKEY_LOCAL_MACHINE" of the registry, or the path of an INI
/// file.
const char* systemKeyStore() noexcept;

/// Reads a text value (UTF-8) of a key such as "Software\Vendor\Product" in one view of a store. `text` is
/// untouched unless the result is Found. Names of keys and values ignore letter case. A text that the registry marks
/// as one with variables ("%ProgramFiles%") comes with their values.
///
/// In an INI file a section is a key; the sections of the 32-bit view carry "WOW6432Node\" after "Software\".
/// Lines that are neither section, "name = value" nor comment (';', '#') are skipped.
KeyRead readKeyValue(const std::string& store, const std::string& key, KeyView view, const std::string& name,
                     std::string& text);

} // namespace Zentara::Utils::Platform
