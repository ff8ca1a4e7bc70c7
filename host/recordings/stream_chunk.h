#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include <zentara/host/stream_info.h>
#include <zentara/utils/byte_array.h>

namespace Zentara::Host {

/// What a stream's chunk holds, as the format's newest version has it.
[[nodiscard]] Utils::ByteArray streamChunk(const StreamInfo& info);

/// What a stream's chunk says, in the layout of that version.
/// \throws Failure (Failed), its message what is wrong: "is too short"
[[nodiscard]] StreamInfo readStreamChunk(std::span<const std::uint8_t> payload, std::uint16_t version);

} // namespace Zentara::Host
