#include "utils/platform/program.h"

#include <algorithm>

#include <windows.h>

#include <io.h>
#include <shellapi.h>

namespace Zentara::Utils::Platform {
namespace {

std::string narrow(const wchar_t* text, int length) {
    const int size = WideCharToMultiByte(CP_UTF8, 0, text, length, nullptr, 0, nullptr, nullptr);
    std::string utf8(static_cast<std::size_t>(std::max(size, 0)), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text, length, utf8.data(), size, nullptr, nullptr);
    return utf8;
}

} // namespace

std::string executablePath() {
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
        if (length == 0)
            return {};
        if (length < path.size()) {
            std::string utf8 = narrow(path.data(), static_cast<int>(length));
            std::replace(utf8.begin(), utf8.end(), '\\', '/');
            return utf8;
        }
        path.resize(2 * path.size()); // filled to the brim: it was cut
    }
}

std::vector<std::string> programArguments(int, char**) {
    // main's own arguments have been through the code page, which does not hold every character.
    int count = 0;
    wchar_t** const wide = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> arguments;
    for (int index = 1; wide != nullptr && index < count; ++index)
        arguments.push_back(narrow(wide[index], static_cast<int>(wcslen(wide[index]))));
    LocalFree(wide);
    return arguments;
}

/// The C library gives a file that is opened none of the first three numbers.
void reserveStandardStreams() noexcept {}

/// Nothing ends a process for that here.
void failInsteadOfDying() noexcept {}

std::vector<long> permissionErrors() { return {ERROR_ACCESS_DENIED}; }

bool isTerminal(std::FILE* stream) noexcept {
    const auto handle = reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream)));
    DWORD mode = 0;
    return GetConsoleMode(handle, &mode) != 0;
}

/// No file's name holds a double quote; a backslash before the closing one would take it for itself.
std::string shellWord(const std::string& text) {
    const bool isPlain = !text.empty() && text.find_first_not_of(
                                              "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789"
                                              "_-./\\:+@") == std::string::npos;
    if (isPlain)
        return text;
    return '"' + text + (text.ends_with('\\') ? "\\" : "") + '"';
}

} // namespace Zentara::Utils::Platform
