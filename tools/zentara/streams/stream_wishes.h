#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include <zentara/host/mode.h>

namespace Zentara::Tool {

/// What the user wants of a stream. Empty paths are for files that are not wanted.
struct StreamWishes {
    std::uint64_t frames = 0; ///< 0: not said
    std::vector<std::string> cameras;
    std::map<Host::Kind, std::string> modes; ///< the first one of what is not named
    bool all = false;
    bool color = false;
    bool audio = false;
    bool corrected = false;
    std::string png;
    std::string raw;
    std::string ply;
    std::string cloudPng;
    std::string colorPng;
    std::string wav;
    std::string record;
    std::string play;
    double waitSeconds = 0;
    bool share = false;
    bool direct = false;
    std::vector<std::string> plugins; ///< the bare devices that are meant
    bool json = false;

    [[nodiscard]] bool wants(Host::Kind kind) const noexcept {
        return kind == Host::Kind::Depth || (kind == Host::Kind::Color ? color : audio);
    }
    [[nodiscard]] bool wantsCloud() const noexcept { return !ply.empty() || !cloudPng.empty(); }
    [[nodiscard]] bool wantsDepthFile() const noexcept {
        return !png.empty() || !raw.empty() || wantsCloud();
    }
};

} // namespace Zentara::Tool
