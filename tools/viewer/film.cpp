#include "tools/viewer/film.h"

namespace Zentara::Viewer {

using Host::Failure;

Film::Film(const std::string& path, const std::vector<Host::StreamInfo>& streams)
    : recorder(path, streams, {.ifThere = Host::IfThere::Keep}) {}

void Film::add(std::size_t stream, const Host::Frame& frame) noexcept {
    if (over)
        return;
    try {
        recorder.add(stream, frame);
    } catch (const Failure& failure) {
        if (!over.exchange(true)) {
            fail(failure);
            finish();
        }
    }
}

void Film::finish() noexcept {
    over = true;
    try {
        if (recorder.frames() == 0)
            recorder.discard();
        else
            recorder.commit();
    } catch (const Failure& failure) {
        fail(failure);
    }
}

std::optional<Failure> Film::trouble() const {
    const std::lock_guard<std::mutex> held(lock);
    return first;
}

void Film::fail(const Failure& failure) {
    const std::lock_guard<std::mutex> held(lock);
    if (!first)
        first = failure;
}

} // namespace Zentara::Viewer
