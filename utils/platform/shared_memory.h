#pragma once

#include "utils/platform/owned.h"

#include <cstddef>
#include <string>

namespace Zentara::Utils::Platform {

/// Memory that the processes of one user share under a name. It starts as zeros, keeps the size of its first user and
/// goes with its last user. Off Windows one that is killed leaves the name and the memory behind: the next create()
/// of the name replaces them, sweep() removes them.
class SharedMapping {
public:
    /// Opens the memory, or creates it.
    /// \param name UTF-8. A leading slash is welcome; another slash or a backslash makes it fail. Windows takes
    ///        its own prefixes "Global\" and "Local\", before the slash.
    /// \param size bytes to map; memory that exists with fewer makes it fail, and so does 0. Windows counts the
    ///        bytes of memory that exists in whole pages.
    /// \return null on failure.
    /// \throws std::bad_alloc
    static SharedMapping* create(const std::string& name, std::size_t size, bool writable);
    static void destroy(SharedMapping* mapping) noexcept;

    [[nodiscard]] void* address() const noexcept;

    /// Whether a name outlives a process that has not given it up.
    static bool namesRemain() noexcept;

    /// Gives the name up as destroy() does, at the end of the process, but leaves the memory where it is. Windows does
    /// that by itself.
    void leave() noexcept;

    /// Removes what killed processes of this user left behind under names that are the prefix, any text, "_" and a
    /// number. Leaves alone what somebody uses. Nothing to do on Windows.
    static void sweep(const std::string& prefix) noexcept;

    /// Makes the system forget the name where it can (Windows cannot): present users keep the memory, the
    /// next create() makes new memory.
    void unlink() noexcept;

    SharedMapping(const SharedMapping&) = delete;
    SharedMapping& operator=(const SharedMapping&) = delete;

protected:
    SharedMapping() = default;
    ~SharedMapping() = default;
};

} // namespace Zentara::Utils::Platform
