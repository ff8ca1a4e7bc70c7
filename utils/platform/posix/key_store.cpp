#include "utils/platform/key_store.h"

#include <fstream>
#include <strings.h>

#include "utils/platform/posix/ini_file.h"
#include "utils/platform/text_encoding.h"

namespace Zentara::Utils::Platform {

namespace {

constexpr std::string_view vendorRoot = "Software\\";
constexpr std::string_view bits32Node = "WOW6432Node\\";

bool isNamedValue(std::string_view line, std::string_view name, std::string_view& value) noexcept {
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos || line.front() == ';' || line.front() == '#')
        return false;
    value = trimmed(line.substr(equals + 1));
    return sameKeyName(trimmed(line.substr(0, equals)), name);
}

} // namespace

std::string iniSection(const std::string& key, KeyView view) {
    std::string section = key;
    if (view == KeyView::Bits32 && sameKeyName(key.substr(0, vendorRoot.size()), vendorRoot))
        section.insert(vendorRoot.size(), bits32Node);
    return section;
}

bool sameKeyName(std::string_view left, std::string_view right) noexcept {
    return left.size() == right.size() && strncasecmp(left.data(), right.data(), left.size()) == 0;
}

std::string_view trimmed(std::string_view line) noexcept {
    constexpr std::string_view blanks = " \t\r";
    const std::size_t first = line.find_first_not_of(blanks);
    if (first == std::string_view::npos)
        return {};
    return line.substr(first, line.find_last_not_of(blanks) - first + 1);
}

bool isSectionLine(std::string_view line, std::string_view& section) noexcept {
    if (line.size() < 2 || line.front() != '[' || line.back() != ']')
        return false;
    section = trimmed(line.substr(1, line.size() - 2));
    return true;
}

const char* systemKeyStore() noexcept { return "/etc/zentara/sdk.ini"; }

KeyRead readKeyValue(const std::string& store, const std::string& key, KeyView view, const std::string& name,
                     std::string& text) {
    const std::string wanted = iniSection(key, view);
    std::ifstream file(store); // one that cannot be opened has no lines, and so no value
    bool inside = false;
    for (std::string line; std::getline(file, line);) {
        const std::string_view content = trimmed(line);
        std::string_view section;
        std::string_view value;
        if (isSectionLine(content, section)) {
            inside = sameKeyName(section, wanted);
        } else if (inside && !content.empty() && isNamedValue(content, name, value)) {
            // Converted for the check alone: bytes that are no text must not become a part of a path.
            std::wstring wide;
            if (!utf8ToWide(value, wide) || value.find('\0') != std::string_view::npos)
                return KeyRead::Unreadable;
            text = value;
            return KeyRead::Found;
        }
    }
    return KeyRead::Missing;
}

} // namespace Zentara::Utils::Platform
