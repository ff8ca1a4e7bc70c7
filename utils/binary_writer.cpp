#include <zentara/utils/binary_writer.h>

#include <bit>
#include <cstring>
#include <limits>
#include <string_view>

#include <zentara/utils/exceptions.h>

namespace Zentara::Utils {

static_assert(std::endian::native == std::endian::little,
              "values are copied in the processor's own byte order");

struct BinaryWriter::Impl {
    template<typename T>
    void appendValue(T value) {
        char encoded[sizeof value];
        std::memcpy(encoded, &value, sizeof value);
        bytes.append(encoded, sizeof encoded);
    }

    void appendLength(std::size_t length) {
        if (length > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max()))
            throw UInvalidOperationException("text or vector is too long to be written");
        appendValue(static_cast<std::int32_t>(length));
    }

    void appendText(std::string_view text) {
        appendLength(text.size());
        bytes.append(text);
    }

    std::string bytes; ///< grows as a text does: its capacity doubles, and small contents need no heap
};

namespace {

template<typename T>
void writeElements(BinaryWriter& writer, const std::vector<T>& values) {
    // A vector of bool hands out proxies, for which no write exists.
    for (const auto& value : values)
        writer.write(static_cast<T>(value));
}

} // namespace

BinaryWriter::BinaryWriter() : impl(std::make_unique<Impl>()) {}

BinaryWriter::~BinaryWriter() = default;

void BinaryWriter::write(const unsigned char* data, int count) {
    if (data && count > 0)
        impl->bytes.append(reinterpret_cast<const char*>(data), static_cast<std::size_t>(count));
}

void BinaryWriter::write(signed char value) { impl->appendValue(value); }
void BinaryWriter::write(unsigned char value) { impl->appendValue(value); }
void BinaryWriter::write(bool value) { impl->appendValue(static_cast<unsigned char>(value ? 1 : 0)); }
void BinaryWriter::write(short value) { impl->appendValue(value); }
void BinaryWriter::write(unsigned short value) { impl->appendValue(value); }
void BinaryWriter::write(int value) { impl->appendValue(value); }
void BinaryWriter::write(unsigned int value) { impl->appendValue(value); }
void BinaryWriter::write(std::int64_t value) { impl->appendValue(value); }
void BinaryWriter::write(std::uint64_t value) { impl->appendValue(value); }
void BinaryWriter::write(float value) { impl->appendValue(value); }
void BinaryWriter::write(const char* value) { impl->appendText(value ? value : ""); }
void BinaryWriter::write(const std::string& value) { impl->appendText(value); }

void BinaryWriter::write(const std::vector<signed char>& values) {
    impl->appendLength(values.size());
    writeElements(*this, values);
}

void BinaryWriter::write(const std::vector<unsigned char>& values) {
    impl->appendLength(values.size());
    writeElements(*this, values);
}

void BinaryWriter::write(const std::vector<bool>& values) {
    impl->appendLength(values.size());
    writeElements(*this, values);
}

void BinaryWriter::write(const std::vector<short>& values) {
    impl->appendLength(values.size());
    writeElements(*this, values);
}

void BinaryWriter::write(const std::vector<unsigned short>& values) {
    impl->appendLength(values.size());
    writeElements(*this, values);
}

void BinaryWriter::write(const std::vector<int>& values) {
    impl->appendLength(values.size());
    writeElements(*this, values);
}

void BinaryWriter::write(const std::vector<unsigned int>& values) {
    impl->appendLength(values.size());
    writeElements(*this, values);
}

void BinaryWriter::write(const std::vector<std::int64_t>& values) {
    impl->appendLength(values.size());
    writeElements(*this, values);
}

void BinaryWriter::write(const std::vector<std::uint64_t>& values) {
    impl->appendLength(values.size());
    writeElements(*this, values);
}

void BinaryWriter::write(const std::vector<float>& values) {
    impl->appendLength(values.size());
    writeElements(*this, values);
}

void BinaryWriter::write(const std::vector<const char*>& values) {
    impl->appendLength(values.size());
    writeElements(*this, values);
}

void BinaryWriter::write(const std::vector<std::string>& values) {
    impl->appendLength(values.size());
    writeElements(*this, values);
}

unsigned char* BinaryWriter::toBuffer(int* size) const {
    const std::string& bytes = impl->bytes;
    if (bytes.size() > static_cast<std::size_t>(std::numeric_limits<int>::max()))
        throw UInvalidOperationException("too many bytes were written for one buffer");
    auto* buffer = new unsigned char[bytes.size()];
    bytes.copy(reinterpret_cast<char*>(buffer), bytes.size());
    if (size)
        *size = static_cast<int>(bytes.size());
    return buffer;
}

ByteArray BinaryWriter::toByteArray() const {
    int size = 0;
    unsigned char* buffer = toBuffer(&size);
    return ByteArray(buffer, size);
}

} // namespace Zentara::Utils
