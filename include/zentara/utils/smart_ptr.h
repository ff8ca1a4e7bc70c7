#pragma once

#include <zentara/utils/refcounted.h>

#include <compare>
#include <cstddef>
#include <functional>
#include <type_traits>
#include <utility>

namespace Zentara::Utils {

/// The owning handle of a Refcounted object: one pointer wide, one reference while it is not null.
/// The counting goes through Refcounted, so a class may keep its incref() and decref() to itself.
/// Separate, like a plain pointer; handles of several threads may share one object.
template<typename T>
class SmartPtr final {
public:
    using element_type = T;

    constexpr SmartPtr() noexcept = default;
    constexpr SmartPtr(std::nullptr_t) noexcept {}

    /// Adds a reference of its own. The one that new gave stays with the caller: see makeRefcounted().
    explicit SmartPtr(T* other) : object(other) { addReference(); }

    SmartPtr(const SmartPtr& other) : object(other.object) { addReference(); }
    SmartPtr(SmartPtr&& other) noexcept : object(other.detach()) {}

    template<typename U>
    requires std::is_convertible_v<U*, T*> SmartPtr(const SmartPtr<U>& other) : object(other.get()) {
        addReference();
    }
    template<typename U>
    requires std::is_convertible_v<U*, T*> SmartPtr(SmartPtr<U>&& other)
    noexcept : object(other.detach()) {}

    ~SmartPtr() { dropReference(); }

    /// Takes the new reference before it drops the old one.
    SmartPtr& operator=(const SmartPtr& other) {
        SmartPtr(other).swap(*this);
        return *this;
    }
    SmartPtr& operator=(SmartPtr&& other) noexcept {
        SmartPtr(std::move(other)).swap(*this);
        return *this;
    }

    /// A handle that takes over a reference which the caller owns.
    [[nodiscard]] static SmartPtr adopt(T* owned) noexcept {
        SmartPtr handle;
        handle.object = owned;
        return handle;
    }

    /// Gives the handle's reference to the caller and leaves the handle null.
    [[nodiscard]] T* detach() noexcept { return std::exchange(object, nullptr); }

    void reset() { SmartPtr().swap(*this); }                                 ///< drops the reference
    void reset(T* other) { SmartPtr(other).swap(*this); }                    ///< and takes another one
    void swap(SmartPtr& other) noexcept { std::swap(object, other.object); } ///< nothing is counted

    [[nodiscard]] T* get() const noexcept { return object; }
    T* operator->() const noexcept { return object; } ///< as of a plain pointer, not for null
    T& operator*() const noexcept { return *object; } ///< likewise
    explicit operator bool() const noexcept { return object != nullptr; }

private:
    static Refcounted& counted(T& shared) noexcept {
        return const_cast<Refcounted&>(static_cast<const Refcounted&>(shared));
    }
    void addReference() const {
        if (object)
            counted(*object).incref();
    }
    void dropReference() const {
        if (object)
            counted(*object).decref();
    }

    T* object = nullptr; ///< one reference is the handle's, unless null
};

/// Handles compare as their pointers do.
template<typename T, typename U>
bool operator==(const SmartPtr<T>& left, const SmartPtr<U>& right) noexcept {
    return left.get() == right.get();
}
template<typename T>
bool operator==(const SmartPtr<T>& left, std::nullptr_t) noexcept {
    return left.get() == nullptr;
}
template<typename T, typename U>
bool operator==(const SmartPtr<T>& left, U* right) noexcept {
    return left.get() == right;
}
template<typename T, typename U>
std::strong_ordering operator<=>(const SmartPtr<T>& left, const SmartPtr<U>& right) noexcept {
    return std::compare_three_way()(left.get(), right.get());
}

/// Makes an object with new and owns the reference that it starts with.
template<typename T, typename... Arguments>
[[nodiscard]] SmartPtr<T> makeRefcounted(Arguments&&... arguments) {
    return SmartPtr<T>::adopt(new T(std::forward<Arguments>(arguments)...));
}

} // namespace Zentara::Utils

template<typename T>
struct std::hash<Zentara::Utils::SmartPtr<T>> {
    std::size_t operator()(const Zentara::Utils::SmartPtr<T>& handle) const noexcept {
        return std::hash<T*>()(handle.get());
    }
};
