#pragma once

#include <memory>
#include <string>
#include <vector>

#include <zentara/host/note.h>

#include "tools/zentara/streams/stream_source.h"

namespace Zentara::Tool {

/// The stream of a bare device plug-in, called on the reader's thread: without an enumerator, a descriptor store, a
/// node and the worker thread between. It serves the writers of a device plug-in before the rest of a camera exists.
/// \param type of the stream: depth or audio \param plugins which device is meant, as chooseDevice() takes them
/// \throws Failure
[[nodiscard]] std::unique_ptr<StreamSource>
openDeviceStream(NodeType type, const std::vector<std::string>& plugins, const Host::Note& note);

} // namespace Zentara::Tool
