#include <cstdio>
#include <iostream>
#include <memory>

#include <CLI/CLI.hpp>

#include <zentara/utils/clock.h>

#include "tools/zentara/arguments.h"
#include "tools/zentara/cameras/camera_json.h"
#include "tools/zentara/cameras/camera_session.h"
#include "tools/zentara/interrupt.h"
#include "tools/zentara/json_output.h"
#include "tools/zentara/text_columns.h"
#include "tools/zentara/verb.h"
#include "utils/platform/program.h"

namespace Zentara::Tool {
namespace {

constexpr std::chrono::milliseconds glance{100};

struct DevicesOptions {
    bool watch = false;
    double seconds = 0; ///< 0: until Ctrl-C
    bool json = false;
};

Json listedJson(const CameraInfo& camera) {
    Json json = cameraJson(camera);
    json["vendor"] = orNull(camera.vendor);
    json["nodes"] = Json::array();
    for (const NodeInfo& node : camera.nodes)
        json["nodes"].push_back(Json::parse(toJson(node)));
    return json;
}

void printCameras(std::ostream& out, const std::vector<CameraInfo>& cameras) {
    const auto row = [&out](const std::string& serial, const std::string& product,
                            const std::string& controller, const std::string& nodes,
                            const std::string& path) {
        out << padded(serial, 16) << padded(product, 32) << padded(controller, 12) << padded(nodes, 20)
            << path << '\n';
    };
    row("SERIAL", "PRODUCT", "CONTROLLER", "NODES", "PATH");
    for (const CameraInfo& camera : cameras) {
        std::string kinds;
        for (const NodeInfo& node : camera.nodes)
            kinds += std::string(kinds.empty() ? "" : " ") + kindName(node.kind);
        row(camera.serial.empty() ? "-" : printable(camera.serial), printable(camera.name),
            camera.controller.empty() ? "-" : camera.controller, kinds, printable(camera.path));
    }
}

const char* eventName(CameraEvent::Type type) {
    switch (type) {
    case CameraEvent::Type::Arrived:
        return "arrived";
    case CameraEvent::Type::Removed:
        return "removed";
    case CameraEvent::Type::Trouble:
        break;
    }
    return "error";
}

/// With --json one object a line, so that a reader can follow.
void printEvent(Console& console, const CameraEvent& event) {
    const bool ofCamera = event.type != CameraEvent::Type::Trouble;
    const bool hasNode = !event.camera.nodes.empty(); // a camera without any has a name that says why
    if (console.json) {
        Json line = beginJson(console);
        line["event"] = eventName(event.type);
        line["timeMicros"] = event.timeMicros;
        line["camera"] = ofCamera ? cameraJson(event.camera) : Json();
        line["node"] = hasNode ? Json::parse(toJson(event.camera.nodes.front())) : Json();
        line["message"] = ofCamera ? Json() : Json(printable(event.message));
        printOnOneLine(console.out, line);
        return;
    }
    std::ostream& out = console.out;
    out << padded(eventName(event.type), 9);
    if (!hasNode) {
        out << (ofCamera ? padded("-", 7) + printable(event.camera.name + " " + event.camera.serial) + " " +
                               printable(event.camera.path)
                         : printable(event.message))
            << std::endl;
        return;
    }
    const NodeInfo& node = event.camera.nodes.front();
    out << padded(kindName(node.kind), 7)
        << printable((node.name.empty() ? kindName(node.kind) : node.name) + " " + event.camera.serial) << ' '
        << printable(node.path) << std::endl;
}

ExitCode watchDevices(const DevicesOptions& options, Cameras& cameras, Console& console) {
    InterruptWatch interrupt;
    const std::int64_t start = Utils::Clock::nowMicros();
    console.lines = true;
    cameras.watch();
    while (!interrupt.interrupted() && console.out) {
        const std::int64_t elapsed = Utils::Clock::nowMicros() - start;
        if (options.seconds > 0 && static_cast<double>(elapsed) / 1e6 >= options.seconds)
            return Failure::None;
        if (const auto event = cameras.next(glance))
            printEvent(console, *event);
        // a reader that has gone is found out by writing; without events nothing is written, so the pipe is asked
        else if (&console.out == &std::cout && Utils::Platform::hasLostReader(stdout))
            console.out.setstate(std::ios::badbit); // as the next line would find
    }
    return interrupt.interrupted() ? Failure::Interrupted : Failure::None;
}

ExitCode runDevices(const DevicesOptions& options, Console& console) {
    Cameras cameras(patiently(console));
    if (options.watch)
        return watchDevices(options, cameras, console);
    const std::vector<CameraInfo> all = cameras.list();
    if (options.json) {
        Json json = beginJson(console);
        json["enumerator"] = cameras.backEnds();
        json["cameras"] = Json::array();
        for (const CameraInfo& camera : all)
            json["cameras"].push_back(listedJson(camera));
        print(console.out, json);
    } else if (!all.empty()) {
        printCameras(console.out, all);
    }
    if (all.empty())
        // JSON is an empty list first: scripts read it, and the exit code
        static_cast<void>(cameras.choose({})); // which says why there is none
    cameras.close();
    return Failure::None;
}

} // namespace

Verb addDevicesVerb(CLI::App& program) {
    auto options = std::make_shared<DevicesOptions>();
    CLI::App* command =
        program.add_subcommand("devices", "Lists the cameras that are plugged in")->group("Verbs");
    command->footer(
        "Exit code 3 when there is none. With --watch each node that comes or goes is a line, or\n"
        "with --json an object on a line of its own, beginning with those that are there.");
    CLI::Option* watch =
        command->add_flag("--watch", options->watch, "Tell what comes and goes, until Ctrl-C");
    command->add_option("--seconds", options->seconds, "Watch so long")
        ->type_name("N")
        ->check(secondsBetween(shortestWatch, longestWatch))
        ->needs(watch);
    command->add_flag("--json", options->json, "Print JSON");
    return {command, [options](Console& console) { return runDevices(*options, console); }};
}

} // namespace Zentara::Tool
