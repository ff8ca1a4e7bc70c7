#include <zentara/utils/atomic_int.h>

namespace Zentara::Utils {

bool AtomicInt::incrementIfNotZero() noexcept {
    std::int32_t seen = value.load();
    while (seen != 0) {
        // Added without a sign, for the count wraps around, which a signed sum must not.
        const auto next = static_cast<std::int32_t>(static_cast<std::uint32_t>(seen) + 1);
        if (value.compare_exchange_weak(seen, next))
            return true;
    }
    return false;
}

bool AtomicInt::decrementIfOne() noexcept {
    std::int32_t expected = 1;
    return value.compare_exchange_strong(expected, 0);
}

} // namespace Zentara::Utils
