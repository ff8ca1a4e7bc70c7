#include "utils/platform/key_store_editor.h"

#include "utils/platform/text_encoding.h"
#include "utils/platform/windows/registry.h"

namespace Zentara::Utils::Platform {

namespace {

bool writeValue(const std::string& store, const std::string& key, KeyView view, const std::string& name,
                DWORD type, const void* data, std::size_t size) {
    RegistryKey open;
    return RegCreateKeyExW(registryHive(store), utf8ToWideOrWidened(key).c_str(), 0, nullptr, 0,
                           KEY_SET_VALUE | viewAccess(view), nullptr, &open.handle,
                           nullptr) == ERROR_SUCCESS &&
           RegSetValueExW(open.handle, utf8ToWideOrWidened(name).c_str(), 0, type,
                          static_cast<const BYTE*>(data), static_cast<DWORD>(size)) == ERROR_SUCCESS;
}

bool writeText(const std::string& store, const std::string& key, KeyView view, const std::string& name,
               DWORD type, const std::string& text) {
    const std::wstring wide = utf8ToWideOrWidened(text);
    return writeValue(store, key, view, name, type, wide.c_str(), (wide.size() + 1) * sizeof(wchar_t));
}

} // namespace

bool writeKeyText(const std::string& store, const std::string& key, KeyView view, const std::string& name,
                  const std::string& text) {
    return writeText(store, key, view, name, REG_SZ, text);
}

bool writeKeyExpandable(const std::string& store, const std::string& key, KeyView view,
                        const std::string& name, const std::string& text) {
    return writeText(store, key, view, name, REG_EXPAND_SZ, text);
}

bool writeKeyNonText(const std::string& store, const std::string& key, KeyView view,
                     const std::string& name) {
    const DWORD number = 1;
    return writeValue(store, key, view, name, REG_DWORD, &number, sizeof number);
}

bool removeKey(const std::string& store, const std::string& key, KeyView view) {
    const LSTATUS status =
        RegDeleteKeyExW(registryHive(store), utf8ToWideOrWidened(key).c_str(), viewAccess(view), 0);
    return status == ERROR_SUCCESS || status == ERROR_FILE_NOT_FOUND;
}

} // namespace Zentara::Utils::Platform
