#include <zentara/host/camera_capture.h>

#include <algorithm>
#include <string>
#include <utility>

#include <zentara/utils/clock.h>

namespace Zentara::Host {

CameraCapture::CameraCapture(bool recorded) : isRecorded(recorded) {}
CameraCapture::~CameraCapture() = default;

void CameraCapture::hold(Camera opened) { camera.emplace(std::move(opened)); }
void CameraCapture::add(std::unique_ptr<Capture> capture) { taken.push_back(std::move(capture)); }

void CameraCapture::start() {
    try {
        for (const auto& capture : taken)
            capture->start();
    } catch (const Failure& failure) {
        fail(failure);
    }
}

void CameraCapture::look() {
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
    if (std::all_of(taken.begin(), taken.end(), [](const auto& capture) { return capture->isOver(); }))
        end();
}

/// \return why it is away, if it is
std::optional<Failure> CameraCapture::takeAll() {
    std::optional<Failure> away;
    for (const auto& capture : taken) {
        if (capture->isOver())
            continue;
        capture->take();
        if (capture->isOver())
            capture->stream().stop(); // its device is free then
        else if (!away && capture->stream().state() == Stream::State::Away)
            away = capture->stream().trouble();
    }
    return away;
}

void CameraCapture::fail(const Failure& failure) {
    if (!trouble)
        trouble.emplace(failure);
    close();
}

void CameraCapture::end() {
    if (condition != State::Streaming)
        return;
    condition = State::Done;
    close();
}

/// Ends the streams and lets go of the device. One that fails in this makes the camera fail; if that has failed already,
/// only what hangs is news.
void CameraCapture::close() {
    const auto attemptTo = [this](const auto& work) {
        try {
            work();
        } catch (const Failure& failure) {
            if (!trouble || isStuck())
                trouble.emplace(failure);
        }
    };
    for (const auto& capture : taken)
        attemptTo([&capture] { capture->stream().stop(); });
    if (camera && !isStuck())
        attemptTo([this] { camera->close(); });
    if (trouble)
        condition = State::Failed;
}

/// What a recording holds before the place where it breaks off is kept; half a stream of a camera is not.
void CameraCapture::finish() {
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
    for (const auto& capture : taken) {
        try {
            if (keep) {
                capture->commit();
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
    for (const auto& capture : taken) {
        if (condition == State::Failed)
            capture->discard();
    }
}

void CameraCapture::rescue() {
    const bool keep = condition == State::Streaming || condition == State::Done;
    for (const auto& capture : taken) {
        if (keep && capture->units() != 0)
            capture->commit();
        else
            capture->discard();
    }
}

bool CameraCapture::isUnwritable() const noexcept {
    return std::any_of(taken.begin(), taken.end(),
                       [](const auto& capture) { return capture->isUnwritable(); });
}

bool CameraCapture::isStuck() const {
    return std::any_of(taken.begin(), taken.end(),
                       [](const auto& capture) { return !capture->stream().hangsIn().empty(); });
}

double CameraCapture::awaySeconds() const {
    return static_cast<double>(Utils::Clock::nowMicros() - awaySince) / 1e6;
}

} // namespace Zentara::Host
