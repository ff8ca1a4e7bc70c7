#include "tools/viewer/panel.h"

#include <algorithm>
#include <cmath>

#include <imgui.h>

#include <zentara/host/sensor_reading.h>
#include <zentara/host/visible_text.h>
#include <zentara/utils/format.h>

#include "tools/viewer/colors.h"

namespace Zentara::Viewer {
namespace {

using Host::NumberRange;
using Host::Parameter;
using Utils::Format;

const ImVec4 red{1, 0.3F, 0.3F, 1};
constexpr ImGuiWindowFlags fixedWindow = ImGuiWindowFlags_NoDecoration | ImGuiWindowFlags_NoMove |
                                         ImGuiWindowFlags_NoSavedSettings | ImGuiWindowFlags_NoNav |
                                         ImGuiWindowFlags_NoBringToFrontOnFocus;
constexpr float farthestShown = 10'000; ///< millimetres, of the sliders; a number may be typed, too

void place(const Area& room) {
    ImGui::SetNextWindowPos({static_cast<float>(room.x), static_cast<float>(room.y)});
    ImGui::SetNextWindowSize(
        {static_cast<float>(std::max(room.width, 1)), static_cast<float>(std::max(room.height, 1))});
}

void text(const std::string& words) { ImGui::TextUnformatted(words.c_str()); }

void layOutCameras(Scene& scene) {
    if (!ImGui::CollapsingHeader("Cameras", ImGuiTreeNodeFlags_DefaultOpen))
        return;
    for (const auto& camera : scene.cameras()) {
        ImGui::PushID(camera.get());
        bool isShown = camera->isShown();
        if (ImGui::Checkbox("##shown", &isShown))
            scene.show(*camera, isShown);
        ImGui::SameLine();
        const std::string name =
            Host::visibleText(camera->info.shortLabel()) +
            (camera->info.controller.empty() ? "" : "  " + Host::visibleText(camera->info.controller)) +
            (camera->isThere ? "" : "  (pulled out)");
        if (ImGui::Selectable(name.c_str(), camera.get() == scene.selected()) && camera->isShown())
            scene.select(*camera);
        ImGui::PopID();
    }
}

void layOutPicture(Scene& scene) {
    if (!ImGui::CollapsingHeader("Picture", ImGuiTreeNodeFlags_DefaultOpen))
        return;
    auto near = static_cast<float>(scene.range().low);
    auto far = static_cast<float>(scene.range().high);
    const bool isNear = ImGui::SliderFloat("near", &near, 0, farthestShown, "%.0f mm");
    const bool isFar = ImGui::SliderFloat("far", &far, 0, farthestShown, "%.0f mm");
    if (isNear || isFar)
        scene.setRange({std::max(0.0F, near), isNear ? std::max(far, near + 1) : std::max(far, 1.0F)});
    bool follows = scene.followsPictures();
    if (ImGui::Checkbox("automatic (a)", &follows))
        scene.followPictures(follows);
    ImGui::SameLine();
    ImGui::Checkbox("points (c)", &scene.hasCloud);
    if (ImGui::Button(scene.isPaused() ? "go on" : "pause"))
        scene.togglePause();
    ImGui::SameLine();
    if (ImGui::Button(scene.film() != nullptr ? "stop" : "record"))
        scene.toggleRecording();
    ImGui::SameLine();
    if (ImGui::Button("snapshot"))
        scene.takeSnapshot();
    if (scene.isPlaying()) {
        ImGui::SameLine();
        if (ImGui::Button("again"))
            scene.playAgain();
    }
}

void layOutTemperatures(const SceneCamera& camera) {
    if (camera.known.temperatures.empty() ||
        !ImGui::CollapsingHeader("Temperatures", ImGuiTreeNodeFlags_DefaultOpen))
        return;
    for (const Host::Temperature& temperature : camera.known.temperatures)
        ImGui::Text("%6.1f degC  %s", static_cast<double>(temperature.celsius),
                    Host::visibleText(Host::labelOf(temperature)).c_str());
}

/// The unit and the range behind a number.
std::string unitOf(const Parameter& parameter) {
    const std::string unit = Host::unitName(parameter.unit);
    return unit == "-" ? "" : " " + unit;
}

/// Told to the camera, and shown until that says what it took.
void set(CameraControls& controls, Parameter& parameter, const Host::ParameterValue& value) {
    parameter.value = value;
    controls.set(parameter.number, value);
}

/// A slider from the range that the camera tells, a list of its values, or words where there is nothing to move.
template<typename Number>
void layOutNumber(CameraControls& controls, Parameter& parameter, Number value) {
    const NumberRange* const range = parameter.ranges.empty() ? nullptr : &parameter.ranges.front();
    const std::string unit = unitOf(parameter);
    constexpr bool isFloat = std::is_same_v<Number, float>;
    if (!parameter.isWritable || range == nullptr) {
        text(Host::valueText(value) + unit);
        if (parameter.isWritable) {
            ImGui::SameLine();
            ImGui::TextColored(ImColor(pale), "no range is told");
        }
        return;
    }
    ImGui::SetNextItemWidth(-1);
    if (range->isList) {
        if (!ImGui::BeginCombo("##value", (Host::valueText(value) + unit).c_str()))
            return;
        for (const double one : range->values) {
            const auto number = static_cast<Number>(one);
            if (ImGui::Selectable((Host::valueText(number) + unit).c_str(), number == value))
                set(controls, parameter, number);
        }
        ImGui::EndCombo();
        return;
    }
    const auto least = static_cast<Number>(range->least);
    const auto greatest = static_cast<Number>(range->greatest);
    bool isMoved = false;
    if constexpr (isFloat)
        isMoved = ImGui::SliderScalar("##value", ImGuiDataType_Float, &value, &least, &greatest,
                                      ("%.5g" + unit).c_str(), ImGuiSliderFlags_AlwaysClamp);
    else
        isMoved = ImGui::SliderScalar("##value", ImGuiDataType_S32, &value, &least, &greatest,
                                      ("%d" + unit).c_str(), ImGuiSliderFlags_AlwaysClamp);
    if (!isMoved)
        return;
    if (range->step > 0) // the nearest one that the camera has
        value = static_cast<Number>(
            std::clamp(range->least + std::round((value - range->least) / range->step) * range->step,
                       range->least, range->greatest));
    set(controls, parameter, value);
}

void layOutParameter(CameraControls& controls, Parameter& parameter) {
    if (!parameter.isSupported || !parameter.value)
        return;
    ImGui::PushID(parameter.number);
    const std::string name = parameter.name.empty() ? "parameter " + std::to_string(parameter.number)
                                                    : Host::visibleText(parameter.name);
    if (const bool* on = std::get_if<bool>(&*parameter.value)) {
        bool wanted = *on;
        if (!parameter.isWritable)
            text(name + ": " + Host::valueText(*parameter.value));
        else if (ImGui::Checkbox(name.c_str(), &wanted))
            set(controls, parameter, wanted);
    } else {
        text(name + (parameter.isWritable ? "" : " (can only be read)"));
        if (const float* number = std::get_if<float>(&*parameter.value))
            layOutNumber(controls, parameter, *number);
        else if (const std::int32_t* whole = std::get_if<std::int32_t>(&*parameter.value))
            layOutNumber(controls, parameter, *whole);
        else
            text(Host::valueText(*parameter.value) + " (x, y, width, height in pixels)");
    }
    if (ImGui::IsItemHovered())
        ImGui::SetTooltip("%s", Host::rangesText(parameter).c_str());
    ImGui::PopID();
}

void layOutParameters(SceneCamera& camera) {
    if (!ImGui::CollapsingHeader("Parameters", ImGuiTreeNodeFlags_DefaultOpen))
        return;
    if (!camera.known.trouble.empty()) {
        ImGui::PushStyleColor(ImGuiCol_Text, alarming);
        ImGui::TextWrapped("%s", camera.known.trouble.c_str());
        ImGui::PopStyleColor();
    }
    if (camera.known.parameters.empty())
        ImGui::TextColored(ImColor(pale),
                           camera.feed->isRecording() ? "a recording has none" : "none are known yet");
    for (Parameter& parameter : camera.known.parameters)
        layOutParameter(*camera.controls, parameter);
}

} // namespace

void layOutPanel(Scene& scene, const Area& room) {
    place(room);
    if (ImGui::Begin("panel", nullptr, fixedWindow & ~ImGuiWindowFlags_NoScrollbar)) {
        ImGui::PushItemWidth(ImGui::GetContentRegionAvail().x * 0.7F);
        layOutCameras(scene);
        layOutPicture(scene);
        if (SceneCamera* camera = scene.selected()) {
            layOutTemperatures(*camera);
            layOutParameters(*camera);
        }
        ImGui::PopItemWidth();
    }
    ImGui::End();
}

void layOutStatus(Scene& scene, const Area& room) {
    place(room);
    if (ImGui::Begin("status", nullptr, fixedWindow | ImGuiWindowFlags_NoInputs)) {
        if (const Film* film = scene.film()) {
            ImGui::TextColored(red, "RECORDING");
            ImGui::SameLine();
            text(static_cast<std::string>(Format("% frames into '%'") % film->frames() %
                                          Host::visibleText(film->path())));
            ImGui::SameLine();
        }
        if (scene.isPaused()) {
            ImGui::TextColored(ImColor(alarming),
                               scene.film() != nullptr ? "PAUSED, the recording goes on" : "PAUSED");
            ImGui::SameLine();
        }
        const std::string message = scene.message();
        if (!message.empty() && scene.messageIsTrouble())
            ImGui::TextColored(ImColor(alarming), "%s", message.c_str());
        else if (!message.empty())
            text(message);
        else
            ImGui::TextColored(ImColor(pale), "h: keys");
    }
    ImGui::End();
}

void layOutHelp(Scene& scene) {
    const ImVec2 all = ImGui::GetIO().DisplaySize;
    ImGui::SetNextWindowPos({all.x / 2, all.y / 2}, ImGuiCond_Always, {0.5F, 0.5F});
    if (ImGui::Begin("Keys", &scene.hasHelp,
                     ImGuiWindowFlags_AlwaysAutoResize | ImGuiWindowFlags_NoCollapse |
                         ImGuiWindowFlags_NoSavedSettings))
        ImGui::TextUnformatted(viewFooter());
    ImGui::End();
}

} // namespace Zentara::Viewer
