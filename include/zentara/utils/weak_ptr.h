#pragma once

#include <zentara/utils/smart_ptr.h>

namespace Zentara::Utils {

/// The weak reference to an object of class T: lock() gives an owning handle while the object lives.
/// A class that deletes tryIncref() cannot be referred to weakly.
template<typename T>
class WeakPtr final : public Refcounted::WeakReference {
public:
    WeakPtr() noexcept = default;
    WeakPtr(const SmartPtr<T>& strong) : WeakReference(strong.get()), typed(strong.get()) {
        static_assert(
            requires(T & object) { object.tryIncref(); }, "this class forbids weak references");
    }

    /// An owning handle, null when the object has gone.
    [[nodiscard]] SmartPtr<T> lock() const {
        return tryPromote() ? SmartPtr<T>::adopt(typed) : SmartPtr<T>();
    }

    [[nodiscard]] Refcounted* promote() const override { return tryPromote(); }
    [[nodiscard]] std::unique_ptr<WeakReference> clone() const override {
        return std::make_unique<WeakPtr>(*this);
    }

private:
    T* typed = nullptr; ///< the object as its own class; never looked at once it has gone
};

} // namespace Zentara::Utils
