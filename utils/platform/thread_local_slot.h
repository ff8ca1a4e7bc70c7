#pragma once

#include "utils/platform/owned.h"

namespace Zentara::Utils::Platform {

/// A pointer of which every thread has its own, null at first. No destructor runs when a thread ends.
class ThreadLocalSlot {
public:
    /// Never null: with no slot left the process ends by abort().
    static ThreadLocalSlot* create() noexcept;
    static void destroy(ThreadLocalSlot* slot) noexcept;

    void set(void* value) noexcept;
    [[nodiscard]] void* get() const noexcept;

    ThreadLocalSlot(const ThreadLocalSlot&) = delete;
    ThreadLocalSlot& operator=(const ThreadLocalSlot&) = delete;

protected:
    ThreadLocalSlot() = default;
    ~ThreadLocalSlot() = default;
};

} // namespace Zentara::Utils::Platform
