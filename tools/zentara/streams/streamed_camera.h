#pragma once

#include <ostream>
#include <vector>

#include <zentara/host/camera_capture.h>

#include "tools/zentara/streams/stream_task.h"

namespace Zentara::Tool {

/// The streams of one camera, and what is told of them.
class StreamedCamera final : public CameraCapture {
public:
    /// \param recorded whether it is a recording
    StreamedCamera(CameraInfo who, bool recorded) : CameraCapture(recorded), identity(std::move(who)) {}

    StreamTask& add(Stream opened, const CaptureRules& rules);
    [[nodiscard]] const std::vector<StreamTask*>& streams() const noexcept { return tasks; }

    void print(std::ostream& out) const;
    /// Appends an object for each stream.
    void fill(Json& list) const;

private:
    const CameraInfo identity;
    std::vector<StreamTask*> tasks; ///< its captures
};

} // namespace Zentara::Tool
