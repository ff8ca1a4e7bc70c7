#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include <zentara/host/failure.h>
#include <zentara/host/stream_info.h>
#include <zentara/utils/format.h>

namespace Zentara::Host {

/// That a stream has delivered nothing for so long, with the place where the system has its node.
/// \param label of the stream \param units that had come before
[[nodiscard]] inline Failure silenceOf(const std::string& label, const StreamInfo& info,
                                       std::chrono::milliseconds limit, std::uint64_t units) {
    const NodeInfo* const node = info.camera.node(info.mode.kind);
    const std::string from = node == nullptr || node->path.empty() ? label : label + ", " + node->path + ",";
    return Failure(Failure::TimedOut, Utils::Format("nothing came from % for % s; % frames had come") % from %
                                          (static_cast<double>(limit.count()) / 1000) % units);
}

} // namespace Zentara::Host
