#pragma once

#include <string>

#include <zentara/host/failure.h>

#include "host/json_place.h"

namespace Zentara::Host {

/// The JSON of a file, or of standard input for "-". Whatever the file is, it takes a bounded time and a bounded memory:
/// its size and its depth have a limit, and no object may have a key twice.
/// \throws Failure naming the file and the place of what is wrong
[[nodiscard]] Json readJsonFile(const std::string& path);

/// The text of a document: indented, with a line end. Bytes that are no UTF-8 become the replacement character.
[[nodiscard]] std::string printed(const Json& json);

/// Reads out of a document: what is wrong with it leaves as a Failure that names where it comes from.
template<typename Reading>
auto readingFrom(const std::string& source, Reading reading) try {
    return reading();
} catch (const JsonError& failure) {
    throw Failure(Failure::Failed, "'" + source + "': " + failure.what());
}

} // namespace Zentara::Host
