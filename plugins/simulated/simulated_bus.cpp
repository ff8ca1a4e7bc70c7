#include "plugins/simulated/simulated_bus.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

#include <zentara/core/guids.h>
#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/environment_variable.h>
#include <zentara/utils/exceptions.h>
#include <zentara/utils/files.h>
#include <zentara/utils/format.h>

#include "plugins/descriptions/json_fields.h"

namespace Zentara::Simulated {

using namespace Cameras;
namespace {

using Utils::Format;

std::string fileOfEnvironment() {
    Utils::EnvironmentVariable file(SimulatedBus::variable);
    return file.isDefined() ? file.getValue() : std::string();
}

const CameraDescription& described(const std::vector<CameraDescription>& descriptions,
                                   const JsonValue& model) {
    const std::string name = model.text();
    std::string known;
    for (const CameraDescription& description : descriptions) {
        if (description.model == name)
            return description;
        known += " " + description.model;
    }
    model.fail(Format("no camera '%' is described; known:%") % name % (known.empty() ? " none" : known));
}

/// Cameras of other devices are described beside them.
bool isSimulated(const CameraDescription& camera) {
    return std::any_of(camera.nodes.begin(), camera.nodes.end(), [](const NodeDescription& node) {
        return guidEquals(node.device, Core::Guids::MOCKVIDEODEVICE_IMPL) ||
               guidEquals(node.device, Core::Guids::MOCKAUDIODEVICE_IMPL);
    });
}

/// A pipe or a device would hold the reader back for ever, or never end.
void refuseWhatMayBlock(const std::string& path) {
    std::error_code unknown; // reading it tells more then
    const auto status = std::filesystem::status(std::u8string(path.begin(), path.end()), unknown);
    if (!unknown && status.type() != std::filesystem::file_type::regular)
        throw Utils::UIOException(Format("cannot read '%': it is not a regular file") % path);
}

} // namespace

SimulatedBus::SimulatedBus()
    : descriptions(readDescriptionFolder(descriptionFolder())), filePath(fileOfEnvironment()) {
    std::erase_if(descriptions, [](const CameraDescription& camera) { return !isSimulated(camera); });
    if (filePath.empty()) {
        for (const CameraDescription& description : descriptions)
            plugged.push_back({&description, description.serialNumber, {}});
    }
    refresh();
}

void SimulatedBus::refresh() {
    if (filePath.empty())
        return;
    std::string text;
    const auto isUnreadable = [this](const std::exception& failure) {
        looked = false; // the text that comes back is looked at whatever it is
        trouble = failure.what();
    };
    try {
        refuseWhatMayBlock(filePath);
        text = Utils::readFile(filePath);
    } catch (const Plugin::ConfigurationPluginException& failure) {
        return isUnreadable(failure);
    } catch (const Utils::UIOException& failure) {
        return isUnreadable(failure);
    }
    if (looked && text == lastText)
        return;
    looked = false; // so it stays when memory is lacking
    lastText = std::move(text);
    try {
        plugged = parse(lastText);
        trouble.clear();
    } catch (const Plugin::ConfigurationPluginException& failure) {
        trouble = failure.what(); // told once, and the cameras stay as they were
    }
    looked = true;
}

std::vector<SimulatedBus::Camera> SimulatedBus::parse(const std::string& text) const {
    const LocatedJson json = parseLocatedJson(text, filePath);
    JsonFields fields(JsonValue(json, filePath, {}));
    static_cast<void>(fields.need("format").whole(1, 1));
    std::vector<Camera> cameras;
    for (const JsonValue& value : fields.need("cameras").list()) {
        JsonFields entry(value);
        Camera camera{&described(descriptions, entry.need("model")), {}, {}};
        const auto serialNumber = entry.find("serialNumber");
        camera.serialNumber = serialNumber ? serialNumber->name() : camera.description->serialNumber;
        if (const auto settings = entry.find("settings"))
            camera.settings = settings->text();
        entry.finish();
        for (const Camera& other : cameras) {
            if (other.serialNumber == camera.serialNumber)
                value.fail(Format("another camera has the serial number '%'") % camera.serialNumber);
        }
        cameras.push_back(std::move(camera));
    }
    fields.finish();
    return cameras;
}

const SimulatedBus::Camera* SimulatedBus::find(const std::string& path) const {
    for (const Camera& camera : plugged) {
        if (camera.path() == path)
            return &camera;
    }
    return nullptr;
}

bool SimulatedBus::isCameraPath(const std::string& path) { return path.rfind(pathPrefix, 0) == 0; }

} // namespace Zentara::Simulated
