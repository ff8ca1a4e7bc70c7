#include "tools/zentara/streams/streamed_camera.h"

#include <algorithm>
#include <utility>

#include <zentara/utils/clock.h>

#include "tools/zentara/cameras/camera_json.h"

namespace Zentara::Tool {

StreamTask& StreamedCamera::add(Stream opened, const CaptureRules& rules) {
    return *tasks.emplace_back(std::make_unique<StreamTask>(std::move(opened), rules));
}

void StreamedCamera::start() {
    try {
        for (const auto& task : tasks)
            task->start();
    } catch (const Failure& failure) {
        fail(failure);
    }
}

void StreamedCamera::look() {
    if (condition != State::Streaming && condition != State::Away)
        return;
    try {
        trouble = takeAll();
    } catch (const Failure& failure) {
        trouble.reset(); // why it was away
        return fail(failure);
    }
    if (trouble && condition == State::Streaming)
        awaySince = Utils::Clock::nowMicros();
    condition = trouble ? State::Away : State::Streaming;
    if (std::all_of(tasks.begin(), tasks.end(), [](const auto& task) { return task->isOver(); }))
        end();
}

/// \return why it is away, if it is
std::optional<Failure> StreamedCamera::takeAll() {
    std::optional<Failure> away;
    for (const auto& task : tasks) {
        if (task->isOver())
            continue;
        task->take();
        if (task->isOver())
            task->stream().stop(); // its device is free then
        else if (!away && task->stream().state() == Stream::State::Away)
            away = task->stream().trouble();
    }
    return away;
}

void StreamedCamera::fail(const Failure& failure) {
    if (!trouble)
        trouble.emplace(failure);
    close();
}

void StreamedCamera::end() {
    if (condition != State::Streaming)
        return;
    condition = State::Done;
    close();
}

/// Ends the streams and lets go of the device. One that fails in this makes the camera fail; if that has failed already,
/// only what hangs is news.
void StreamedCamera::close() {
    const auto attemptTo = [this](const auto& work) {
        try {
            work();
        } catch (const Failure& failure) {
            if (!trouble || isStuck())
                trouble.emplace(failure);
        }
    };
    for (const auto& task : tasks)
        attemptTo([&task] { task->stream().stop(); });
    if (camera && !isStuck())
        attemptTo([this] { camera->close(); });
    if (trouble)
        condition = State::Failed;
}

/// What a recording holds before the place where it breaks off is kept; half a stream of a camera is not.
void StreamedCamera::finish() {
    const auto tellMore = [this](const char* words) {
        const Failure why = *trouble;
        trouble.emplace(why.code(), std::string(why.what()) + words);
    };
    if (condition == State::Away) {
        tellMore(" and did not come back");
        close();
    }
    const bool unwritable = isUnwritable();
    const bool keep = condition == State::Done || isRecorded || unwritable;
    bool isKept = false;
    for (const auto& task : tasks) {
        try {
            if (keep) {
                task->commit();
                isKept = true;
            }
        } catch (const Failure& failure) {
            if (!unwritable) // else it has been told which file was the first
                trouble.emplace(failure);
            condition = State::Failed;
        }
    }
    if (unwritable && isKept)
        tellMore("; what came whole before it is kept");
    for (const auto& task : tasks) {
        if (condition == State::Failed)
            task->discard();
    }
}

void StreamedCamera::rescue() {
    const bool keep = condition == State::Streaming || condition == State::Done;
    for (const auto& task : tasks) {
        if (keep && task->units() != 0)
            task->commit();
        else
            task->discard();
    }
}

bool StreamedCamera::isUnwritable() const noexcept {
    return std::any_of(tasks.begin(), tasks.end(), [](const auto& task) { return task->isUnwritable(); });
}

bool StreamedCamera::isStuck() const {
    return std::any_of(tasks.begin(), tasks.end(),
                       [](const auto& task) { return !task->stream().hangsIn().empty(); });
}

double StreamedCamera::awaySeconds() const {
    return static_cast<double>(Utils::Clock::nowMicros() - awaySince) / 1e6;
}

void StreamedCamera::print(std::ostream& out) const {
    for (const auto& task : tasks) {
        const StreamInfo& info = task->info();
        out << "stream   " << printable(info.camera.label(info.mode.kind)) << ", " << info.mode.name << '\n';
        if (condition == State::Failed)
            out << "failed   " << printable(trouble->what()) << '\n';
        else
            task->print(out);
        if (const std::uint64_t absences = task->stream().counts().absences)
            out << "absent   " << absences << (absences == 1 ? " time\n" : " times\n");
    }
}

void StreamedCamera::fill(Json& list) const {
    for (const auto& task : tasks) {
        const StreamInfo& info = task->info();
        const NodeInfo* const node = info.camera.node(info.mode.kind);
        Json json{{"camera", cameraJson(identity)},
                  {"name", node == nullptr ? info.camera.name : node->name},
                  {"kind", kindName(info.mode.kind)},
                  {"mode", info.mode.name},
                  {"absences", task->stream().counts().absences}};
        if (condition == State::Failed)
            json["failure"] = trouble->what();
        else
            task->fill(json);
        list.push_back(std::move(json));
    }
}

} // namespace Zentara::Tool
