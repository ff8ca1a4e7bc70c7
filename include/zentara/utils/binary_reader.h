#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include <zentara/export.h>

namespace Zentara::Utils {

/// Reads back what a BinaryWriter wrote: little-endian values without padding or type tags.
/// A view: the bytes are not owned and must outlive it; a copy is an independent view at the same position.
/// Every read throws UIOException "unexpected end of stream" if the bytes do not suffice; one that finds no memory leaves
/// the position where it was. Separate.
class ZENTARA_API BinaryReader {
public:
    /// \param data  first byte; null means no bytes.
    /// \param size  number of bytes; negative means none.
    BinaryReader(const void* data, int size);

    /// Copies `count` bytes and advances. When they are not there, or the count is negative, the position
    /// stays and nothing is copied.
    void read(void* destination, int count);
    /// One number, of as many bytes as its type has.
    signed char readByte();
    unsigned char readUByte();
    /// Any byte other than 0 is true.
    bool readBool();
    short readShort();
    unsigned short readUShort();
    int readInt();
    unsigned int readUInt();
    std::int64_t readLong();
    std::uint64_t readULong();
    float readFloat();
    /// A signed 32-bit length, then that many bytes. A negative length fails as a missing byte does.
    std::string readString();

    /// A signed 32-bit count, then the elements one by one. A count of zero or less gives an empty vector.
    std::vector<signed char> readBytes();
    std::vector<unsigned char> readUBytes();
    std::vector<bool> readBools();
    std::vector<short> readShorts();
    std::vector<unsigned short> readUShorts();
    std::vector<int> readInts();
    std::vector<unsigned int> readUInts();
    std::vector<std::int64_t> readLongs();
    std::vector<std::uint64_t> readULongs();
    std::vector<float> readFloats();
    std::vector<std::string> readStrings();

private:
    template<typename T>
    T readValue() {
        if (size - position < static_cast<std::int32_t>(sizeof(T)))
            throwAtEnd();
        T value;
        std::memcpy(&value, data + position, sizeof value);
        position += static_cast<std::int32_t>(sizeof value);
        return value;
    }
    [[noreturn]] static void throwAtEnd();
    template<typename T>
    std::vector<T> readArray();

    const unsigned char* data; ///< not owned
    std::int32_t position;     ///< 0 to size
    std::int32_t size;         ///< bytes; never negative
};

#if !defined(ZENTARA_BUILDING_LIBRARY)
// A program has no call for a single value: the position stays in a register from one to the next. The library exports
// the same operations.
inline signed char BinaryReader::readByte() { return readValue<signed char>(); }
inline unsigned char BinaryReader::readUByte() { return readValue<unsigned char>(); }
inline short BinaryReader::readShort() { return readValue<short>(); }
inline unsigned short BinaryReader::readUShort() { return readValue<unsigned short>(); }
inline int BinaryReader::readInt() { return readValue<int>(); }
inline unsigned int BinaryReader::readUInt() { return readValue<unsigned int>(); }
inline std::int64_t BinaryReader::readLong() { return readValue<std::int64_t>(); }
inline std::uint64_t BinaryReader::readULong() { return readValue<std::uint64_t>(); }
inline float BinaryReader::readFloat() { return readValue<float>(); }
inline bool BinaryReader::readBool() { return readUByte() != 0; }
#endif

} // namespace Zentara::Utils
