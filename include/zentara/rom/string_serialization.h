#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include <zentara/export.h>

namespace Zentara::ROM {

/// Copies the characters to `out`, then one zero byte; returns the place just past it. `out` must have room
/// for serializedLength() bytes.
ZENTARA_API std::uint8_t* serialize(std::uint8_t* out, const std::string& text);

/// Bytes that the text takes, its zero byte included.
ZENTARA_API std::size_t serializedLength(const std::string& text);

/// Reads a zero-terminated text and returns the place just past its zero byte. The caller knows that there is
/// one; where the bytes come from outside, use the bounded form.
ZENTARA_API const std::uint8_t* deserialize(const std::uint8_t* in, std::string* out);

/// The same, looking no further than `end`. Null, with `*out` as it was, if no zero byte stands before `end`.
ZENTARA_API const std::uint8_t* deserialize(const std::uint8_t* in, const std::uint8_t* end,
                                            std::string* out);

} // namespace Zentara::ROM
