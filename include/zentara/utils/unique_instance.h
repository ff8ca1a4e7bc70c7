#pragma once

#include <zentara/export.h>

#include <memory>

namespace Zentara::Utils {

/// Tells whether another process of this user, or another object of this process, holds the same name.
/// The name is held from construction to destruction, or to the end of the process, however that ends. Never throws.
///
/// Names may be long and hold any characters. Off Windows a killed process leaves an empty file in "/dev/shm" behind,
/// which holds nothing and which the first object of the next process removes.
class ZENTARA_API UniqueInstance final {
public:
    /// Takes the name, or finds it taken; never waits. \param name UTF-8
    explicit UniqueInstance(const char* name) noexcept;
    ~UniqueInstance();
    UniqueInstance(const UniqueInstance&) = delete;
    UniqueInstance& operator=(const UniqueInstance&) = delete;

    /// True when the name was held already at construction. A name that cannot be taken for any other reason
    /// counts as not held.
    [[nodiscard]] bool isAnotherInstanceRunning() const noexcept;

private:
    struct Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace Zentara::Utils
