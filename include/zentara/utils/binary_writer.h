#pragma once

#include <concepts>
#include <cstdint>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include <zentara/export.h>
#include <zentara/utils/byte_array.h>

namespace Zentara::Utils {

/// Appends values to a growing byte buffer: little-endian, without padding or type tags. A `bool` takes one
/// byte, 1 or 0; a text is a signed 32-bit length and its bytes; a vector is a signed 32-bit count and its
/// elements. Nothing can fail except memory, and a text or vector of more than 2^31 - 1 elements, which
/// throws UInvalidOperationException; a write that throws has written nothing. Separate.
class ZENTARA_API BinaryWriter {
public:
    BinaryWriter();
    ~BinaryWriter();
    BinaryWriter(const BinaryWriter&) = delete;
    BinaryWriter& operator=(const BinaryWriter&) = delete;

    /// Raw bytes, without a length. A count of zero or less writes nothing.
    void write(const unsigned char* data, int count);
    /// One value.
    void write(signed char value);
    void write(unsigned char value);
    void write(bool value);
    void write(short value);
    void write(unsigned short value);
    void write(int value);
    void write(unsigned int value);
    void write(std::int64_t value);
    void write(std::uint64_t value);
    void write(float value);
    /// Up to the terminator; null is written as the empty text.
    void write(const char* value);
    void write(const std::string& value);

    /// The other 64-bit integer types of the system.
    template<std::integral T>
    requires(sizeof(T) == 8) void write(T value) {
        write(static_cast<std::conditional_t<std::is_signed_v<T>, std::int64_t, std::uint64_t>>(value));
    }
    /// A `char` or a pointer would silently become a number of another size.
    void write(char) = delete;
    template<typename T>
    void write(const T* pointer) = delete;
    /// The count, then each element as above.
    void write(const std::vector<signed char>& values);
    void write(const std::vector<unsigned char>& values);
    void write(const std::vector<bool>& values);
    void write(const std::vector<short>& values);
    void write(const std::vector<unsigned short>& values);
    void write(const std::vector<int>& values);
    void write(const std::vector<unsigned int>& values);
    void write(const std::vector<std::int64_t>& values);
    void write(const std::vector<std::uint64_t>& values);
    void write(const std::vector<float>& values);
    void write(const std::vector<const char*>& values);
    void write(const std::vector<std::string>& values);

    /// A new array with a copy of everything written, owned by the caller (`delete[]`), also when it is
    /// empty. \param size  receives its length in bytes; may be null.
    unsigned char* toBuffer(int* size) const;
    /// The same, owned by the byte array.
    ByteArray toByteArray() const;

private:
    struct Impl;

    std::unique_ptr<Impl> impl;
};

} // namespace Zentara::Utils
