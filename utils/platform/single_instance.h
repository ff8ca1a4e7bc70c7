#pragma once

#include "utils/platform/owned.h"

namespace Zentara::Utils::Platform {

/// Holds a name among the processes of one user; any number of holders, in one process or several.
class SingleInstance {
public:
    /// Takes the name.
    /// \param name UTF-8.
    /// \param existed true when, and only when, somebody held the name already.
    /// \return null when the name cannot be taken; then `existed` is false.
    /// \throws std::bad_alloc; then `existed` is false as well.
    static SingleInstance* create(const char* name, bool& existed);
    static void destroy(SingleInstance* instance) noexcept;

    SingleInstance(const SingleInstance&) = delete;
    SingleInstance& operator=(const SingleInstance&) = delete;

protected:
    SingleInstance() = default;
    ~SingleInstance() = default;
};

} // namespace Zentara::Utils::Platform
