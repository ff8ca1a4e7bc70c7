#include <zentara/utils/binary_reader.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <new>

#include <zentara/utils/exceptions.h>

namespace Zentara::Utils {

static_assert(std::endian::native == std::endian::little,
              "values are copied in the processor's own byte order");

namespace {

/// What finds no memory can be read again.
template<typename Read>
auto readOrStay(int& position, Read read) {
    const int before = position;
    try {
        return read();
    } catch (const std::bad_alloc&) {
        position = before;
        throw;
    }
}

} // namespace

BinaryReader::BinaryReader(const void* bytes, int count)
    : data(static_cast<const unsigned char*>(bytes)), position(0), size(bytes && count > 0 ? count : 0) {}

void BinaryReader::throwAtEnd() { throw UIOException("unexpected end of stream"); }

void BinaryReader::read(void* destination, int count) {
    if (count < 0 || count > size - position)
        throwAtEnd();
    if (count == 0)
        return; // either pointer may be null then, which memcpy must not see
    std::memcpy(destination, data + position, static_cast<std::size_t>(count));
    position += count;
}

signed char BinaryReader::readByte() { return readValue<signed char>(); }
unsigned char BinaryReader::readUByte() { return readValue<unsigned char>(); }
short BinaryReader::readShort() { return readValue<short>(); }
unsigned short BinaryReader::readUShort() { return readValue<unsigned short>(); }
int BinaryReader::readInt() { return readValue<int>(); }
unsigned int BinaryReader::readUInt() { return readValue<unsigned int>(); }
std::int64_t BinaryReader::readLong() { return readValue<std::int64_t>(); }
std::uint64_t BinaryReader::readULong() { return readValue<std::uint64_t>(); }
float BinaryReader::readFloat() { return readValue<float>(); }
bool BinaryReader::readBool() { return readUByte() != 0; }

std::string BinaryReader::readString() {
    return readOrStay(position, [this] {
        const int length = readValue<int>();
        if (length < 0 || length > size - position)
            throwAtEnd();
        // Only now memory: the length was stored by somebody else.
        std::string text(reinterpret_cast<const char*>(data) + position, static_cast<std::size_t>(length));
        position += length;
        return text;
    });
}

/// A stored count is not to be trusted with memory: where elements are missing, those that are there are passed over, as if
/// they had been read one by one, and nothing is reserved.
template<typename T>
std::vector<T> BinaryReader::readArray() {
    return readOrStay(position, [this]() -> std::vector<T> {
        const int count = readValue<int>();
        if (count <= 0)
            return {};
        const int whole = (size - position) / static_cast<int>(sizeof(T));
        const unsigned char* const first = data + position;
        position += std::min(count, whole) * static_cast<int>(sizeof(T));
        if (count > whole)
            throwAtEnd();
        if (reinterpret_cast<std::uintptr_t>(first) % alignof(T) == 0) {
            // One copy into memory that is not cleared before. The values are copied as bytes, whatever wrote them.
            const auto* const elements = reinterpret_cast<const T*>(first);
            return {elements, elements + count};
        }
        std::vector<T> values(static_cast<std::size_t>(count));
        std::memcpy(values.data(), first, values.size() * sizeof(T));
        return values;
    });
}

std::vector<signed char> BinaryReader::readBytes() { return readArray<signed char>(); }
std::vector<unsigned char> BinaryReader::readUBytes() { return readArray<unsigned char>(); }
std::vector<short> BinaryReader::readShorts() { return readArray<short>(); }
std::vector<unsigned short> BinaryReader::readUShorts() { return readArray<unsigned short>(); }
std::vector<int> BinaryReader::readInts() { return readArray<int>(); }
std::vector<unsigned int> BinaryReader::readUInts() { return readArray<unsigned int>(); }
std::vector<std::int64_t> BinaryReader::readLongs() { return readArray<std::int64_t>(); }
std::vector<std::uint64_t> BinaryReader::readULongs() { return readArray<std::uint64_t>(); }
std::vector<float> BinaryReader::readFloats() { return readArray<float>(); }

std::vector<bool> BinaryReader::readBools() {
    return readOrStay(position, [this] {
        const std::vector<unsigned char> bytes = readUBytes();
        std::vector<bool> values(bytes.size());
        std::transform(bytes.begin(), bytes.end(), values.begin(),
                       [](unsigned char byte) { return byte != 0; });
        return values;
    });
}

/// Grows with what is really there.
std::vector<std::string> BinaryReader::readStrings() {
    return readOrStay(position, [this] {
        std::vector<std::string> values;
        for (int remaining = readInt(); remaining > 0; --remaining)
            values.push_back(readString());
        return values;
    });
}

} // namespace Zentara::Utils
