#pragma once

#include <ostream>
#include <string>

#include <zentara/host/frame_set.h>

#include "tools/zentara/json_output.h"

namespace Zentara::Tool {

/// Makes the cloud of a camera's last depth frame, in the colours of the frame that was taken at the same time.
class CloudMaker final {
public:
    void take(const Host::Frame& frame) { frames.add(frame); }
    /// That colour is streamed: a cloud without it tells why.
    void expectColor() noexcept { wantsColor = true; }

    // The bytes of a file. \throws Failure when it makes no cloud
    [[nodiscard]] std::string ply();
    [[nodiscard]] std::string png();

    /// What the cloud that was made last has; nothing before that.
    void print(std::ostream& out) const;
    void fill(Json& stream) const;

private:
    [[nodiscard]] Host::PointCloud make();

    Host::LastSet frames;
    bool wantsColor = false;
    std::size_t points = 0; ///< of the cloud that was made last
    std::size_t painted = 0;
    std::string plain; ///< why none of them is
};

} // namespace Zentara::Tool
