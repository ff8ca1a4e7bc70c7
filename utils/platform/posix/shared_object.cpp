#include "utils/platform/posix/shared_object.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Zentara::Utils::Platform {

namespace {

constexpr off_t gate = 0;
constexpr off_t membership = 1;

bool lockByte(int file, int command, short kind, off_t byte) {
    struct flock range {};
    range.l_type = kind;
    range.l_whence = SEEK_SET;
    range.l_start = byte;
    range.l_len = 1;
    int result = 0;
    do {
        result = fcntl(file, command, &range);
    } while (result == -1 && errno == EINTR);
    return result == 0;
}

bool waitForGate(int file) { return lockByte(file, F_OFD_SETLKW, F_WRLCK, gate); }
bool isAlone(int file) { return lockByte(file, F_OFD_SETLK, F_WRLCK, membership); }
bool join(int file) { return lockByte(file, F_OFD_SETLK, F_RDLCK, membership); }

/// A name that was unlinked between opening it and passing the gate leads to an object nobody else will find.
bool isCurrent(int file) {
    struct stat held {};
    return fstat(file, &held) == 0 && held.st_nlink != 0;
}

} // namespace

bool SharedObject::open(const std::string& objectName) {
    name = objectName;
    Attempt attempt = Attempt::replaced;
    while (attempt == Attempt::replaced) {
        attempt = tryOpen();
        if (attempt != Attempt::opened && file != -1) {
            ::close(file);
            file = -1;
        }
    }
    return attempt == Attempt::opened;
}

SharedObject::Attempt SharedObject::tryOpen() {
    file = shm_open(name.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (file == -1 || !waitForGate(file))
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

void SharedObject::openGate() { lockByte(file, F_OFD_SETLK, F_UNLCK, gate); }

void SharedObject::close() {
    if (file == -1)
        return;
    if (waitForGate(file) && isAlone(file) && isCurrent(file))
        shm_unlink(name.c_str());
    ::close(file);
    file = -1;
}

void SharedObject::unlink() {
    if (waitForGate(file) && isCurrent(file))
        shm_unlink(name.c_str());
    openGate();
}

} // namespace Zentara::Utils::Platform
