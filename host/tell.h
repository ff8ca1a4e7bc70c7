#pragma once

#include <string>

#include <zentara/host/note.h>

namespace Zentara::Host {

/// Tells a note; without somebody to be told it is logged as a warning, if the library logs at all.
void tell(const Note& note, const std::string& text) noexcept;

} // namespace Zentara::Host
