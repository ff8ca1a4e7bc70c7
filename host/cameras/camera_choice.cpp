#include "host/cameras/camera_choice.h"

#include <algorithm>
#include <iterator>

#include <zentara/utils/format.h>
#include <zentara/utils/text.h>

#include "utils/visible_text.h"

namespace Zentara::Host {

using Utils::Format;

namespace {

bool hasName(const CameraEntry& camera, const std::string& name) {
    return camera.path == name || camera.serialNumber() == name;
}

bool contains(const std::string& text, const std::string& part) {
    return Utils::toLower(text).find(Utils::toLower(part)) != std::string::npos;
}

bool resembles(const CameraEntry& camera, const std::string& name) {
    return contains(camera.product, name) || contains(camera.controller, name) ||
           std::any_of(camera.nodes.begin(), camera.nodes.end(),
                       [&](const NodeEvent& node) { return contains(cameraLabel(node), name); });
}

std::string listOf(const std::vector<CameraEntry>& cameras) {
    std::string text;
    for (const CameraEntry& camera : cameras)
        text += (text.empty() ? "" : ", ") + Utils::visibleText(camera.serialNumber());
    return text;
}

std::vector<CameraEntry> camerasNamed(const std::vector<CameraEntry>& cameras, const std::string& name) {
    if (name.empty())
        throw Failure(Failure::Usage, "the name of the camera is empty");
    std::vector<CameraEntry> found;
    for (const auto& fits : {hasName, resembles}) {
        std::copy_if(cameras.begin(), cameras.end(), std::back_inserter(found),
                     [&](const CameraEntry& camera) { return fits(camera, name); });
        if (!found.empty())
            return found;
    }
    throw Failure(Failure::NoDevice,
                  Format("no camera is called '%'; plugged in: %") % name % listOf(cameras));
}

} // namespace

std::vector<CameraEntry> chooseCameras(const std::vector<CameraEntry>& cameras,
                                       const std::vector<std::string>& names) {
    if (cameras.empty())
        throw Failure(Failure::NoDevice, "no camera is plugged in");
    if (names.empty())
        return {cameras.front()};
    std::vector<CameraEntry> chosen;
    for (const std::string& name : names) {
        for (const CameraEntry& camera : camerasNamed(cameras, name)) {
            const bool known = std::any_of(chosen.begin(), chosen.end(), [&](const CameraEntry& other) {
                return other.path == camera.path;
            });
            if (!known)
                chosen.push_back(camera);
        }
    }
    return chosen;
}

CameraEntry chooseCamera(const std::vector<CameraEntry>& cameras, const std::string& name) {
    const auto names = name.empty() ? std::vector<std::string>() : std::vector<std::string>{name};
    const std::vector<CameraEntry> chosen = chooseCameras(cameras, names);
    if (chosen.size() > 1)
        throw Failure(Failure::Usage,
                      Format("'%' may be any of %; name one by its serial number") % name % listOf(chosen));
    return chosen.front();
}

CameraEntry chooseCameraToWrite(const std::vector<CameraEntry>& cameras, const std::string& name) {
    if (name.empty() && cameras.size() > 1)
        throw Failure(Failure::Usage,
                      Format("several cameras are plugged in, and none is written to unnamed: %") %
                          listOf(cameras),
                      {}, "name one with --camera");
    return chooseCamera(cameras, name);
}

} // namespace Zentara::Host
