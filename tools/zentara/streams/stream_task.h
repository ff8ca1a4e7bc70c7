#pragma once

#include <memory>
#include <ostream>
#include <vector>

#include <zentara/host/capture.h>

#include "tools/zentara/streams/cloud_maker.h"

namespace Zentara::Tool {

/// One stream of a camera, and what is told of it: how much came, and in which files it is.
class StreamTask final : public Capture {
public:
    using Capture::Capture;

    /// \param word what the file is called in text \param key and in JSON
    void writeTo(const char* word, const char* key, std::unique_ptr<FrameFile> file);
    /// \param shared of the camera
    void makeCloud(std::shared_ptr<CloudMaker> shared);

    void print(std::ostream& out) const;
    void fill(Json& json) const;

private:
    struct Told {
        const char* word;
        const char* key;
        const FrameFile& file;
    };

    [[nodiscard]] Kind kind() const noexcept { return info().mode.kind; }

    std::vector<Told> told;
    std::shared_ptr<CloudMaker> cloud; ///< may be null
};

} // namespace Zentara::Tool
