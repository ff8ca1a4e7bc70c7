#pragma once

#include <string>

namespace Zentara::Core {

/// Opens a plug-in library, for the scan and for createInstance() alike. Null when the file is no complete
/// library or the system does not load it, and then `problem` is the reason. Freed with freeSharedLibrary().
void* openPluginFile(const std::string& path, std::string& problem);

} // namespace Zentara::Core
