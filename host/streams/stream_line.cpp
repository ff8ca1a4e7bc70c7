#include <zentara/host/stream_line.h>

#include <array>
#include <charconv>
#include <utility>

#include <zentara/host/failure.h>
#include <zentara/host/visible_text.h>

#include "host/cameras/camera_json.h"
#include "host/float_text.h"
#include "host/json_place.h"

namespace Zentara::Host {

namespace {

constexpr std::int64_t lineVersion = 1;

/// "320x240@60": of sound there is nothing to read.
void readModeText(const std::string& text, Mode& mode) {
    mode.name = text;
    const char* at = text.data();
    const char* const end = at + text.size();
    std::array<std::uint32_t, 3> numbers{};
    for (std::size_t index = 0; index < numbers.size(); ++index) {
        const auto [after, error] = std::from_chars(at, end, numbers[index]);
        const bool isSeparated = index == 2 ? after == end : after != end && *after == "x@"[index];
        if (error != std::errc() || !isSeparated)
            return;
        at = after + 1;
    }
    mode.width = numbers[0];
    mode.height = numbers[1];
    mode.rate = numbers[2];
}

CameraIntrinsics readLens(const JsonPlace& lens) {
    CameraIntrinsics read;
    read.width = lens.at("width").integer<std::uint16_t>();
    read.height = lens.at("height").integer<std::uint16_t>();
    for (const auto& [name, number] :
         {std::pair("fx", &read.fx), std::pair("fy", &read.fy), std::pair("cx", &read.cx),
          std::pair("cy", &read.cy), std::pair("k1", &read.k1), std::pair("k2", &read.k2),
          std::pair("k3", &read.k3), std::pair("p1", &read.p1), std::pair("p2", &read.p2)})
        *number = lens.at(name).real();
    return read;
}

/// The value whose name that is. \throws JsonError
template<typename Value, std::size_t Count>
Value named(const JsonPlace& place, const char* (*nameOf)(Value) noexcept,
            const std::array<Value, Count>& all) {
    const std::string word = place.text();
    for (const Value value : all) {
        if (word == nameOf(value))
            return value;
    }
    place.fail("'" + visibleText(word) + "' is not known here");
}

bool says(const JsonPlace& line, const char* key) { return line.has(key) && !line.at(key).json().is_null(); }

StreamInfo read(const JsonPlace& line) {
    (void)line.at("zentara").number(lineVersion, lineVersion);
    StreamInfo info;
    info.mode.kind = named(line.at("kind"), &kindName, std::array{Kind::Depth, Kind::Color, Kind::Audio});
    if (says(line, "serial"))
        info.camera.serial = line.at("serial").text();
    if (says(line, "name"))
        info.camera.name = line.at("name").text();
    if (says(line, "mode"))
        readModeText(line.at("mode").text(), info.mode);
    if (says(line, "millimetresPerUnit"))
        info.millimetresPerUnit = line.at("millimetresPerUnit").real();
    if (says(line, "along"))
        info.depthAlong =
            named(line.at("along"), &depthAlongName, std::array{DepthAlong::Axis, DepthAlong::Ray});
    if (says(line, "lens"))
        info.lens = readLens(line.at("lens"));
    if (says(line, "lensSource"))
        info.lensSource = named(
            line.at("lensSource"), &sourceName,
            std::array{Source::None, Source::Camera, Source::Description, Source::Failure, Source::Unknown});
    return info;
}

} // namespace

std::string streamLine(const StreamInfo& info) {
    Json line{{"zentara", lineVersion},
              {"kind", kindName(info.mode.kind)},
              {"serial", orNull(visibleText(info.camera.serial))},
              {"name", orNull(visibleText(info.camera.name))},
              {"mode", visibleText(info.mode.text())}};
    if (info.mode.kind == Kind::Depth) {
        line["millimetresPerUnit"] = floatJson(info.millimetresPerUnit);
        line["along"] = depthAlongName(info.depthAlong);
    }
    if (info.mode.kind != Kind::Audio) {
        line["lens"] = info.lens ? lensJson(*info.lens) : Json();
        line["lensSource"] = sourceName(info.lensSource);
    }
    return line.dump();
}

StreamInfo readStreamLine(const std::string& line) try {
    const Json document = parseJson(line);
    return read(JsonPlace(document));
} catch (const JsonError& failure) {
    throw Failure(Failure::Failed, "cannot read what belongs to a stream", failure.what(),
                  "it is one line of JSON, as streamLine() writes it");
}

} // namespace Zentara::Host
