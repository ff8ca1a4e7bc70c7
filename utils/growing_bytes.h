#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <utility>

namespace Zentara::Utils {

/// Memory for bytes that live a moment.
class SpareBytes final {
public:
    static constexpr std::size_t usual =
        16 * 1024; ///< up to so many there is room that costs next to nothing

    SpareBytes() noexcept = default;
    explicit SpareBytes(std::size_t wanted);
    ~SpareBytes() {
        if (bytes)
            giveBack();
    }
    SpareBytes(SpareBytes&& other) noexcept
        : count(other.count), bytes(std::exchange(other.bytes, nullptr)) {}
    SpareBytes& operator=(SpareBytes&& other) noexcept {
        std::swap(count, other.count);
        std::swap(bytes, other.bytes);
        return *this;
    }

    [[nodiscard]] char* data() const noexcept { return bytes; }
    [[nodiscard]] std::size_t size() const noexcept { return count; } ///< what was wanted, or more

private:
    void giveBack() noexcept;

    std::size_t count = 0;
    char* bytes = nullptr;
};

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
        copy(makeRoom(count), static_cast<const char*>(more), count);
        length += count;
    }
    void append(std::string_view text) { append(text.data(), text.size()); }
    void append(std::size_t count, char character) {
        std::memset(makeRoom(count), character, count);
        length += count;
    }

    /// \param count at most the size
    void shorten(std::size_t count) noexcept { length = count; }

    [[nodiscard]] char* data() noexcept { return bytes; }
    [[nodiscard]] const char* data() const noexcept { return bytes; }
    [[nodiscard]] std::size_t size() const noexcept { return length; }
    [[nodiscard]] std::string_view text() const noexcept { return {bytes, length}; }

private:
    /// Most of what is appended is shorter than the call of a copy takes: its two halves, which may overlap.
    static void copy(char* to, const char* from, std::size_t count) noexcept {
        if (count > 32) {
            std::memcpy(to, from, count);
        } else if (count >= 16) {
            copyEnds<std::array<std::uint64_t, 2>>(to, from, count);
        } else if (count >= 8) {
            copyEnds<std::uint64_t>(to, from, count);
        } else if (count >= 4) {
            copyEnds<std::uint32_t>(to, from, count);
        } else if (count >= 2) {
            copyEnds<std::uint16_t>(to, from, count);
        } else {
            *to = *from;
        }
    }
    template<typename Half>
    static void copyEnds(char* to, const char* from, std::size_t count) noexcept {
        Half first;
        Half last;
        std::memcpy(&first, from, sizeof first);
        std::memcpy(&last, from + count - sizeof last, sizeof last);
        std::memcpy(to, &first, sizeof first);
        std::memcpy(to + count - sizeof last, &last, sizeof last);
    }

    /// Where so many bytes may be written.
    char* makeRoom(std::size_t count) {
        if (count > room - length)
            grow(count);
        return bytes + length;
    }
    void grow(std::size_t count) {
        SpareBytes larger(lead + std::max(room * 2, length + count));
        std::memcpy(larger.data() + lead, bytes, length);
        spare = std::move(larger);
        bytes = spare.data() + lead;
        room = spare.size() - lead;
    }

    /// An array behind its count, the most that grows, is copied faster from where it is aligned.
    static constexpr std::size_t lead = 12;

    std::size_t length = 0;
    std::size_t room = usual;
    SpareBytes spare;
    char inside[usual];   ///< not initialised
    char* bytes = inside; ///< `inside`, or in `spare`
};

} // namespace Zentara::Utils
