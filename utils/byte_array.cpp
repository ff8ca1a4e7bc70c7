#include <zentara/utils/byte_array.h>

#include <atomic>
#include <memory>

namespace Zentara::Utils {

struct ByteArray::Block {
    Block(std::unique_ptr<unsigned char[]> owned, int count)
        : bytes(std::move(owned)), size(bytes && count > 0 ? count : 0) {}

    const std::unique_ptr<unsigned char[]> bytes; ///< may be null, and then size is 0
    const int size;
    std::atomic<int> holders{1}; ///< arrays that share it
};

ByteArray::ByteArray() : block(nullptr) {}

ByteArray::ByteArray(unsigned char* data, int size) {
    // Owned before anything can fail: the caller has given the bytes away.
    std::unique_ptr<unsigned char[]> owned(data);
    block = new Block(std::move(owned), size);
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

unsigned char* ByteArray::data() const { return block ? block->bytes.get() : nullptr; }

int ByteArray::size() const { return block ? block->size : 0; }

/// True when the block was freed.
bool ByteArray::drop(Block* block) {
    if (!block || block->holders.fetch_sub(1, std::memory_order_acq_rel) != 1)
        return false;
    delete block;
    return true;
}

} // namespace Zentara::Utils
