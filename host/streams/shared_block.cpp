#include "host/streams/shared_block.h"

#include <cstring>
#include <map>
#include <new>
#include <utility>

#include <zentara/host/failure.h>
#include <zentara/utils/format.h>
#include <zentara/utils/mutex.h>
#include <zentara/utils/shared_memory_manager.h>

namespace Zentara::Host {

using Utils::SharedMemoryManager;
using Utils::Threading::AutoLock;

namespace {

static_assert(std::atomic_ref<std::uint64_t>::is_always_lock_free, "a lock would be the process's own");

Utils::Threading::Mutex
    usersLock; ///< held while memory is mapped and let go: nobody gets what is just being let go
std::map<std::string, std::size_t> users ZENTARA_GUARDED_BY(usersLock); ///< of this process, by name

} // namespace

SharedBlock::SharedBlock(std::string wanted, std::size_t bytes) : name(std::move(wanted)), size(bytes) {
    const AutoLock hold(usersLock);
    try {
        first =
            static_cast<std::uint64_t*>(SharedMemoryManager::get(name, 0, static_cast<unsigned int>(size)));
        ++users[name];
        SharedMemoryManager::incref(); // or another part of the program might let go of all
    } catch (const std::bad_alloc&) {
        throw Failure(Failure::Failed, Utils::Format("cannot share % bytes of memory") % size,
                      "the system has none, or another user has memory of that name");
    }
}

SharedBlock::~SharedBlock() {
    const AutoLock hold(usersLock);
    const auto mine = users.find(name);
    if (--mine->second == 0) {
        SharedMemoryManager::release(name);
        users.erase(mine);
    }
    SharedMemoryManager::decref();
}

void SharedBlock::write(std::size_t index, const std::byte* bytes, std::size_t count) const noexcept {
    for (; count != 0; ++index) {
        const std::size_t part = count < wordBytes ? count : wordBytes;
        std::uint64_t value = 0;
        std::memcpy(&value, bytes, part);
        word(index).store(value, std::memory_order_release);
        bytes += part;
        count -= part;
    }
}

void SharedBlock::read(std::size_t index, std::byte* bytes, std::size_t count) const noexcept {
    for (; count != 0; ++index) {
        const std::size_t part = count < wordBytes ? count : wordBytes;
        const std::uint64_t value = word(index).load(std::memory_order_acquire);
        std::memcpy(bytes, &value, part);
        bytes += part;
        count -= part;
    }
}

} // namespace Zentara::Host
