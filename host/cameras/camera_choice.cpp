#include "host/cameras/camera_choice.h"

#include <algorithm>
#include <iterator>

#include <zentara/utils/format.h>
#include <zentara/utils/text.h>

#include "host/cameras/camera_register.h"
#include "utils/visible_text.h"

namespace Zentara::Host {

using Utils::Format;

namespace {

bool hasName(const CameraInfo& camera, const std::string& name) {
    return camera.path == name || camera.serial == name;
}

bool contains(const std::string& text, const std::string& part) {
    return Utils::toLower(text).find(Utils::toLower(part)) != std::string::npos;
}

/// What a node is called in messages: its kind where it has no name.
std::string labelOf(const NodeInfo& node, const CameraInfo& camera) {
    return (node.name.empty() ? kindName(node.kind) : node.name) + " " + camera.serial;
}

bool resembles(const CameraInfo& camera, const std::string& name) {
    return contains(camera.product, name) || contains(camera.controller, name) ||
           std::any_of(camera.nodes.begin(), camera.nodes.end(),
                       [&](const NodeInfo& node) { return contains(labelOf(node, camera), name); });
}

std::string listOf(const std::vector<CameraInfo>& cameras) {
    std::string text;
    for (const CameraInfo& camera : cameras)
        text += (text.empty() ? "" : ", ") + Utils::visibleText(camera.shortLabel());
    return text;
}

std::vector<CameraInfo> camerasNamed(const std::vector<CameraInfo>& cameras, const std::string& name,
                                     const std::string& where) {
    if (name.empty())
        throw Failure(Failure::Usage, "the name of the camera is empty");
    std::vector<CameraInfo> found;
    for (const auto& fits : {hasName, resembles}) {
        std::copy_if(cameras.begin(), cameras.end(), std::back_inserter(found),
                     [&](const CameraInfo& camera) { return fits(camera, name); });
        if (!found.empty())
            return found;
    }
    throw Failure(Failure::NoDevice,
                  Format("no camera is called '%'; %: %") % name % where % listOf(cameras));
}

std::vector<CameraInfo> infosOf(const std::vector<CameraEntry>& cameras) {
    std::vector<CameraInfo> infos;
    std::transform(cameras.begin(), cameras.end(), std::back_inserter(infos), infoOf);
    return infos;
}

const CameraEntry& entryOf(const CameraInfo& info, const std::vector<CameraEntry>& cameras) {
    return *std::find_if(cameras.begin(), cameras.end(),
                         [&](const CameraEntry& camera) { return camera.path == info.path; });
}

} // namespace

std::vector<CameraInfo> chooseCameras(const std::vector<CameraInfo>& cameras,
                                      const std::vector<std::string>& names, const std::string& where) {
    if (cameras.empty())
        throw Failure(Failure::NoDevice, "no camera is " + where);
    if (names.empty())
        return {cameras.front()};
    std::vector<CameraInfo> chosen;
    for (const std::string& name : names) {
        for (const CameraInfo& camera : camerasNamed(cameras, name, where)) {
            const bool known = std::any_of(chosen.begin(), chosen.end(), [&](const CameraInfo& other) {
                return other.path == camera.path;
            });
            if (!known)
                chosen.push_back(camera);
        }
    }
    return chosen;
}

CameraInfo chooseCamera(const std::vector<CameraInfo>& cameras, const std::string& name,
                        const std::string& where) {
    const auto names = name.empty() ? std::vector<std::string>() : std::vector<std::string>{name};
    const std::vector<CameraInfo> chosen = chooseCameras(cameras, names, where);
    if (chosen.size() > 1)
        throw Failure(Failure::Usage,
                      Format("'%' may be any of %; name one by its serial number") % name % listOf(chosen));
    return chosen.front();
}

std::vector<CameraEntry> chooseCameras(const std::vector<CameraEntry>& cameras,
                                       const std::vector<std::string>& names) {
    std::vector<CameraEntry> chosen;
    for (const CameraInfo& info : chooseCameras(infosOf(cameras), names))
        chosen.push_back(entryOf(info, cameras));
    return chosen;
}

CameraEntry chooseCamera(const std::vector<CameraEntry>& cameras, const std::string& name) {
    return entryOf(chooseCamera(infosOf(cameras), name), cameras);
}

CameraEntry chooseCameraToWrite(const std::vector<CameraEntry>& cameras, const std::string& name) {
    if (name.empty() && cameras.size() > 1)
        throw Failure(Failure::Usage,
                      Format("several cameras are plugged in, and none is written to unnamed: %") %
                          listOf(infosOf(cameras)),
                      {}, "name one by its serial number");
    return chooseCamera(cameras, name);
}

} // namespace Zentara::Host
