#include "utils/platform/key_store.h"

#include <algorithm>

#include "utils/platform/text_encoding.h"
#include "utils/platform/windows/registry.h"

namespace Zentara::Utils::Platform {

namespace {

/// Reads a value whole, growing while somebody else makes it longer; false if it does not exist.
bool readBytes(HKEY key, const std::wstring& name, DWORD& type, std::wstring& characters) {
    DWORD size = 0;
    LSTATUS status = ERROR_MORE_DATA;
    while (status == ERROR_MORE_DATA) {
        characters.resize((size + 1) / sizeof(wchar_t) + 128);
        size = static_cast<DWORD>(characters.size() * sizeof(wchar_t));
        status = RegQueryValueExW(key, name.c_str(), nullptr, &type,
                                  reinterpret_cast<BYTE*>(characters.data()), &size);
    }
    characters.resize(size / sizeof(wchar_t));
    return status == ERROR_SUCCESS;
}

/// The text with the environment's variables, "%NAME%", filled in; those that are not set stay as they stand.
std::wstring expanded(const std::wstring& text) {
    std::wstring result(text.size() + 1, L'\0');
    for (;;) {
        const DWORD size =
            ExpandEnvironmentStringsW(text.c_str(), result.data(), static_cast<DWORD>(result.size()));
        if (size == 0)
            return text;
        const bool fits = size <= result.size();
        result.resize(fits ? size - 1 : size); // it counts the terminator
        if (fits)
            return result;
    }
}

} // namespace

HKEY registryHive(const std::string& store) noexcept {
    return store == "HKEY_CURRENT_USER" ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE;
}

REGSAM viewAccess(KeyView view) noexcept {
    return view == KeyView::Bits32 ? KEY_WOW64_32KEY : KEY_WOW64_64KEY;
}

const char* systemKeyStore() noexcept { return "HKEY_LOCAL_MACHINE"; }

KeyRead readKeyValue(const std::string& store, const std::string& key, KeyView view, const std::string& name,
                     std::string& text) {
    RegistryKey open;
    if (RegOpenKeyExW(registryHive(store), utf8ToWideOrWidened(key).c_str(), 0,
                      KEY_QUERY_VALUE | viewAccess(view), &open.handle) != ERROR_SUCCESS)
        return KeyRead::Missing;
    DWORD type = REG_NONE;
    std::wstring characters;
    if (!readBytes(open.handle, utf8ToWideOrWidened(name), type, characters))
        return KeyRead::Missing;
    // A stored text may lack its terminator or have several.
    characters.resize(std::min(characters.size(), characters.find(L'\0')));
    if (type == REG_EXPAND_SZ)
        characters = expanded(characters);
    // A value of another type is there, but cannot be read: that is not the same as a missing one.
    const bool isText = type == REG_SZ || type == REG_EXPAND_SZ;
    return isText && wideToUtf8(characters, text) ? KeyRead::Found : KeyRead::Unreadable;
}

} // namespace Zentara::Utils::Platform
