#pragma once

#include <memory>

#include "host/streams/stream_source.h"

namespace Zentara::Host {

class BareCamera;
class RealCamera;

/// How the stream of a camera's node comes about, and comes about again when the camera is back: the same node at the
/// same place, or of the same serial number and kind. The stream keeps the camera open.
[[nodiscard]] StreamSetup streamOf(std::shared_ptr<RealCamera> camera, Kind kind, const Mode& mode);

/// The same of a bare device plug-in, called on the reader's thread: without an enumerator, a descriptor store, a node
/// and the worker thread between.
[[nodiscard]] StreamSetup streamOf(std::shared_ptr<BareCamera> camera, Kind kind, const Mode& mode);

} // namespace Zentara::Host
