#pragma once

#include <string>

namespace Zentara::Utils {

struct InstallRoot {
    std::string root;     ///< ends in a separator; empty if it was unreadable
    std::string suffix;   ///< "-CDK" when the development kit's key was chosen
    bool readable = true; ///< false when the value exists but is no text
};

/// Looks the installation up: the environment first, then a key store, then the fallback. The development
/// kit's key goes before the plain one if its version fits.
InstallRoot findInstallRoot(const std::string& store, const std::string& fallback);

/// The same with the plain key alone.
InstallRoot findNativeInstallRoot(const std::string& store, const std::string& fallback);

} // namespace Zentara::Utils
