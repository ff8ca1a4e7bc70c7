#include "utils/platform/new_file.h"

#include <cerrno>
#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <random>
#include <sys/file.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include "utils/platform/part_name.h"

namespace Zentara::Utils::Platform {

namespace {

constexpr long lookNanoseconds = 5'000'000;
constexpr mode_t anybody = 0666;

class Descriptor {
public:
    explicit Descriptor(int opened = -1) noexcept : number(opened) {}
    ~Descriptor() { reset(-1); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    void reset(int opened) noexcept {
        const int saved = errno;
        if (number >= 0)
            close(number);
        number = opened;
        errno = saved;
    }
    [[nodiscard]] int get() const noexcept { return number; }
    [[nodiscard]] bool isOpen() const noexcept { return number >= 0; }

private:
    int number;
};

bool hasZero(const std::string& path) noexcept {
    if (path.find('\0') == std::string::npos)
        return false;
    errno = EINVAL;
    return true;
}

/// Whether the path leads to the open file.
bool isAt(const std::string& path, int file) noexcept {
    struct stat opened {};
    struct stat named {};
    return fstat(file, &opened) == 0 && stat(path.c_str(), &named) == 0 && opened.st_ino == named.st_ino &&
           opened.st_dev == named.st_dev;
}

std::string directoryOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? "." : path.substr(0, slash + 1);
}

long monotonicMilliseconds() noexcept {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<long>(now.tv_sec * 1000 + now.tv_nsec / 1'000'000);
}

class HeldFile final : public FileLock {
public:
    Descriptor file; ///< not open where there is no file
};

class PartFile final : public NewFile {
public:
    std::string part;
    Descriptor file; ///< locked while it is written, so that nobody takes it for left over
    bool taken = false;
    mode_t mode = anybody; ///< to have in the end
    bool isLike = false;   ///< of another file
    gid_t group = 0;
};

const PartFile& self(const NewFile* file) noexcept { return *static_cast<const PartFile*>(file); }
PartFile& self(NewFile* file) noexcept { return *static_cast<PartFile*>(file); }

bool writeAll(int file, const char* bytes, std::size_t size, off_t position) noexcept {
    while (size > 0) {
        const ssize_t count = pwrite(file, bytes, size, position);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0) {
            if (count == 0)
                errno = ENOSPC;
            return false;
        }
        bytes += count;
        size -= static_cast<std::size_t>(count);
        position += count;
    }
    return true;
}

/// Gives a part the owner's group and the rights of the file that it is like, or less where that cannot be had.
bool makeAlike(const PartFile& part) noexcept {
    if (!part.isLike)
        return true;
    mode_t mode = part.mode;
    struct stat made {};
    if (fstat(part.file.get(), &made) != 0)
        return false;
    if (made.st_gid != part.group && fchown(part.file.get(), static_cast<uid_t>(-1), part.group) != 0)
        mode &= ~static_cast<mode_t>(S_IRWXG) | ((mode & S_IRWXO) << 3);
    return fchmod(part.file.get(), mode) == 0;
}

/// Renames, but never over a file: a second name is refused where one is.
bool renameToNew(const std::string& part, const std::string& path) noexcept {
    if (link(part.c_str(), path.c_str()) == 0)
        return unlink(part.c_str()) == 0;
    if (errno != EPERM && errno != ENOTSUP && errno != ENOSYS)
        return false;
    struct stat there {}; // a file system without second names
    if (lstat(path.c_str(), &there) != 0)
        return rename(part.c_str(), path.c_str()) == 0;
    errno = EEXIST;
    return false;
}

} // namespace

FileKind fileKind(const std::string& path) {
    if (hasZero(path))
        return FileKind::Unknown;
    struct stat there {};
    if (stat(path.c_str(), &there) != 0) {
        if (errno != ENOENT && errno != ENOTDIR)
            return FileKind::Unknown;
        return lstat(path.c_str(), &there) == 0 ? FileKind::DeadLink : FileKind::Missing;
    }
    if (S_ISREG(there.st_mode))
        return FileKind::Regular;
    if (S_ISDIR(there.st_mode))
        return FileKind::Directory;
    return S_ISFIFO(there.st_mode) ? FileKind::Pipe : FileKind::Device;
}

FileTrouble lastFileTrouble() noexcept {
    switch (errno) {
    case EACCES:
    case EPERM:
    case EROFS:
        return FileTrouble::Permission;
    case EWOULDBLOCK:
    case EBUSY:
    case ETXTBSY:
        return FileTrouble::InUse;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
        return FileTrouble::Full;
    case EEXIST:
        return FileTrouble::Exists;
    default:
        return FileTrouble::Other;
    }
}

