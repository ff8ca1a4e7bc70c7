#include "tools/zentara/cameras/info_page.h"

#include "tools/zentara/text_columns.h"

namespace Zentara::Tool {
namespace {

constexpr std::size_t nameWidth = 16;

/// A value in words; numbers as JSON has them, which is their shortest form.
std::string wordOf(const Json& value) {
    if (value.is_null())
        return "-";
    if (value.is_string())
        return printable(value.get<std::string>());
    if (!value.is_array())
        return value.dump();
    std::string words;
    for (const Json& one : value)
        words += (words.empty() ? "" : " ") + wordOf(one);
    return words.empty() ? "-" : words;
}

class Page {
public:
    Page(const CameraInfo& whose, const Json& told) : camera(whose), info(told) {}

    void line(const std::string& name, const std::string& text) {
        lines += padded(name, nameWidth) + text + '\n';
    }

    /// What the camera did not answer stands in the place of the answer.
    template<typename Write>
    void answer(const char* key, const std::string& name, Write write) {
        const auto found = info.find(key);
        if (found == info.end())
            return;
        if (found->is_object() && found->contains("failure"))
            line(name, "failure: " + wordOf((*found)["failure"]));
        else if (found->is_object() && found->contains("notSupported"))
            line(name, "not supported: " + wordOf((*found)["notSupported"]));
        else
            write(*found);
    }

    /// ", from the camera"
    [[nodiscard]] std::string from(const char* part) const {
        const Json source = info.value("source", Json::object()).value(part, Json());
        if (source.is_null())
            return {};
        return source == "failure" ? ", not the camera's own: its flash cannot be read"
                                   : ", from the " + source.get<std::string>();
    }

    void identity() {
        const auto word = [](const std::string& text) { return wordOf(orNull(text)); };
        line("camera", word(camera.name) + ", by " + word(camera.vendor));
        line("serial number", word(camera.serial) + from("serialNumber"));
        line("path", word(camera.path));
        line("controller", word(camera.controller));
        answer("firmware", "firmware", [this](const Json& version) {
            line("firmware", wordOf(version["major"]) + "." + wordOf(version["minor"]));
        });
        for (const Json& node : info["nodes"]) {
            const Json& maker = node["node"];
            line(wordOf(node["kind"]), wordOf(node["name"]) + ", node " +
                                           wordOf(maker["name"].is_null() ? maker["guid"] : maker["name"]));
            for (std::size_t mode = 0; mode < node["modes"].size(); ++mode)
                line("", wordOf(node["modes"][mode]) + "  " + wordOf(node["modeSizes"][mode]));
        }
    }

    void state() {
        answer("depth", "depth values", [this](const Json& depth) {
            line("depth values", "units of " + wordOf(depth["millimetresPerUnit"]) + " mm, along the " +
                                     (depth["along"] == "ray" ? "pixel's ray" : "optical axis"));
        });
        answer("rangeMeters", "range", [this](const Json& range) { line("range", wordOf(range) + " m"); });
        answer("temperatures", "temperatures", [this](const Json& values) {
            for (const Json& value : values)
                line("temperature", wordOf(value["celsius"]) + " degC, sensor " + wordOf(value["sensor"]) +
                                        (value["name"].is_null() ? "" : " (" + wordOf(value["name"]) + ")"));
        });
        answer("overheatings", "overheatings", [this](const Json& count) {
            line("overheatings", wordOf(count["soft"]) + " soft, " + wordOf(count["hard"]) + " hard");
        });
    }

    void lenses() {
        answer("lens", "lens", [this](const Json& lens) {
            for (const char* kind : {"depth", "color"}) {
                for (const Json& model : lens[kind]) {
                    line(std::string(kind) + " lens",
                         wordOf(model["width"]) + "x" + wordOf(model["height"]) +
                             (kind == std::string("depth") ? from("lens") : ", from the description"));
                    for (const auto* keys : {"fx fy cx cy", "k1 k2 k3 p1 p2"})
                        line("", fields(model, keys) + (keys[0] == 'f' ? "  pixels" : ""));
                }
            }
        });
        answer("extrinsics", "extrinsics", [this](const Json& list) {
            for (const Json& extrinsics : list) {
                line("extrinsics",
                     "translation " + wordOf(extrinsics["translation"]) + " mm" + from("extrinsics"));
                line("", "rotation " + wordOf(extrinsics["rotation"]));
            }
        });
    }

    void corrections() {
        answer("calibration", "calibration", [this](const Json& calibration) {
            line("calibration", fields(calibration, "phaseDelay phaseDelay2"));
        });
        answer("corrections", "corrections", [this](const Json& modes) {
            for (const Json& mode : modes) {
                line("corrections", "camera mode " + wordOf(mode["cameraMode"]) + from("corrections"));
                for (const Json& value : mode["calibratedAt"])
                    line("", "calibrated at " + wordOf(value["celsius"]) + " degC, sensor " +
                                 wordOf(value["sensor"]));
                for (const char* key : {"temperatureCompensation", "cyclicErrorCorrection"})
                    if (mode.contains(key))
                        line("", std::string(key) + ", algorithm " + wordOf(mode[key]["algorithm"]) + ": " +
                                     wordOf(mode[key]["parameters"]));
            }
        });
        answer("accelerometerCalibration", "accelerometer", [this](const Json& offset) {
            line("accelerometer", "calibration " + fields(offset, "x y z") + " g" + from("accelerometer"));
        });
    }

    std::string lines;

private:
    /// "fx 224.5  fy 224.25"
    static std::string fields(const Json& object, const std::string& keys) {
        std::string words;
        std::size_t start = 0;
        while (start <= keys.size()) {
            const std::size_t end = std::min(keys.find(' ', start), keys.size());
            const std::string key = keys.substr(start, end - start);
            words += (words.empty() ? "" : "  ") + key + " " + wordOf(object.value(key, Json()));
            start = end + 1;
        }
        return words;
    }

    const CameraInfo& camera;
    const Json& info;
};

} // namespace

std::string infoPage(const CameraInfo& camera, const Json& info) {
    Page page(camera, info);
    page.identity();
    page.state();
    page.lenses();
    page.corrections();
    return page.lines;
}

} // namespace Zentara::Tool
