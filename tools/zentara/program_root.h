#pragma once

namespace Zentara::Tool {

/// Lets a build tree and an unpacked archive work without installation: when no install root is set or configured
/// and this program lies in ROOT/bin with plug-ins in ROOT/bin/Plugins, ROOT becomes the install root of this
/// process. Otherwise nothing changes. Call it before the first use of the plug-in manager.
void useProgramRoot();

} // namespace Zentara::Tool