FileLock* FileLock::create(const std::string& path, unsigned long milliseconds) {
    if (hasZero(path))
        return nullptr;
    auto lock = std::make_unique<HeldFile>();
    const long end = monotonicMilliseconds() + static_cast<long>(milliseconds);
    for (;;) {
        lock->file.reset(open(path.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC));
        if (!lock->file.isOpen())
            return errno == ENOENT ? lock.release() : nullptr;
        if (flock(lock->file.get(), LOCK_EX | LOCK_NB) == 0) {
            if (isAt(path, lock->file.get()))
                return lock.release();
            // It was replaced while we came: the right goes with the file that is there now.
        } else if (errno != EWOULDBLOCK && errno != EINTR) {
            return nullptr;
        }
        if (monotonicMilliseconds() >= end) {
            lock->file.reset(-1);
            errno = EWOULDBLOCK;
            return nullptr;
        }
        const timespec pause{0, lookNanoseconds};
        nanosleep(&pause, nullptr);
    }
}

void FileLock::destroy(FileLock* lock) noexcept { delete static_cast<HeldFile*>(lock); }

bool FileLock::found() const noexcept { return static_cast<const HeldFile*>(this)->file.isOpen(); }

NewFile* NewFile::create(const std::string& path, const std::string& like) {
    if (hasZero(path))
        return nullptr;
    auto part = std::make_unique<PartFile>();
    struct stat model {};
    if (!like.empty() && stat(like.c_str(), &model) == 0 && S_ISREG(model.st_mode)) {
        part->isLike = true;
        part->mode = model.st_mode & static_cast<mode_t>(S_IRWXU | S_IRWXG | S_IRWXO);
        part->group = model.st_gid;
    }
    std::random_device random;
    for (;;) {
        part->part = PartName::make(path, random(), random());
        const mode_t first = part->isLike ? part->mode & static_cast<mode_t>(S_IRWXU) : anybody;
        part->file.reset(open(part->part.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, first));
        if (!part->file.isOpen()) {
            if (errno == EEXIST)
                continue;
            return nullptr;
        }
        // Somebody who clears what was left may have had it in hand before it was locked, and have removed it.
        struct stat made {};
        if (flock(part->file.get(), LOCK_EX) == 0 && fstat(part->file.get(), &made) == 0 &&
            made.st_nlink == 0)
            continue;
        return part.release();
    }
}

void NewFile::destroy(NewFile* file) noexcept {
    auto* part = static_cast<PartFile*>(file);
    const int saved = errno;
    if (part && !part->taken)
        unlink(part->part.c_str());
    delete part;
    errno = saved;
}

const std::string& NewFile::partPath() const noexcept { return self(this).part; }

bool NewFile::append(const void* data, std::size_t size) noexcept {
    return writeAll(self(this).file.get(), static_cast<const char*>(data), size,
                    static_cast<off_t>(this->size()));
}

bool NewFile::patch(std::uint64_t position, const void* data, std::size_t size) noexcept {
    return writeAll(self(this).file.get(), static_cast<const char*>(data), size,
                    static_cast<off_t>(position));
}

bool NewFile::resize(std::uint64_t size) noexcept {
    return ftruncate(self(this).file.get(), static_cast<off_t>(size)) == 0;
}

std::uint64_t NewFile::size() const noexcept {
    struct stat now {};
    return fstat(self(this).file.get(), &now) == 0 ? static_cast<std::uint64_t>(now.st_size) : 0;
}

bool NewFile::take(const std::string& path, bool replaces, unsigned long) {
    PartFile& part = self(this);
    if (part.taken || hasZero(path))
        return part.taken;
    if (fsync(part.file.get()) != 0 || !makeAlike(part))
        return false;
    // Had before anything changes: what follows needs no memory.
    const Descriptor directory(open(directoryOf(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    const bool renamed =
        replaces ? rename(part.part.c_str(), path.c_str()) == 0 : renameToNew(part.part, path);
    if (!renamed)
        return false;
    part.taken = true; // it stays open, and so locked: the right to the old file has become one to this
    // The new name is on disk once its directory is. The files have changed places: no failure to report.
    if (directory.isOpen())
        fsync(directory.get());
    return true;
}

bool removeLeftParts(const std::string& path) {
    bool isWritten = false;
    const std::string directory = directoryOf(path);
    const std::unique_ptr<DIR, int (*)(DIR*)> list(opendir(directory.c_str()), closedir);
    while (const dirent* entry = list ? readdir(list.get()) : nullptr) {
        if (!PartName::isOf(path, entry->d_name))
            continue;
        const std::string left = directory == "." ? entry->d_name : directory + entry->d_name;
        const Descriptor file(open(left.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
        struct stat there {};
        if (!file.isOpen() || fstat(file.get(), &there) != 0 || !S_ISREG(there.st_mode))
            continue;
        if (flock(file.get(), LOCK_EX | LOCK_NB) == 0)
            unlink(left.c_str());
        else if (errno == EWOULDBLOCK && isAt(left, file.get()))
            isWritten = true;
    }
    return isWritten;
}

} // namespace Zentara::Utils::Platform
