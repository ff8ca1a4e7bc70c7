#pragma once

#include <string>

#include <zentara/host/export.h>
#include <zentara/host/stream_info.h>

namespace Zentara::Host {

/// What belongs to every frame of a stream as one line of JSON, for where its pictures travel without the library: as a tag
/// of a video, in a message's head. With it a received depth picture becomes metres and points.
///
///     {"zentara": 1, "kind": "depth", "serial": "SIM0570", "name": "ZS570", "mode": "320x240@60",
///      "millimetresPerUnit": 1, "along": "axis", "lens": {"width": 320, "height": 240, "fx": 230, ... "p2": 0},
///      "lensSource": "camera"}
///
/// `zentara` is the line's version. Units as in StreamInfo; serial, name and lens are null where they are not known, the
/// numbers of the lens are those of CameraIntrinsics, by the same names. Sound and colour have no `millimetresPerUnit`
/// and no `along`. Texts are fit for showing. What is not finite is a text, as "nan".
[[nodiscard]] ZENTARA_HOST_API std::string streamLine(const StreamInfo& info);

/// Reads such a line; fields that it does not know are passed over. What a line does not say is as in an empty
/// StreamInfo, but for the mode, whose size and rate are those of its text.
/// \throws Failure (Failed) for what is no such line, or one of another version
[[nodiscard]] ZENTARA_HOST_API StreamInfo readStreamLine(const std::string& line);

} // namespace Zentara::Host
