#pragma once

#include <string>

#include <zentara/host/export.h>

namespace Zentara::Host {

/// Lets a build tree and an unpacked archive work without installation: when no install root is set or configured, and
/// plug-ins lie in ROOT/bin/Plugins, ROOT becomes the install root of this process, and of those that it starts.
/// Otherwise nothing changes. For a program or module that knows where it lies; before cameras are used first.
/// \param root UTF-8 \return whether it is the install root now
ZENTARA_HOST_API bool useRootIfNone(const std::string& root);

/// The same for the program that runs, with ROOT where its own file lies in ROOT/bin; nothing changes where it lies
/// elsewhere.
ZENTARA_HOST_API bool useProgramRootIfNone();

/// Where plug-ins are looked for, and who said so. Texts are UTF-8.
struct InstallRoot {
    std::string directory; ///< with a separator at its end; empty where what names it cannot be read
    std::string origin;    ///< in words: "from the environment variable ZENTARASDK_ROOT"
};
/// That of this process at the moment. Safe.
[[nodiscard]] ZENTARA_HOST_API InstallRoot installRoot();

} // namespace Zentara::Host
