#include "tools/zentara/cameras/stored_document.h"

#include <zentara/utils/format.h>

#include "host/files/paths.h"
#include "tools/zentara/cameras/calibration_json.h"
#include "tools/zentara/cameras/camera_json.h"

namespace Zentara::Tool {

using Utils::Format;

void checkDocument(JsonFields& fields) {
    const Json& schema = fields.need("schema");
    if (!schema.is_number_integer() || schema < 1 || schema > jsonSchema)
        fields.fail("schema", Utils::Format("this program reads schemas 1 to %, not %") % jsonSchema %
                                  shortText(schema));
}

std::string serialNumberIn(const Json& document) {
    const auto camera = document.find("camera");
    if (camera == document.end() || !camera->is_object())
        return {};
    for (const char* key : {"serial", "serialNumber"}) { // schema 1 had the longer name
        const auto serial = camera->find(key);
        if (serial != camera->end() && serial->is_string())
            return serial->get<std::string>();
    }
    return {};
}

void noteOtherCamera(const std::string& serialNumber, const CameraSession& session, Console& console) {
    const std::string& present = session.camera().info().serial;
    if (!serialNumber.empty() && serialNumber != present)
        note(console, "the file is of camera " + serialNumber + ", this one is " + present);
}

Json calibrationDocument(const Host::CameraInfo& camera, const CalibrationInternal& calibration) {
    Json json = beginJson("calibration");
    json["camera"] = cameraJson(camera);
    json["calibration"] = toJson(calibration);
    return json;
}

StoredCalibration readCalibrationFile(const std::string& path) {
    const Json json = readJsonFile(path);
    JsonFields fields(json, path);
    checkDocument(fields);
    StoredCalibration stored;
    stored.calibration = asMarshalled(calibrationFromJson(fields.object("calibration")));
    stored.serialNumber = serialNumberIn(json);
    fields.refuseOthers({"verb", "action", "camera", "applied", "source"});
    return stored;
}

std::string freeBackupName() {
    const std::string stem = "calibration-before";
    std::string path = stem + ".json";
    for (int number = 2; isThere(path); ++number)
        path = Format("%-%.json") % stem % number;
    return path;
}

} // namespace Zentara::Tool
