#include "utils/platform/shared_memory.h"

#include "utils/platform/posix/shared_object.h"

#include <cerrno>
#include <limits>
#include <memory>
#include <string_view>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>

namespace Zentara::Utils::Platform {

namespace {

class PosixMapping final : public SharedMapping {
public:
    ~PosixMapping() {
        if (memory != MAP_FAILED)
            munmap(memory, length);
    }

    bool open(const std::string& name, std::size_t size, bool writable) {
        if (!object.open(name))
            return false;
        // Behind the gate, so that of two who come at once one sizes the memory and the other finds it sized.
        const bool sized = ensureSize(size);
        object.openGate();
        if (!sized)
            return false;
        length = size;
        memory = mmap(nullptr, size, writable ? PROT_READ | PROT_WRITE : PROT_READ, MAP_SHARED,
                      object.descriptor(), 0);
        return memory != MAP_FAILED;
    }

    SharedObject object;
    void* memory = MAP_FAILED;

private:
    /// The first user sizes the object, and with real memory: a promise the system cannot keep would end in a
    /// fault at the first access.
    bool ensureSize(std::size_t size) {
        struct stat status {};
        if (fstat(object.descriptor(), &status) != 0)
            return false;
        if (status.st_size != 0)
            return static_cast<std::size_t>(status.st_size) >= size;
        int result = 0;
        do {
            result = posix_fallocate(object.descriptor(), 0, static_cast<off_t>(size));
        } while (result == EINTR);
        return result == 0;
    }

    std::size_t length = 0;
};

bool isUsable(const std::string& name, std::size_t size) {
    const bool named =
        name.size() > 1 && name.find_first_of("/\\", 1) == std::string::npos && name[0] != '\\';
    return named && size > 0 && size <= static_cast<std::size_t>(std::numeric_limits<off_t>::max());
}

bool endsInNumber(std::string_view name) {
    const std::size_t digits = name.find_last_not_of("0123456789") + 1;
    return digits > 0 && digits < name.size() && name[digits - 1] == '_';
}

} // namespace

SharedMapping* SharedMapping::create(const std::string& name, std::size_t size, bool writable) {
    if (!isUsable(name, size))
        return nullptr;
    auto mapping = std::make_unique<PosixMapping>();
    return mapping->open(name, size, writable) ? mapping.release() : nullptr;
}

void SharedMapping::destroy(SharedMapping* mapping) noexcept { delete static_cast<PosixMapping*>(mapping); }

void* SharedMapping::address() const noexcept { return static_cast<const PosixMapping*>(this)->memory; }

bool SharedMapping::namesRemain() noexcept { return true; }

void SharedMapping::leave() noexcept { // The process ends: it does not wait long for others.
    static_cast<PosixMapping*>(this)->object.leave(500);
}

void SharedMapping::sweep(const std::string& prefix) noexcept {
    // Without a name it would look at what other programs have.
    const std::string_view bare = std::string_view(prefix).substr(prefix.starts_with('/') ? 1 : 0);
    if (!bare.empty())
        SharedObject::sweep(bare, endsInNumber);
}

void SharedMapping::unlink() noexcept { static_cast<PosixMapping*>(this)->object.unlink(); }

} // namespace Zentara::Utils::Platform
