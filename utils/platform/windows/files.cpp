#include "utils/platform/files.h"

#include <algorithm>
#include <io.h>

#include "utils/platform/text_encoding.h"
#include "utils/platform/windows/system.h"

namespace Zentara::Utils::Platform {

namespace {

/// 'N': child processes do not inherit the file.
const wchar_t* streamMode(FileMode mode) noexcept {
    switch (mode) {
    case FileMode::WriteBinary:
        return L"wbN";
    case FileMode::AppendText:
        return L"aN";
    case FileMode::ReadBinary:
        break;
    }
    return L"rbN";
}

std::string withSlashes(const std::wstring& path) {
    std::string text = wideToUtf8OrNarrowed(path);
    std::replace(text.begin(), text.end(), '\\', '/');
    return text;
}

/// Calls a system function that fills a buffer and returns the length that it has or would have needed.
template<typename Fill>
std::wstring filledText(Fill fill) {
    std::wstring text(MAX_PATH, L'\0');
    for (;;) {
        const DWORD size = fill(static_cast<DWORD>(text.size()), text.data());
        const bool fits = size < text.size();
        text.resize(size);
        if (fits)
            return text;
    }
}

} // namespace

std::FILE* openFile(const std::string& path, FileMode mode) {
    if (path.find('\0') != std::string::npos) {
        SetLastError(ERROR_INVALID_NAME);
        return nullptr;
    }
    return _wfopen(utf8ToWideOrWidened(path).c_str(), streamMode(mode));
}

void writeThrough(std::FILE* file, std::string_view text) noexcept {
    std::fwrite(text.data(), 1, text.size(), file); // ends lines as the system does
    std::fflush(file);
}

std::int64_t fileLength(std::FILE* file) noexcept {
    const auto handle = reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(file)));
    LARGE_INTEGER length;
    return GetFileType(handle) == FILE_TYPE_DISK && GetFileSizeEx(handle, &length) ? length.QuadPart : -1;
}

std::string workingDirectory() {
    return withSlashes(
        filledText([](DWORD size, wchar_t* text) { return GetCurrentDirectoryW(size, text); }));
}

std::string absolutePath(const std::string& path) {
    if (path.empty())
        return workingDirectory();
    const std::wstring wide = utf8ToWideOrWidened(path);
    return withSlashes(filledText(
        [&wide](DWORD size, wchar_t* text) { return GetFullPathNameW(wide.c_str(), size, text, nullptr); }));
}

std::string nativeSeparators(const std::string& path) {
    std::string native = path;
    std::replace(native.begin(), native.end(), '/', '\\');
    return native;
}

bool isSeparator(char character) noexcept { return character == '/' || character == '\\'; }

} // namespace Zentara::Utils::Platform
