#pragma once

#include <memory>

namespace Zentara::Utils::Platform {

/// Each port makes the objects of this folder through T::create() and frees them through T::destroy(): their
/// size and content are its own. Owned holds one.
struct Destroy {
    template<typename T>
    void operator()(T* object) const noexcept {
        T::destroy(object);
    }
};

template<typename T>
using Owned = std::unique_ptr<T, Destroy>;

} // namespace Zentara::Utils::Platform
