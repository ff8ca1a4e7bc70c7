#pragma once

#include <string>

#include <zentara/export.h>

namespace Zentara::Utils {

/// Where the SDK is installed. Both functions look in this order and return a directory that ends in a
/// separator:
///
/// 1. the environment variable "ZENTARASDK_ROOT", when set and not empty;
/// 2. the value "InstallDir" of a key in the registry (local machine) or, off Windows, of a section in
///    "/etc/zentara/sdk.ini";
/// 3. a directory chosen when the library was built.
///
/// They return 0, also with the last of these, and 1 only when the value exists but is not a text; the root
/// is empty then. Safe.

/// The key is "Software\Korvalis\ZentaraSDK-CDK" if a development kit of version 1.4 is installed, and
/// `suffix` becomes "-CDK"; otherwise "Software\Korvalis\ZentaraSDK", and `suffix` becomes empty. With a
/// development kit in both views of the registry, the 32-bit view counts only when its third version number is
/// the greater one. Off Windows the sections of the 32-bit view carry "WOW6432Node\" after "Software\".
ZENTARA_API int getZTRootDirectory(std::string& root, std::string& suffix);

/// The key is "Software\Korvalis\ZentaraSDK" in the 64-bit view.
ZENTARA_API int getNativeZTRootDirectory(std::string& root);

} // namespace Zentara::Utils
