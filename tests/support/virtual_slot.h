#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace Zentara::Tests {

/// The slot of a virtual operation in its class's table. A pointer to a virtual member starts with 1 plus the
/// slot's offset in bytes; one to an ordinary member starts with an even address, which gives no small
/// number. The destructor takes two slots.
template<typename Member>
std::size_t virtualSlot(Member member) {
    std::uintptr_t first = 0;
    static_assert(sizeof member >= sizeof first);
    std::memcpy(&first, &member, sizeof first);
    return first % 2 == 1 ? (first - 1) / sizeof(void*) : static_cast<std::size_t>(-1);
}

} // namespace Zentara::Tests
