#include "host/streams/frame_memory.h"

#include <new>

#include <zentara/host/failure.h>
#include <zentara/host/frame.h>
#include <zentara/utils/format.h>

#include "host/streams/rounded_up.h"

namespace Zentara::Host {

using Utils::Threading::AutoLock;

namespace {

/// Sizes are rounded up to this, so that a stream whose units differ a little finds blocks that fit.
constexpr std::size_t stepBytes = 4096;

constexpr std::size_t rounded(std::size_t bytes) noexcept { return roundedUp(bytes, stepBytes); }

/// A small frame in a large block would be a waste.
bool fits(const FrameData& block, std::size_t bytes) noexcept {
    return block.capacity >= bytes && block.capacity / 2 <= rounded(bytes);
}

} // namespace

FrameMemory& FrameMemory::instance() noexcept {
    // Never destroyed: a frame may be let go by another static object, when the process ends.
    static FrameMemory& memory = *new FrameMemory;
    return memory;
}

FrameData* FrameMemory::take(std::size_t bytes) noexcept {
    const std::size_t capacity = rounded(bytes);
    AutoLock hold(lock);
    for (FrameData** place = &kept; *place != nullptr; place = &(*place)->next) {
        FrameData* const block = *place;
        if (!fits(*block, bytes))
            continue;
        *place = block->next;
        block->uses.store(1, std::memory_order_relaxed);
        return block;
    }
    const std::size_t size = sizeof(FrameData) + capacity;
    // As differences, which cannot wrap.
    if (size > most || total > most - size)
        freeKept(); // they are of other sizes
    if (size > most || total > most - size)
        return nullptr;
    void* const place = ::operator new (size, std::align_val_t{alignof(FrameData)}, std::nothrow);
    if (place == nullptr)
        return nullptr;
    total += size;
    auto* const block = new (place) FrameData;
    block->capacity = capacity;
    return block;
}

bool FrameMemory::hasRoom(std::size_t bytes) const noexcept {
    const std::size_t size = sizeof(FrameData) + rounded(bytes);
    AutoLock hold(lock);
    std::size_t used = total;
    for (const FrameData* block = kept; block != nullptr; block = block->next) {
        if (fits(*block, bytes))
            return true;
        used -= sizeof(FrameData) + block->capacity; // take() gives them up
    }
    return size <= most && used <= most - size;
}

void FrameMemory::release(FrameData* block) noexcept {
    if (block == nullptr || block->uses.fetch_sub(1, std::memory_order_acq_rel) != 1)
        return;
    block->context.reset(); // before the lock: it may be the last of its stream
    AutoLock hold(lock);
    if (streams == 0 || total > most) { // the limit may have been lowered
        freeBlock(block);
        return;
    }
    block->next = kept;
    kept = block;
}

Failure FrameMemory::shortage(const std::string& what, std::size_t bytes) const {
    AutoLock hold(lock);
    return Failure(
        Failure::Failed, "cannot " + what,
        Utils::Format("its % bytes would exceed the limit of % for all frames of the process, of which "
                      "% are taken") %
            bytes % most % total,
        "let frames go, or raise the limit with setFrameMemoryLimit()");
}

void FrameMemory::streamOpens() noexcept {
    AutoLock hold(lock);
    ++streams;
}

void FrameMemory::streamEnds() noexcept {
    AutoLock hold(lock);
    if (--streams == 0)
        freeKept();
}

void FrameMemory::setLimit(std::size_t bytes) noexcept {
    AutoLock hold(lock);
    most = bytes;
}

std::size_t FrameMemory::limit() const noexcept {
    AutoLock hold(lock);
    return most;
}

std::size_t FrameMemory::taken() const noexcept {
    AutoLock hold(lock);
    return total;
}

void FrameMemory::freeKept() noexcept {
    while (kept != nullptr) {
        FrameData* const block = kept;
        kept = block->next;
        freeBlock(block);
    }
}

void FrameMemory::freeBlock(FrameData* block) noexcept {
    total -= sizeof(FrameData) + block->capacity;
    block->~FrameData();
    ::operator delete (static_cast<void*>(block), std::align_val_t{alignof(FrameData)});
}

std::size_t frameMemoryLimit() noexcept { return FrameMemory::instance().limit(); }

void setFrameMemoryLimit(std::size_t bytes) noexcept { FrameMemory::instance().setLimit(bytes); }

std::size_t frameMemoryTaken() noexcept { return FrameMemory::instance().taken(); }

} // namespace Zentara::Host
