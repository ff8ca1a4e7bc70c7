#include "tools/viewer/camera_controls.h"

#include <utility>

#include <zentara/host/visible_text.h>

namespace Zentara::Viewer {

using Host::Camera;
using Host::Failure;

CameraControls::CameraControls(std::function<std::optional<Camera>()> camera, std::function<void()> wake)
    : give(std::move(camera)), wakeViewer(std::move(wake)) {}

CameraControls::State CameraControls::state() const {
    const std::lock_guard<std::mutex> guard(lock);
    return now;
}

void CameraControls::refresh(bool parametersToo) {
    {
        const std::lock_guard<std::mutex> guard(lock);
        if (std::exchange(isAsking, true))
            return;
    }
    errands.post([this, parametersToo] {
        ask(parametersToo);
        const std::lock_guard<std::mutex> guard(lock);
        isAsking = false;
    });
}

void CameraControls::set(int number, const Host::ParameterValue& value) {
    {
        const std::lock_guard<std::mutex> guard(lock);
        const bool isFirst = wanted.empty();
        wanted.insert_or_assign(number, value);
        if (!isFirst)
            return;
    }
    errands.post([this] { tellCamera(); });
}

void CameraControls::ask(bool parametersToo) {
    const std::optional<Camera> camera = give();
    if (!camera)
        return;
    try {
        std::vector<Host::Temperature> temperatures;
        try {
            temperatures = camera->temperatures();
        } catch (
            const Host::Unsupported&) { // a recording, or a camera without sensors: there are none to show
        }
        std::vector<Host::Parameter> parameters;
        try {
            if (parametersToo)
                parameters = camera->parameters();
        } catch (const Host::Unsupported&) { // the same
        }
        const std::lock_guard<std::mutex> guard(lock);
        now.temperatures = std::move(temperatures);
        if (parametersToo)
            now.parameters = std::move(parameters);
        ++now.answers;
    } catch (const Failure& failure) {
        noteTrouble(Host::visibleText(failure.what()));
    }
    wakeViewer();
}

void CameraControls::tellCamera() {
    Host::ParameterValues values;
    {
        const std::lock_guard<std::mutex> guard(lock);
        values.swap(wanted);
        now.trouble.clear();
    }
    const std::optional<Camera> camera = give();
    for (const auto& [number, value] : values) {
        try {
            if (!camera)
                return;
            camera->setParameter(number, value);
        } catch (const Failure& failure) {
            noteTrouble(Host::visibleText(failure.what()));
        }
    }
    ask(true); // what it took
}

void CameraControls::noteTrouble(const std::string& text) {
    const std::lock_guard<std::mutex> guard(lock);
    now.trouble = text;
    ++now.answers;
}

} // namespace Zentara::Viewer
