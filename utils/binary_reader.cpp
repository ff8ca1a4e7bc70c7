#include <zentara/utils/binary_reader.h>

#include <bit>
#include <cstring>

#include <zentara/utils/exceptions.h>

namespace Zentara::Utils {

static_assert(std::endian::native == std::endian::little,
              "values are copied in the processor's own byte order");

BinaryReader::BinaryReader(const void* bytes, int count)
    : data(static_cast<const unsigned char*>(bytes)), position(0), size(bytes && count > 0 ? count : 0) {}

void BinaryReader::read(void* destination, int count) {
    if (count < 0 || count > size - position)
        throw UIOException("unexpected end of stream");
    if (count == 0)
        return; // either pointer may be null then, which memcpy must not see
    std::memcpy(destination, data + position, static_cast<std::size_t>(count));
    position += count;
}

template<typename T>
T BinaryReader::readValue() {
    T value{};
    read(&value, sizeof value);
    return value;
}

signed char BinaryReader::readByte() { return readValue<signed char>(); }
unsigned char BinaryReader::readUByte() { return readValue<unsigned char>(); }
bool BinaryReader::readBool() { return readUByte() != 0; }
short BinaryReader::readShort() { return readValue<short>(); }
unsigned short BinaryReader::readUShort() { return readValue<unsigned short>(); }
int BinaryReader::readInt() { return readValue<int>(); }
unsigned int BinaryReader::readUInt() { return readValue<unsigned int>(); }
std::int64_t BinaryReader::readLong() { return readValue<std::int64_t>(); }
std::uint64_t BinaryReader::readULong() { return readValue<std::uint64_t>(); }
float BinaryReader::readFloat() { return readValue<float>(); }

std::string BinaryReader::readString() {
    const int length = readInt();
    if (length < 0 || length > size - position)
        throw UIOException("unexpected end of stream");
    // Only now memory: the length was stored by somebody else.
    std::string text(static_cast<std::size_t>(length), '\0');
    read(text.data(), length);
    return text;
}

/// The vector grows with what is really there: a stored count is not to be trusted with memory.
template<typename T>
std::vector<T> BinaryReader::readArray(T (BinaryReader::*readElement)()) {
    std::vector<T> values;
    for (int remaining = readInt(); remaining > 0; --remaining)
        values.push_back((this->*readElement)());
    return values;
}

std::vector<signed char> BinaryReader::readBytes() { return readArray(&BinaryReader::readByte); }
std::vector<unsigned char> BinaryReader::readUBytes() { return readArray(&BinaryReader::readUByte); }
std::vector<bool> BinaryReader::readBools() { return readArray(&BinaryReader::readBool); }
std::vector<short> BinaryReader::readShorts() { return readArray(&BinaryReader::readShort); }
std::vector<unsigned short> BinaryReader::readUShorts() { return readArray(&BinaryReader::readUShort); }
std::vector<int> BinaryReader::readInts() { return readArray(&BinaryReader::readInt); }
std::vector<unsigned int> BinaryReader::readUInts() { return readArray(&BinaryReader::readUInt); }
std::vector<std::int64_t> BinaryReader::readLongs() { return readArray(&BinaryReader::readLong); }
std::vector<std::uint64_t> BinaryReader::readULongs() { return readArray(&BinaryReader::readULong); }
std::vector<float> BinaryReader::readFloats() { return readArray(&BinaryReader::readFloat); }
std::vector<std::string> BinaryReader::readStrings() { return readArray(&BinaryReader::readString); }

} // namespace Zentara::Utils
