#include "utils/platform/directory.h"

#include "utils/platform/text_encoding.h"
#include "utils/platform/windows/system.h"

namespace Zentara::Utils::Platform {

namespace {

class FileSearch {
public:
    explicit FileSearch(const std::wstring& pattern) noexcept
        : handle(FindFirstFileW(pattern.c_str(), &entry)) {}
    ~FileSearch() {
        if (!isOpen())
            return;
        const DWORD saved = GetLastError();
        FindClose(handle);
        SetLastError(saved);
    }
    FileSearch(const FileSearch&) = delete;
    FileSearch& operator=(const FileSearch&) = delete;

    bool isOpen() const noexcept { return handle != INVALID_HANDLE_VALUE; }
    bool next() noexcept { return FindNextFileW(handle, &entry) != 0; }
    /// Links to files have neither mark, and count as files.
    bool isFile() const noexcept {
        return (entry.dwFileAttributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_DEVICE)) == 0;
    }
    std::string name() const { return wideToUtf8OrNarrowed(entry.cFileName); }

private:
    WIN32_FIND_DATAW entry{};
    HANDLE handle;
};

std::wstring searchPattern(const std::string& directory) {
    std::wstring pattern = utf8ToWideOrWidened(directory);
    if (!pattern.empty() && pattern.back() != L'/' && pattern.back() != L'\\')
        pattern += L'\\';
    return pattern + L'*';
}

bool isMissing(DWORD error) noexcept {
    return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND || error == ERROR_INVALID_NAME ||
           error == ERROR_DIRECTORY;
}

} // namespace

DirectoryWalk listFiles(const std::string& directory, std::vector<std::string>& names) {
    if (directory.find('\0') != std::string::npos)
        return DirectoryWalk::Missing;
    FileSearch search(searchPattern(directory));
    if (!search.isOpen())
        return isMissing(GetLastError()) ? DirectoryWalk::Missing : DirectoryWalk::Failed;
    do {
        if (search.isFile())
            names.push_back(search.name());
    } while (search.next());
    return GetLastError() == ERROR_NO_MORE_FILES ? DirectoryWalk::Complete : DirectoryWalk::Failed;
}

bool fileNamesIgnoreCase() noexcept { return true; }

} // namespace Zentara::Utils::Platform
