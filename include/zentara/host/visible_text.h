#pragma once

#include <string>
#include <string_view>

#include <zentara/host/export.h>

namespace Zentara::Host {

/// Text from outside (a file's name, a camera's product, what a plug-in throws) made fit for one line of a terminal;
/// ordinary text of any script comes out as it is. Control characters stand there as `\n` or `\x1b`, bytes that are no
/// UTF-8 as `\xff`, characters that turn the direction of writing, end a line or show nothing as `\u{202e}`. At most 1024 bytes;
/// a longer text ends in " [cut]". Safe.
[[nodiscard]] ZENTARA_HOST_API std::string visibleText(std::string_view text);

} // namespace Zentara::Host
