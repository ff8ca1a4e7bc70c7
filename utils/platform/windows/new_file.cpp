#include "utils/platform/new_file.h"

#include <algorithm>
#include <memory>
#include <random>
#include <vector>

#include "utils/platform/part_name.h"
#include "utils/platform/text_encoding.h"
#include "utils/platform/windows/system.h"

namespace Zentara::Utils::Platform {

namespace {

constexpr DWORD lookMilliseconds = 5;
constexpr DWORD everybody = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

class Handle {
public:
    explicit Handle(HANDLE opened = INVALID_HANDLE_VALUE) noexcept : handle(opened) {}
    ~Handle() { reset(INVALID_HANDLE_VALUE); }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    void reset(HANDLE opened) noexcept {
        const DWORD saved = GetLastError();
        if (isOpen())
            CloseHandle(handle);
        handle = opened;
        SetLastError(saved);
    }
    [[nodiscard]] HANDLE get() const noexcept { return handle; }
    [[nodiscard]] bool isOpen() const noexcept { return handle != INVALID_HANDLE_VALUE; }

private:
    HANDLE handle;
};

bool hasZero(const std::string& path) noexcept {
    if (path.find('\0') == std::string::npos)
        return false;
    SetLastError(ERROR_INVALID_NAME);
    return true;
}

bool isThereNot(DWORD error) noexcept {
    return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
}

/// Whether somebody else's handle may be what stands in the way, so that waiting helps.
bool mayPass(DWORD error) noexcept {
    return error == ERROR_SHARING_VIOLATION || error == ERROR_LOCK_VIOLATION || error == ERROR_ACCESS_DENIED;
}

/// Somebody has it open and shares no deletion, or there is no right to delete it: what the system calls "access
/// denied" may be either.
bool isOpenElsewhere(const std::wstring& path) noexcept {
    const Handle file(CreateFileW(path.c_str(), DELETE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                  OPEN_EXISTING, 0, nullptr));
    return !file.isOpen() && GetLastError() == ERROR_SHARING_VIOLATION;
}

class HeldFile final : public FileLock {
public:
    Handle file; ///< shared with nobody, and gone when it is closed
    bool found = false;
};

class PartFile final : public NewFile {
public:
    std::string part;
    std::wstring widePart;
    Handle file; ///< not to be deleted while it is open, so that nobody takes it for left over
    bool taken = false;
};

const PartFile& self(const NewFile* file) noexcept { return *static_cast<const PartFile*>(file); }
PartFile& self(NewFile* file) noexcept { return *static_cast<PartFile*>(file); }

bool writeAll(HANDLE file, const char* bytes, std::size_t size, std::uint64_t position) noexcept {
    while (size > 0) {
        OVERLAPPED place{};
        place.Offset = static_cast<DWORD>(position);
        place.OffsetHigh = static_cast<DWORD>(position >> 32);
        const auto count = static_cast<DWORD>(std::min<std::size_t>(size, 1U << 30));
        DWORD written = 0;
        if (WriteFile(file, bytes, count, &written, &place) == 0)
            return false;
        if (written == 0) {
            SetLastError(ERROR_DISK_FULL);
            return false;
        }
        bytes += written;
        size -= written;
        position += written;
    }
    return true;
}

/// Who may do what with a file; empty when it has no such list.
std::vector<unsigned char> accessListOf(const std::string& path) {
    const std::wstring wide = utf8ToWideOrWidened(path);
    DWORD size = 0;
    GetFileSecurityW(wide.c_str(), DACL_SECURITY_INFORMATION, nullptr, 0, &size);
    std::vector<unsigned char> list(size);
    if (size == 0 || GetFileSecurityW(wide.c_str(), DACL_SECURITY_INFORMATION, list.data(), size, &size) == 0)
        list.clear();
    return list;
}

} // namespace

FileKind fileKind(const std::string& path) {
    if (hasZero(path))
        return FileKind::Unknown;
    const std::wstring wide = utf8ToWideOrWidened(path);
    const Handle file(
        CreateFileW(wide.c_str(), 0, everybody, nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    if (!file.isOpen()) {
        const DWORD error = GetLastError();
        if (isThereNot(error))
            return GetFileAttributesW(wide.c_str()) == INVALID_FILE_ATTRIBUTES ? FileKind::Missing
                                                                               : FileKind::DeadLink;
        return FileKind::Unknown;
    }
    const DWORD type = GetFileType(file.get());
    if (type != FILE_TYPE_DISK)
        return type == FILE_TYPE_PIPE ? FileKind::Pipe : FileKind::Device;
    BY_HANDLE_FILE_INFORMATION about{};
    if (GetFileInformationByHandle(file.get(), &about) == 0)
        return FileKind::Device; // what the system opens as a disk, but has nothing of a file
    return (about.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ? FileKind::Directory : FileKind::Regular;
}

FileTrouble lastFileTrouble() noexcept {
    switch (GetLastError()) {
    case ERROR_ACCESS_DENIED:
    case ERROR_WRITE_PROTECT:
    case ERROR_PRIVILEGE_NOT_HELD:
        return FileTrouble::Permission;
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
        return FileTrouble::InUse;
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
    case ERROR_FILE_TOO_LARGE:
        return FileTrouble::Full;
    case ERROR_ALREADY_EXISTS:
    case ERROR_FILE_EXISTS:
        return FileTrouble::Exists;
    default:
        return FileTrouble::Other;
    }
}

FileLock* FileLock::create(const std::string& path, unsigned long milliseconds) {
    if (hasZero(path))
        return nullptr;
    // Beside the file: one that is open itself could not be replaced. The lock is a file that exists as long as it is held,
    // and which the system deletes with its holder.
    const std::wstring wide = utf8ToWideOrWidened(path);
    const std::wstring name = wide + L".lock";
    auto lock = std::make_unique<HeldFile>();
    const ULONGLONG end = GetTickCount64() + milliseconds;
    for (;;) {
        lock->file.reset(CreateFileW(
            name.c_str(), GENERIC_WRITE | DELETE, 0, nullptr, OPEN_ALWAYS,
            FILE_ATTRIBUTE_HIDDEN | FILE_FLAG_DELETE_ON_CLOSE | FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
        if (lock->file.isOpen()) {
            lock->found = GetFileAttributesW(wide.c_str()) != INVALID_FILE_ATTRIBUTES;
            return lock.release();
        }
        const DWORD error = GetLastError();
        if (!mayPass(error) || GetTickCount64() >= end)
            return nullptr;
        Sleep(lookMilliseconds);
        SetLastError(error);
    }
}

void FileLock::destroy(FileLock* lock) noexcept { delete static_cast<HeldFile*>(lock); }

bool FileLock::found() const noexcept { return static_cast<const HeldFile*>(this)->found; }

NewFile* NewFile::create(const std::string& path, const std::string& like) {
    if (hasZero(path))
        return nullptr;
    auto part = std::make_unique<PartFile>();
    std::vector<unsigned char> list = like.empty() ? std::vector<unsigned char>() : accessListOf(like);
    SECURITY_ATTRIBUTES rights{sizeof rights, list.data(), FALSE};
    std::random_device random;
    for (;;) {
        part->part = PartName::make(path, random(), random());
        part->widePart = utf8ToWideOrWidened(part->part);
        part->file.reset(CreateFileW(part->widePart.c_str(), GENERIC_READ | GENERIC_WRITE,
                                     FILE_SHARE_READ | FILE_SHARE_WRITE, list.empty() ? nullptr : &rights,
                                     CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
        if (part->file.isOpen())
            return part.release();
        if (GetLastError() != ERROR_FILE_EXISTS)
            return nullptr;
    }
}

void NewFile::destroy(NewFile* file) noexcept {
    auto* part = static_cast<PartFile*>(file);
    if (part) {
        const DWORD saved = GetLastError();
        part->file.reset(INVALID_HANDLE_VALUE);
        if (!part->taken)
            DeleteFileW(part->widePart.c_str());
        SetLastError(saved);
    }
    delete part;
}

const std::string& NewFile::partPath() const noexcept { return self(this).part; }

bool NewFile::append(const void* data, std::size_t size) noexcept {
    return writeAll(self(this).file.get(), static_cast<const char*>(data), size, this->size());
}

bool NewFile::patch(std::uint64_t position, const void* data, std::size_t size) noexcept {
    return writeAll(self(this).file.get(), static_cast<const char*>(data), size, position);
}

bool NewFile::resize(std::uint64_t size) noexcept {
    LARGE_INTEGER end{};
    end.QuadPart = static_cast<LONGLONG>(size);
    return SetFilePointerEx(self(this).file.get(), end, nullptr, FILE_BEGIN) != 0 &&
           SetEndOfFile(self(this).file.get()) != 0;
}

std::uint64_t NewFile::size() const noexcept {
    LARGE_INTEGER now{};
    return GetFileSizeEx(self(this).file.get(), &now) != 0 ? static_cast<std::uint64_t>(now.QuadPart) : 0;
}

bool NewFile::take(const std::string& path, bool replaces, unsigned long milliseconds) {
    PartFile& part = self(this);
    if (part.taken || hasZero(path))
        return part.taken;
    if (part.file.isOpen() && FlushFileBuffers(part.file.get()) == 0)
        return false;
    part.file.reset(INVALID_HANDLE_VALUE); // an open file is not renamed
    const std::wstring wide = utf8ToWideOrWidened(path);
    const DWORD how = MOVEFILE_WRITE_THROUGH | (replaces ? MOVEFILE_REPLACE_EXISTING : 0U);
    const ULONGLONG end = GetTickCount64() + milliseconds;
    for (;;) {
        part.taken = MoveFileExW(part.widePart.c_str(), wide.c_str(), how) != 0;
        const DWORD error = GetLastError();
        if (part.taken)
            return true;
        if (!replaces || !mayPass(error) || GetTickCount64() >= end) {
            SetLastError(mayPass(error) && isOpenElsewhere(wide) ? DWORD{ERROR_SHARING_VIOLATION} : error);
            return false;
        }
        Sleep(lookMilliseconds);
    }
}

bool removeLeftParts(const std::string& path) {
    const std::size_t separator = path.find_last_of("/\\");
    const std::wstring directory =
        utf8ToWideOrWidened(separator == std::string::npos ? "" : path.substr(0, separator + 1));
    const std::wstring pattern = utf8ToWideOrWidened(path) + L".*.part";
    WIN32_FIND_DATAW entry{};
    HANDLE search = FindFirstFileW(pattern.c_str(), &entry);
    if (search == INVALID_HANDLE_VALUE)
        return false;
    bool isWritten = false;
    do {
        if ((entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0 &&
            PartName::isOf(path, wideToUtf8OrNarrowed(entry.cFileName)) &&
            DeleteFileW((directory + entry.cFileName).c_str()) == 0) // one that is being written cannot be
            isWritten = isWritten || GetLastError() == ERROR_SHARING_VIOLATION;
    } while (FindNextFileW(search, &entry) != 0);
    FindClose(search);
    return isWritten;
}

} // namespace Zentara::Utils::Platform
