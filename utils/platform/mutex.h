#pragma once

#include "utils/platform/owned.h"

namespace Zentara::Utils::Platform {

/// A re-entrant lock between the threads of one process.
class Mutex {
public:
    /// Never null: a failure of the system ends the process by abort().
    static Mutex* create() noexcept;
    static void destroy(Mutex* mutex) noexcept;

    void lock() noexcept;
    void unlock() noexcept;

    Mutex(const Mutex&) = delete;
    Mutex& operator=(const Mutex&) = delete;

protected:
    Mutex() = default;
    ~Mutex() = default;
};

} // namespace Zentara::Utils::Platform
