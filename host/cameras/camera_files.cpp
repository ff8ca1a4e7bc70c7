#include <zentara/host/camera_files.h>

#include <charconv>

#include <zentara/utils/format.h>

#include "host/cameras/calibration_json.h"
#include "host/cameras/camera_json.h"
#include "host/cameras/parameter_json.h"
#include "host/json_differences.h"
#include "host/json_file.h"

namespace Zentara::Host {

using Utils::Format;

namespace {

/// Of the camera that a document is of; empty when it does not say.
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

void checkSchema(const JsonPlace& root) {
    const Json& schema = root.at("schema").json();
    if (!schema.is_number_integer() || schema < 1 || schema > documentSchema)
        root.at("schema").fail(Format("this program reads schemas 1 to %, not %") % documentSchema %
                               shortText(schema));
}

Json documentOf(const CameraInfo& camera) {
    return {{"schema", documentSchema}, {"camera", cameraJson(camera)}};
}

/// What a camera gets to see of a calibration, and what comes back when it is read: the marshalled form, read again.
CalibrationInternal asMarshalled(const CalibrationInternal& calibration) {
    unsigned int size = 0;
    calibration.marshal(nullptr, &size); // into nothing: tells how many bytes it takes
    std::vector<unsigned char> bytes(size + 1);
    CalibrationInternal copy;
    if (calibration.marshal(bytes.data(), &size) != 0 || copy.unmarshal(bytes.data(), size) != 0)
        throw Failure(Failure::Failed, Format("the calibration does not survive its form of % bytes") % size);
    return copy;
}

ParameterValue valueAt(int number, const JsonPlace& place) {
    try {
        return parameterFromJson(number, place.json());
    } catch (const Failure& failure) {
        place.fail(failure.what()); // not what was asked for is wrong, but the document
    }
}

int numberCalled(const std::string& name, const JsonPlace& place) {
    int number = -1;
    std::from_chars(name.data(), name.data() + name.size(), number);
    if (name != std::to_string(number) || !parameterKind(number))
        place.fail("'" + name + "' is no parameter; they are numbered from 0 to 15");
    return number;
}

} // namespace

StoredCalibration readCalibrationFile(const std::string& path) {
    const Json document = readJsonFile(path);
    return readingFrom(path, [&document] {
        const JsonPlace root(document);
        checkSchema(root);
        StoredCalibration stored;
        stored.calibration = asMarshalled(calibrationFromJson(root.at("calibration")));
        stored.serialNumber = serialNumberIn(document);
        // A program that prints more around it prints a document all the same.
        root.allow({"schema", "calibration", "camera", "verb", "action", "applied", "source"});
        return stored;
    });
}

std::string calibrationDocument(const CameraInfo& camera, const CalibrationInternal& calibration) {
    Json document = documentOf(camera);
    document["calibration"] = calibrationJson(calibration);
    return printed(document);
}

std::string toJson(const CalibrationInternal& calibration) { return printed(calibrationJson(calibration)); }

CalibrationInternal calibrationFromJson(const std::string& text, const std::string& source) {
    return readingFrom(source, [&text] {
        const Json document = parseJson(text);
        return asMarshalled(calibrationFromJson(JsonPlace(document)));
    });
}

std::vector<ValueChange> changesBetween(const CalibrationInternal& before, const CalibrationInternal& after) {
    return differencesBetween(calibrationJson(before), calibrationJson(after));
}

StoredParameters readParameterFile(const std::string& path) {
    const Json document = readJsonFile(path);
    return readingFrom(path, [&document] {
        const JsonPlace root(document);
        checkSchema(root);
        StoredParameters stored;
        for (const auto& [name, place] : root.at("values").fields()) {
            const int number = numberCalled(name, place);
            stored.values[number] = valueAt(number, place);
        }
        stored.serialNumber = serialNumberIn(document);
        root.allow({"schema", "values", "camera", "verb", "action", "file"});
        return stored;
    });
}

std::string parameterDocument(const CameraInfo& camera, const ParameterValues& values) {
    Json document = documentOf(camera);
    document["values"] = Json::object();
    for (const auto& [number, value] : values)
        document["values"][std::to_string(number)] = parameterJson(value);
    return printed(document);
}

std::vector<ParameterChange> changesBetween(const ParameterValues& before, const ParameterValues& after) {
    std::vector<ParameterChange> changes;
    for (const auto& [number, value] : after) {
        const auto old = before.find(number);
        if (old == before.end())
            changes.push_back({number, {}, value});
        else if (!(old->second == value))
            changes.push_back({number, old->second, value});
    }
    return changes;
}

} // namespace Zentara::Host
