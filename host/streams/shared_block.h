#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>

namespace Zentara::Host {

/// Memory under a name that all programs of this user on this machine share: words of 64 bits, at first 0. It stays while
/// somebody has it. The process maps it once, whoever of it asks. Safe.
class SharedBlock final {
public:
    static constexpr std::size_t wordBytes = sizeof(std::uint64_t);

    /// \param bytes a multiple of 8, the same for all who ask for the name
    /// \throws Failure when there is no such memory to be had
    SharedBlock(std::string name, std::size_t bytes);
    ~SharedBlock();
    SharedBlock(const SharedBlock&) = delete;
    SharedBlock& operator=(const SharedBlock&) = delete;

    /// \param index less than words()
    [[nodiscard]] std::atomic_ref<std::uint64_t> word(std::size_t index) const noexcept {
        return std::atomic_ref<std::uint64_t>(first[index]);
    }
    [[nodiscard]] std::size_t words() const noexcept { return size / sizeof(std::uint64_t); }

    // Bytes from a word on, of which a reader may see some that are new and some that are old: who writes tells apart by
    // other words what is whole. What comes before a write is seen by who sees the write; a read comes before what follows.
    void write(std::size_t index, const std::byte* bytes, std::size_t count) const noexcept;
    void read(std::size_t index, std::byte* bytes, std::size_t count) const noexcept;

private:
    const std::string name;
    const std::size_t size; ///< bytes
    std::uint64_t* first = nullptr;
};

} // namespace Zentara::Host
