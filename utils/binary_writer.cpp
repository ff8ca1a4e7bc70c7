#include <zentara/utils/binary_writer.h>

#include <bit>
#include <cstring>
#include <limits>
#include <string_view>
#include <type_traits>

#include <zentara/utils/exceptions.h>

#include "utils/growing_bytes.h"

namespace Zentara::Utils {

static_assert(std::endian::native == std::endian::little,
              "values are copied in the processor's own byte order");

struct BinaryWriter::Impl {
    template<typename T>
    void appendValue(T value) {
        bytes.append(&value, sizeof value);
    }

    void appendLength(std::size_t length) {
        if (length > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max()))
            throw UInvalidOperationException("text or vector is too long to be written");
        appendValue(static_cast<std::int32_t>(length));
    }

    /// The length, then what `appendElements` appends; nothing when one of them throws.
    template<typename Append>
    void appendWhole(std::size_t length, Append appendElements) {
        const std::size_t before = bytes.size();
        try {
            appendLength(length);
            appendElements();
        } catch (...) {
            bytes.shorten(before);
            throw;
        }
    }

    void appendText(std::string_view text) {
        appendWhole(text.size(), [&] { bytes.append(text); });
    }

    /// As they lie in memory: element after element in its own encoding.
    template<typename T>
    void appendArray(const std::vector<T>& values) {
        static_assert(std::is_arithmetic_v<T>);
        appendWhole(values.size(), [&] { bytes.append(values.data(), values.size() * sizeof(T)); });
    }

    template<typename T>
    void appendTexts(const std::vector<T>& texts) {
        appendWhole(texts.size(), [&] {
            for (const T& text : texts)
                appendText(textOf(text));
        });
    }

    static std::string_view textOf(const char* text) { return text ? text : ""; }
    static std::string_view textOf(const std::string& text) { return text; }

    [[nodiscard]] int checkedSize() const {
        if (bytes.size() > static_cast<std::size_t>(std::numeric_limits<int>::max()))
            throw UInvalidOperationException("too many bytes were written for one buffer");
        return static_cast<int>(bytes.size());
    }

    GrowingBytes<480> bytes; ///< most records need no further memory
};

// Not by make_unique, which would clear the room.
BinaryWriter::BinaryWriter() : impl(new Impl) {}

BinaryWriter::~BinaryWriter() = default;

void BinaryWriter::write(const unsigned char* data, int count) {
    if (data && count > 0)
        impl->bytes.append(data, static_cast<std::size_t>(count));
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
void BinaryWriter::write(const char* value) { impl->appendText(Impl::textOf(value)); }
void BinaryWriter::write(const std::string& value) { impl->appendText(value); }

void BinaryWriter::write(const std::vector<signed char>& values) { impl->appendArray(values); }
void BinaryWriter::write(const std::vector<unsigned char>& values) { impl->appendArray(values); }
void BinaryWriter::write(const std::vector<short>& values) { impl->appendArray(values); }
void BinaryWriter::write(const std::vector<unsigned short>& values) { impl->appendArray(values); }
void BinaryWriter::write(const std::vector<int>& values) { impl->appendArray(values); }
void BinaryWriter::write(const std::vector<unsigned int>& values) { impl->appendArray(values); }
void BinaryWriter::write(const std::vector<std::int64_t>& values) { impl->appendArray(values); }
void BinaryWriter::write(const std::vector<std::uint64_t>& values) { impl->appendArray(values); }
void BinaryWriter::write(const std::vector<float>& values) { impl->appendArray(values); }

void BinaryWriter::write(const std::vector<bool>& values) {
    impl->appendWhole(values.size(), [&] {
        for (const bool value : values)
            write(value);
    });
}

void BinaryWriter::write(const std::vector<const char*>& values) { impl->appendTexts(values); }
void BinaryWriter::write(const std::vector<std::string>& values) { impl->appendTexts(values); }

unsigned char* BinaryWriter::toBuffer(int* size) const {
    const int count = impl->checkedSize();
    auto* buffer = new unsigned char[impl->bytes.size()];
    std::memcpy(buffer, impl->bytes.data(), impl->bytes.size());
    if (size)
        *size = count;
    return buffer;
}

ByteArray BinaryWriter::toByteArray() const {
    return ByteArray::copyOf(impl->bytes.data(), static_cast<std::size_t>(impl->checkedSize()));
}

} // namespace Zentara::Utils
