#pragma once

#include <zentara/export.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

namespace Zentara::Utils {

/// Base of every shared object: an intrusive, atomic count of its owners.
///
/// Made with new, an object starts with one reference, which belongs to its creator; makeRefcounted() hands
/// that one to a SmartPtr. The last decref() deletes the object on the calling thread. The count and the weak
/// references are safe; the rest is up to the derived class.
class ZENTARA_API Refcounted {
public:
    class WeakReference;

    /// Adds a reference. The caller must hold one, or know that somebody does.
    virtual void incref();

    /// Drops a reference; at 0 the object is deleted through its destructor.
    virtual void decref();

    virtual ~Refcounted();

    /// Adds a reference unless the last one has already gone; tells whether it did. The memory must still be
    /// there: meant for weak references, which hold the object's destructor up while they look.
    bool tryIncref() noexcept;

    /// Drops the caller's reference, and with it the object, only if no other is left; tells whether it did.
    bool decrefIfLastRef();

protected:
    Refcounted() noexcept = default;

    /// A copy is an object of its own: one reference, no weak references.
    Refcounted(const Refcounted& other) noexcept;

    /// Counts and weak references belong to the object and not to its value: they stay as they are.
    Refcounted& operator=(const Refcounted& other) noexcept;

    /// Drops the caller's reference, and deletes the object at 0, unless exactly one other is left; tells whether it
    /// did. For a decref() that has something to do before the object is left to its last owner.
    bool decrefUnlessSecondLast();

private:
    std::atomic<std::int32_t> references{1}; ///< 1 or more while the object lives
    /// Null until the first weak reference: objects without any never take the lock of the weak references.
    std::atomic<std::vector<WeakReference*>*> weakReferences{nullptr};
};

/// A reference that does not keep its object alive. It registers with the object, which clears it when it
/// goes. Safe against the object's end and against other weak references; one weak reference itself is
/// separate.
///
/// One process-wide lock serves all weak references. Nothing is called while it is held.
class ZENTARA_API Refcounted::WeakReference {
public:
    virtual ~WeakReference();

    /// The object with one reference added, which the caller owns; null when the object has gone.
    [[nodiscard]] virtual Refcounted* promote() const = 0;

    /// A new weak reference of the same concrete type to the same object.
    [[nodiscard]] virtual std::unique_ptr<WeakReference> clone() const = 0;

    /// True when the object has gone, or was never there.
    [[nodiscard]] bool expired() const noexcept;

    /// Compares the objects; two references whose objects have gone are equal.
    bool operator!=(const WeakReference& other) const noexcept;
    bool operator==(const WeakReference& other) const noexcept { return !(*this != other); }

protected:
    WeakReference() noexcept = default;
    /// \param target null, or an object that the caller holds a reference to.
    explicit WeakReference(Refcounted* target);
    WeakReference(const WeakReference& other);
    WeakReference& operator=(const WeakReference& other);

    /// What promote() does: adds a reference if the object still has one.
    [[nodiscard]] Refcounted* tryPromote() const noexcept;

private:
    friend class Refcounted;
    using List = std::vector<WeakReference*>;

    // Both are called with the lock of the weak references held.
    void watch(Refcounted* target);
    void unwatch(Refcounted* target) noexcept;

    Refcounted* object =
        nullptr; ///< null once it has gone; changed with the lock of the weak references held
};

} // namespace Zentara::Utils
