#include <cstdio>
#include <iostream>
#include <memory>

#include <CLI/CLI.hpp>

#include <zentara/utils/clock.h>

#include "host/cameras/camera_bus.h"
#include "host/cameras/stream_description.h"
#include "tools/zentara/arguments.h"
#include "tools/zentara/cameras/camera_json.h"
#include "tools/zentara/interrupt.h"
#include "tools/zentara/json_output.h"
#include "tools/zentara/text_columns.h"
#include "tools/zentara/verb.h"
#include "utils/platform/program.h"

namespace Zentara::Tool {
namespace {

constexpr unsigned long lookMilliseconds = 100;

struct DevicesOptions {
    bool watch = false;
    double seconds = 0; ///< 0: until Ctrl-C
    bool json = false;
};

Json toJson(const NodeEvent& node) {
    return {{"kind", nodeTypeName(node.nodeType)},
            {"name", node.name},
            {"path", node.path},
            {"ids", {node.vendorId, node.productId, node.revision, node.interfaceNumber}}};
}

Json toJson(const CameraEntry& camera) {
    Json json = cameraJson(camera);
    json["vendor"] = orNull(camera.vendor);
    json["nodes"] = Json::array();
    for (const NodeEvent& node : camera.nodes)
        json["nodes"].push_back(toJson(node));
    return json;
}

void printCameras(std::ostream& out, const std::vector<CameraEntry>& cameras) {
    const auto row = [&out](const std::string& serial, const std::string& product,
                            const std::string& controller, const std::string& nodes,
                            const std::string& path) {
        out << padded(serial, 16) << padded(product, 32) << padded(controller, 12) << padded(nodes, 20)
            << path << '\n';
    };
    row("SERIAL", "PRODUCT", "CONTROLLER", "NODES", "PATH");
    for (const CameraEntry& camera : cameras) {
        std::string kinds;
        for (const NodeEvent& node : camera.nodes)
            kinds += std::string(kinds.empty() ? "" : " ") + nodeTypeName(node.nodeType);
        row(printable(camera.serialNumber()), printable(camera.product),
            camera.controller.empty() ? "-" : camera.controller, kinds, printable(camera.path));
    }
}

const char* eventName(ExternalEventType type) {
    switch (type) {
    case ExternalEventType_NODE_ARRIVED:
        return "arrived";
    case ExternalEventType_NODE_REMOVED:
        return "removed";
    default:
        return "error";
    }
}

/// With --json one object a line, so that a reader can follow.
void printEvent(Console& console, const ExternalEvent& event, CameraBus& bus) {
    const NodeEvent& node = event.node;
    const bool isError = event.type == ExternalEventType_ERROR;
    if (console.json) {
        Json line = beginJson(console);
        line["event"] = eventName(event.type);
        line["timeMicros"] = event.timeMicros;
        line["camera"] = isError ? Json() : cameraJson(bus.describe(node));
        line["node"] = isError ? Json() : toJson(node);
        line["message"] = isError ? Json(printable(node.name)) : Json();
        printOnOneLine(console.out, line);
        return;
    }
    std::ostream& out = console.out;
    out << padded(eventName(event.type), 9);
    if (isError)
        out << printable(node.name) << std::endl;
    else
        out << padded(nodeTypeName(node.nodeType), 7) << cameraLabel(node) << ' ' << printable(node.path)
            << std::endl;
}

ExitCode watchDevices(const DevicesOptions& options, CameraBus& bus, Console& console) {
    InterruptWatch interrupt;
    const std::int64_t start = Utils::Clock::nowMicros();
    console.lines = true;
    bus.watch();
    while (!interrupt.interrupted() && console.out) {
        const std::int64_t elapsed = Utils::Clock::nowMicros() - start;
        if (options.seconds > 0 && static_cast<double>(elapsed) / 1e6 >= options.seconds)
            return Failure::None;
        ExternalEvent event;
        if (bus.next(event, lookMilliseconds))
            printEvent(console, event, bus);
        else if (&console.out == &std::cout && Utils::Platform::hasLostReader(stdout))
            console.out.setstate(std::ios::badbit); // as the next line would find
    }
    return interrupt.interrupted() ? Failure::Interrupted : Failure::None;
}

ExitCode runDevices(const DevicesOptions& options, Console& console) {
    CameraBus bus(notesTo(console.err));
    if (options.watch)
        return watchDevices(options, bus, console);
    const std::vector<CameraEntry> cameras = bus.cameras();
    if (options.json) {
        Json json = beginJson(console);
        json["enumerator"] = bus.backendName();
        json["cameras"] = Json::array();
        for (const CameraEntry& camera : cameras)
            json["cameras"].push_back(toJson(camera));
        print(console.out, json);
    } else if (!cameras.empty()) {
        printCameras(console.out, cameras);
    }
    if (cameras.empty())
        bus.failForNone();
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
