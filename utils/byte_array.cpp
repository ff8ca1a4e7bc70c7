#include <zentara/utils/byte_array.h>

#include <atomic>
#include <cstddef>
#include <cstring>
#include <memory>
#include <new>

namespace Zentara::Utils {

namespace {

struct Behind {
    std::size_t size;
};

} // namespace

struct ByteArray::Block {
    /// Bytes that came from elsewhere.
    Block(std::unique_ptr<unsigned char[]> owned, int count)
        : elsewhere(std::move(owned)), bytes(elsewhere.get()), size(bytes && count > 0 ? count : 0) {}
    /// A copy, which stands behind the block in the same memory.
    Block(const void* source, Behind behind)
        : bytes(reinterpret_cast<unsigned char*>(this + 1) + lead), size(static_cast<int>(behind.size)) {
        std::memcpy(bytes, source, behind.size);
    }

    /// An array behind its count, the most that is copied, is copied faster to where it is aligned.
    static constexpr std::size_t lead = 4;

    static void* operator new(std::size_t size) { return ::operator new(size); }
    static void* operator new(std::size_t size, Behind behind) {
        return ::operator new(size + lead + behind.size);
    }
    static void operator delete(void* block) noexcept { ::operator delete(block); }
    static void operator delete(void* block, Behind) noexcept { ::operator delete(block); }

    const std::unique_ptr<unsigned char[]> elsewhere; ///< null for bytes behind the block
    unsigned char* const bytes;                       ///< may be null, and then size is 0
    const int size;
    std::atomic<int> holders{1}; ///< arrays that share it
};

ByteArray::ByteArray() : block(nullptr) {}

ByteArray::ByteArray(unsigned char* data, int size) {
    // Owned before anything can fail: the caller has given the bytes away.
    std::unique_ptr<unsigned char[]> owned(data);
    block = new Block(std::move(owned), size);
}

ByteArray ByteArray::copyOf(const void* data, std::size_t size) {
    const Behind behind{size};
    ByteArray copy;
    copy.block = new (behind) Block(data, behind);
    return copy;
}

ByteArray::ByteArray(const ByteArray& other) : block(other.block) {
    if (block)
        block->holders.fetch_add(1, std::memory_order_relaxed);
}

// Releasing comes first also when the array is assigned to itself: the last holder then loses its bytes.
ByteArray& ByteArray::operator=(const ByteArray& other) {
    Block* shared = other.block;
    if (drop(block) && shared == block)
        shared = nullptr;
    block = shared;
    if (block)
        block->holders.fetch_add(1, std::memory_order_relaxed);
    return *this;
}

ByteArray::~ByteArray() { drop(block); }

unsigned char* ByteArray::data() const { return block ? block->bytes : nullptr; }

int ByteArray::size() const { return block ? block->size : 0; }

/// True when the block was freed.
bool ByteArray::drop(Block* block) {
    if (!block)
        return false;
    // The only holder needs no atomic subtraction: nobody is left who could share the block meanwhile.
    if (block->holders.load(std::memory_order_acquire) != 1 &&
        block->holders.fetch_sub(1, std::memory_order_acq_rel) != 1)
        return false;
    delete block;
    return true;
}

} // namespace Zentara::Utils
