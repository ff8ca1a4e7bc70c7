#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <zentara/export.h>

namespace Zentara::Utils {

/// Reads back what a BinaryWriter wrote: little-endian values without padding or type tags.
/// A view: the bytes are not owned and must outlive it; a copy is an independent view at the same position.
/// Every read throws UIOException "unexpected end of stream" if the bytes do not suffice. Separate.
class ZENTARA_API BinaryReader {
public:
    /// \param data  first byte; null means no bytes.
    /// \param size  number of bytes; negative means none.
    BinaryReader(const void* data, int size);

    /// Copies `count` bytes and advances. When they are not there, or the count is negative, the position
    /// stays and nothing is copied.
    void read(void* destination, int count);

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
    T readValue();
    template<typename T>
    std::vector<T> readArray(T (BinaryReader::*readElement)());

    const unsigned char* data; ///< not owned
    std::int32_t position;     ///< 0 to size
    std::int32_t size;         ///< bytes; never negative
};

} // namespace Zentara::Utils
