#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>

namespace Zentara::Utils {

/// Bytes that grow at their end, without memory of their own up to the usual number. Neither copied nor moved. Separate.
/// \tparam usual how many find room inside the object
template<std::size_t usual>
class GrowingBytes final {
public:
    // Not "= default", by which making one would clear the room inside.
    GrowingBytes() noexcept {} // NOLINT(modernize-use-equals-default)
    GrowingBytes(const GrowingBytes&) = delete;
    GrowingBytes& operator=(const GrowingBytes&) = delete;

    /// \param more may be null when `count` is 0
    void append(const void* more, std::size_t count) {
        if (count == 0)
            return;
        std::memcpy(makeRoom(count), more, count);
        length += count;
    }
    void append(std::string_view text) { append(text.data(), text.size()); }
    void append(std::size_t count, char character) {
        std::memset(makeRoom(count), character, count);
        length += count;
    }

    [[nodiscard]] const char* data() const noexcept { return bytes; }
    [[nodiscard]] std::size_t size() const noexcept { return length; }
    [[nodiscard]] std::string_view text() const noexcept { return {bytes, length}; }

private:
    /// Where so many bytes may be written.
    char* makeRoom(std::size_t count) {
        if (count > room - length)
            grow(count);
        return bytes + length;
    }
    void grow(std::size_t count) {
        const std::size_t wanted = std::max(room * 2, length + count);
        std::unique_ptr<char[]> larger(new char[wanted]);
        std::memcpy(larger.get(), bytes, length);
        heap = std::move(larger);
        bytes = heap.get();
        room = wanted;
    }

    std::size_t length = 0;
    std::size_t room = usual;
    std::unique_ptr<char[]> heap;
    char inside[usual];   ///< not initialised
    char* bytes = inside; ///< `inside`, or what `heap` owns
};

} // namespace Zentara::Utils
