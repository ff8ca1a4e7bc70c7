#pragma once

namespace Zentara::Utils {

/// Storage of a static object that is never destroyed, so that threads which still run while the process ends
/// can use it. Constant-initialised where T is.
template<typename T>
class Immortal final {
public:
    constexpr Immortal() noexcept : object() {}
    // The object is left alone on purpose.
    constexpr ~Immortal() {}
    Immortal(const Immortal&) = delete;
    Immortal& operator=(const Immortal&) = delete;

    union {
        T object;
    };
};

} // namespace Zentara::Utils
