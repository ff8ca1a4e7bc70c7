#include <zentara/utils/refcounted.h>

#include <zentara/utils/mutex.h>

#include "utils/immortal.h"

#include <algorithm>

namespace Zentara::Utils {

namespace {

/// Serialises registering, copying, clearing and promoting of all weak references. A leaf: nothing is called
/// while it is held.
constinit Immortal<Threading::Mutex> weakLockStorage;
Threading::Mutex& weakLock = weakLockStorage.object;

} // namespace

// Nothing is taken from the other one: a count says who holds this object.
Refcounted::Refcounted(const Refcounted&) noexcept {}

Refcounted& Refcounted::operator=(const Refcounted&) noexcept { return *this; }

Refcounted::~Refcounted() {
    // Registering needs a strong reference, so the list can no longer appear, only go.
    std::unique_ptr<std::vector<WeakReference*>> watchers(weakReferences.load(std::memory_order_acquire));
    if (!watchers)
        return;
    Threading::AutoLock hold(weakLock);
    for (WeakReference* watcher : *watchers)
        watcher->object = nullptr;
}

void Refcounted::incref() { references.fetch_add(1, std::memory_order_relaxed); }

// Released and acquired: what every owner did to the object is seen by the one that deletes it.
void Refcounted::decref() {
    if (references.fetch_sub(1, std::memory_order_acq_rel) == 1)
        delete this;
}

bool Refcounted::tryIncref() noexcept {
    std::int32_t seen = references.load(std::memory_order_relaxed);
    while (seen != 0) {
        if (references.compare_exchange_weak(seen, seen + 1, std::memory_order_acq_rel))
            return true;
    }
    return false;
}

bool Refcounted::decrefIfLastRef() {
    std::int32_t expected = 1;
    if (!references.compare_exchange_strong(expected, 0, std::memory_order_acq_rel))
        return false;
    delete this;
    return true;
}

bool Refcounted::decrefUnlessSecondLast() {
    std::int32_t seen = references.load(std::memory_order_acquire);
    do {
        if (seen == 2)
            return false;
    } while (!references.compare_exchange_weak(seen, seen - 1, std::memory_order_acq_rel));
    if (seen == 1)
        delete this;
    return true;
}

Refcounted::WeakReference::WeakReference(Refcounted* target) {
    Threading::AutoLock hold(weakLock);
    watch(target);
}

Refcounted::WeakReference::WeakReference(const WeakReference& other) {
    Threading::AutoLock hold(weakLock);
    watch(other.object);
}

Refcounted::WeakReference& Refcounted::WeakReference::operator=(const WeakReference& other) {
    Threading::AutoLock hold(weakLock);
    if (object != other.object) {
        Refcounted* previous = object;
        watch(other.object); // may fail for memory; this reference is as it was then
        unwatch(previous);
    }
    return *this;
}

Refcounted::WeakReference::~WeakReference() {
    Threading::AutoLock hold(weakLock);
    unwatch(object);
}

bool Refcounted::WeakReference::expired() const noexcept {
    Threading::AutoLock hold(weakLock);
    return !object || object->references.load(std::memory_order_acquire) == 0;
}

bool Refcounted::WeakReference::operator!=(const WeakReference& other) const noexcept {
    Threading::AutoLock hold(weakLock);
    return object != other.object;
}

Refcounted* Refcounted::WeakReference::tryPromote() const noexcept {
    // An object on its way out waits for this lock in its destructor, so its memory is still there.
    Threading::AutoLock hold(weakLock);
    return object && object->tryIncref() ? object : nullptr;
}

void Refcounted::WeakReference::watch(Refcounted* target) {
    if (target) {
        List* list = target->weakReferences.load(std::memory_order_relaxed);
        if (!list) {
            list = new List();
            target->weakReferences.store(list, std::memory_order_release);
        }
        list->push_back(this);
    }
    object = target;
}

void Refcounted::WeakReference::unwatch(Refcounted* target) noexcept {
    if (!target)
        return;
    List& list = *target->weakReferences.load(std::memory_order_relaxed);
    // The order tells nothing: the last one takes the place.
    *std::find(list.begin(), list.end(), this) = list.back();
    list.pop_back();
}

} // namespace Zentara::Utils
