#pragma once

#include <cstddef>

#include <zentara/export.h>

namespace Zentara::Utils {

/// Hands a finished buffer around by reference count. Copies share the bytes and may go to other threads: the
/// count is atomic, the bytes are not protected. Each single object: separate.
class ZENTARA_API ByteArray {
public:
    /// No bytes: data() is null, size() is 0.
    ByteArray();
    /// Takes ownership of `data`, which came from `new unsigned char[]`.
    ByteArray(unsigned char* data, int size);
    ByteArray(const ByteArray& other);
    /// Releases its bytes, then shares the other's. Assigned to itself while it is the last holder, it frees
    /// the bytes first and is left without any.
    ByteArray& operator=(const ByteArray& other);
    ~ByteArray();

    /// The shared bytes, lent as long as one of the arrays holds them; null without any.
    unsigned char* data() const;
    /// Bytes, as the constructor was told.
    int size() const;

private:
    friend class BinaryWriter;
    struct Block;

    /// \param size at most 2^31 - 1
    static ByteArray copyOf(const void* data, std::size_t size);
    static bool drop(Block* block);

    Block* block; ///< bytes and count, shared; null without any
};

} // namespace Zentara::Utils
