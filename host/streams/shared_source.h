#pragma once

#include <memory>

#include "host/streams/stream_source.h"

namespace Zentara::Host {

/// A source whose frames are given to other programs of this user; where one of them gives those of the same hardware in the
/// same mode, the source is that one's frames, and the hardware is left alone. Who gives frames waits for nobody. Who reads
/// them ends with a failure (NoDevice) half a second after the other one has ended, or was killed; opened again, it takes
/// the hardware itself.
/// \throws Failure (Usage) for a source of which no other program can know
[[nodiscard]] std::shared_ptr<StreamSource> shareSource(std::shared_ptr<StreamSource> source);

} // namespace Zentara::Host
