#include "utils/platform/posix/shared_object.h"

#include "utils/platform/clock.h"
#include "utils/platform/thread.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <mutex>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Zentara::Utils::Platform {

namespace {

constexpr off_t gate = 0;
constexpr off_t membership = 1;

bool lockByte(int file, short kind, off_t byte) {
    struct flock range {};
    range.l_type = kind;
    range.l_whence = SEEK_SET;
    range.l_start = byte;
    range.l_len = 1;
    int result = 0;
    do {
        result = fcntl(file, F_OFD_SETLK, &range);
    } while (result == -1 && errno == EINTR);
    return result == 0;
}

bool isAlone(int file) { return lockByte(file, F_WRLCK, membership); }
bool join(int file) { return lockByte(file, F_RDLCK, membership); }

/// The system's own wait has no limit. The gate is held for some calls of the system, so it is tried again, first
/// at once and then every millisecond.
bool waitForGate(int file, unsigned long patience) {
    constexpr int triesAtOnce = 100;
    const std::int64_t start = monotonicMicroseconds();
    for (int tries = 1; !lockByte(file, F_WRLCK, gate); ++tries) {
        if (errno != EAGAIN && errno != EACCES)
            return false;
        if (monotonicMicroseconds() - start >= std::int64_t{1000} * static_cast<std::int64_t>(patience))
            return false;
        sleepMilliseconds(tries < triesAtOnce ? 0 : 1);
    }
    return true;
}

/// A name that was unlinked between opening it and passing the gate leads to an object nobody else will find.
bool isCurrent(int file) {
    struct stat held {};
    return fstat(file, &held) == 0 && held.st_nlink != 0;
}

/// The descriptors of all open objects. The child of a fork() closes them as it begins: their locks are its parent's as
/// well, and would outlive a parent that is killed. An object that is just being opened is missed.
class OpenFiles {
public:
    static OpenFiles& instance() {
        static OpenFiles& files =
            *new OpenFiles; // never destroyed, for threads may still run when the process ends
        return files;
    }

    void add(int* file) {
        const std::lock_guard hold(lock);
        files.push_back(file);
    }
    void close(int* file) {
        const std::lock_guard hold(lock);
        std::erase(files, file);
        closeOne(file);
    }

private:
    OpenFiles() {
        static_cast<void>(pthread_atfork([] { instance().lock.lock(); }, [] { instance().lock.unlock(); },
                                         [] { instance().beginChild(); }));
    }

    static void closeOne(int* file) {
        if (*file != -1)
            ::close(*file);
        *file = -1;
    }
    void beginChild() {
        std::for_each(files.begin(), files.end(), closeOne);
        lock.unlock();
    }

    std::mutex lock; ///< held while the process forks
    std::vector<int*> files;
};

/// Behind the gate, for whoever is opening the object just now waits there, and looks whether the name is current.
void removeIfAbandoned(const char* name) noexcept {
    const int file = shm_open(name, O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0);
    if (file == -1)
        return;
    struct stat status {};
    const bool ours = fstat(file, &status) == 0 && S_ISREG(status.st_mode) && status.st_uid == geteuid() &&
                      (status.st_mode & 0777) == (S_IRUSR | S_IWUSR);
    if (ours && lockByte(file, F_WRLCK, gate) && isAlone(file) && isCurrent(file))
        shm_unlink(name);
    ::close(file);
}

} // namespace

bool SharedObject::open(const std::string& objectName, unsigned long patience) {
    name = objectName;
    owner = currentProcessId();
    Attempt attempt = Attempt::replaced;
    while (attempt == Attempt::replaced) {
        attempt = tryOpen(patience);
        if (attempt != Attempt::opened && file != -1) {
            ::close(file);
            file = -1;
        }
    }
    if (attempt != Attempt::opened)
        return false;
    OpenFiles::instance().add(&file);
    return true;
}

SharedObject::Attempt SharedObject::tryOpen(unsigned long patience) {
    file = shm_open(name.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (file == -1 || !waitForGate(file, patience))
        return Attempt::failed;
    return isCurrent(file) ? becomeUser() : Attempt::replaced;
}

/// Behind the gate. An object with a size but without users was left by a killed process.
SharedObject::Attempt SharedObject::becomeUser() {
    inUse = !isAlone(file);
    struct stat status {};
    if (fstat(file, &status) != 0 || status.st_uid != geteuid())
        return Attempt::failed;
    if (!inUse && status.st_size != 0)
        return shm_unlink(name.c_str()) == 0 ? Attempt::replaced : Attempt::failed;
    return join(file) ? Attempt::opened : Attempt::failed;
}

void SharedObject::openGate() { lockByte(file, F_UNLCK, gate); }

void SharedObject::close() {
    leave();
    OpenFiles::instance().close(&file);
}

/// Of two processes that leave at the same time the second one is alone.
void SharedObject::leave(unsigned long patience) {
    if (file == -1 || owner != currentProcessId() || !waitForGate(file, patience))
        return;
    if (isAlone(file) && isCurrent(file))
        shm_unlink(name.c_str());
    lockByte(file, F_UNLCK, membership);
    openGate();
}

void SharedObject::sweep(std::string_view prefix, bool (*isOurs)(std::string_view)) noexcept {
    constexpr const char* place = "/dev/shm"; // where shm_open() keeps them
    DIR* const directory = opendir(place);
    while (const dirent* entry = directory ? readdir(directory) : nullptr) {
        const std::string_view name = entry->d_name;
        if (name.starts_with(prefix) && isOurs(name.substr(prefix.size())))
            removeIfAbandoned(entry->d_name);
    }
    if (directory)
        closedir(directory);
}

void SharedObject::unlink() {
    if (owner != currentProcessId())
        return;
    if (waitForGate(file, gatePatience) && isCurrent(file))
        shm_unlink(name.c_str());
    openGate();
}

} // namespace Zentara::Utils::Platform
