#include "tools/zentara/streams/streamed_camera.h"

#include <utility>

#include "tools/zentara/cameras/camera_json.h"

namespace Zentara::Tool {

StreamTask& StreamedCamera::add(Stream opened, const CaptureRules& rules) {
    auto task = std::make_unique<StreamTask>(std::move(opened), rules);
    tasks.push_back(task.get());
    CameraCapture::add(std::move(task));
    return *tasks.back();
}

void StreamedCamera::print(std::ostream& out) const {
    for (StreamTask* task : tasks) {
        const StreamInfo& info = task->info();
        out << "stream   " << printable(info.camera.label(info.mode.kind)) << ", " << info.mode.name << '\n';
        if (state() == State::Failed)
            out << "failed   " << printable(failure().what()) << '\n';
        else
            task->print(out);
        if (const std::string sharing = task->stream().sharing(); !sharing.empty())
            out << "shared   " << printable(sharing) << ", " << task->stream().counts().missed << " missed\n";
        if (const std::uint64_t absences = task->stream().counts().absences)
            out << "absent   " << absences << (absences == 1 ? " time\n" : " times\n");
    }
}

void StreamedCamera::fill(Json& list) const {
    for (StreamTask* task : tasks) {
        const StreamInfo& info = task->info();
        const NodeInfo* const node = info.camera.node(info.mode.kind);
        Json json{{"camera", cameraJson(identity)},
                  {"name", node == nullptr ? info.camera.name : node->name},
                  {"kind", kindName(info.mode.kind)},
                  {"mode", info.mode.name},
                  {"absences", task->stream().counts().absences}};
        if (const std::string sharing = task->stream().sharing(); !sharing.empty())
            json["shared"] = {{"frames", sharing}, {"missed", task->stream().counts().missed}};
        if (state() == State::Failed)
            json["failure"] = failure().what();
        else
            task->fill(json);
        list.push_back(std::move(json));
    }
}

} // namespace Zentara::Tool
