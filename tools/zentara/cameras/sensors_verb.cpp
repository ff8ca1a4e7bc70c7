#include <cmath>
#include <memory>
#include <optional>

#include <CLI/CLI.hpp>

#include <zentara/host/output_file.h>
#include <zentara/host/sensor_reading.h>
#include <zentara/utils/clock.h>
#include <zentara/utils/format.h>

#include "tools/zentara/arguments.h"
#include "tools/zentara/cameras/camera_json.h"
#include "tools/zentara/cameras/camera_session.h"
#include "tools/zentara/interrupt.h"
#include "tools/zentara/supervisor.h"

namespace Zentara::Tool {
namespace {

struct SensorsOptions : CameraOptions {
    bool watch = false;
    WatchTimes times;
    int accelerometer = -1;
    std::string png;
};

double secondsSince(std::int64_t start) {
    return static_cast<double>(Utils::Clock::nowMicros() - start) / 1e6;
}

/// On one line, with units.
std::string readingText(const SensorReading& reading) {
    const auto tenths = std::lround(reading.seconds * 10);
    std::string text = Utils::Format("%.% s") % (tenths / 10) % (tenths % 10);
    for (const Temperature& value : reading.temperatures)
        text += Utils::Format("  % % degC") % printable(labelOf(value)) % valueText(value.celsius);
    if (const auto& measured = reading.acceleration)
        text += "  acceleration " + (measured->name.empty() ? "" : printable(measured->name) + " ") +
                valueText(measured->value.x) + " " + valueText(measured->value.y) + " " +
                valueText(measured->value.z) + " g";
    return text;
}

class SensorWatch {
public:
    SensorWatch(const SensorsOptions& wanted, CameraSession& camera, Console& target)
        : options(wanted), session(camera), console(target) {
        if (options.accelerometer >= 0)
            accelerometer = static_cast<std::uint32_t>(options.accelerometer);
    }

    SensorReading read() {
        SensorReading reading;
        reading.temperatures = session.camera().temperatures();
        reading.acceleration = session.camera().accelerometer(accelerometer);
        reading.seconds = secondsSince(start);
        return reading;
    }

    /// \return whether it was interrupted
    bool watch(const InterruptWatch& interrupt) {
        return watchEvery(options.times, interrupt, [this](double) {
            note(read());
            return console.out.good();
        });
    }

    /// Of what came; nothing to plot leaves no file.
    void writePlot(OutputFile& file) const {
        if (history.empty())
            return;
        file.write(plotOf(session.camera().info().serial, history).png());
        file.commit();
    }

private:
    void note(const SensorReading& reading) {
        if (!options.png.empty())
            history.push_back(reading);
        if (options.json) {
            Json json = beginJson(console);
            json["camera"] = cameraJson(session.camera().info());
            json.update(Json::parse(toJson(reading)));
            printOnOneLine(console.out, json);
        } else {
            console.out << readingText(reading) << std::endl;
        }
    }

    const SensorsOptions& options;
    CameraSession& session;
    Console& console;
    const std::int64_t start = Utils::Clock::nowMicros();
    std::optional<std::uint32_t> accelerometer; ///< where to read it, if not where the description says
    std::vector<SensorReading> history;         ///< for the plot
};

/// Whatever ends it, the plot shows what came before.
ExitCode watchSensors(SensorWatch& sensors, const SensorsOptions& options, Console& console) {
    console.lines = true;
    const InterruptWatch interrupt;
    std::optional<OutputFile> plot;
    if (!options.png.empty())
        plot.emplace(options.png);
    const auto finish = [&] {
        if (plot)
            sensors.writePlot(*plot);
    };
    const Rescue rescued(finish);
    bool interrupted = false;
    try {
        interrupted = sensors.watch(interrupt);
    } catch (const Failure&) {
        finish();
        throw;
    }
    finish();
    return interrupted ? Failure::Interrupted : Failure::None;
}

ExitCode runSensors(const SensorsOptions& options, Console& console) {
    return withCamera(options, console, [&](CameraSession& session) {
        SensorWatch sensors(options, session, console);
        if (options.watch)
            return watchSensors(sensors, options, console);
        const SensorReading reading = sensors.read();
        session.finish(Json::parse(toJson(reading)), readingText(reading) + '\n');
        return Failure::None;
    });
}

} // namespace

Verb addSensorsVerb(CLI::App& program) {
    auto options = std::make_shared<SensorsOptions>();
    CLI::App* command =
        program.add_subcommand("sensors", "Reads a depth camera's temperatures and accelerometer")
            ->group("Verbs");
    command->footer(
        "With --watch each reading is a line, or with --json an object on a line of its own; the plot is\n"
        "written when the watching ends, be it by Ctrl-C or a failure, and replaces a file that is there.\n"
        "Sensors have the names of the camera's description, and the accelerometer is read where the\n"
        "description says that it is.");
    addCameraOptions(*command, *options);
    CLI::Option* watch = command->add_flag("--watch", options->watch, "Read again and again, until Ctrl-C");
    command->add_option("--seconds", options->times.seconds, "Watch so long")
        ->type_name("N")
        ->check(secondsBetween(shortestWatch, longestWatch))
        ->needs(watch);
    command->add_option("--interval", options->times.interval, "Milliseconds between readings")
        ->type_name("MS")
        ->capture_default_str()
        ->check(CLI::Range(1U, 3'600'000U).description(""))
        ->needs(watch);
    command
        ->add_option("--accelerometer", options->accelerometer,
                     "Read an accelerometer whose values begin at this register of the camera's "
                     "time-of-flight controller")
        ->type_name("REGISTER")
        ->check(CLI::Range(0, 0xFFFF).description(""));
    command->add_option("--png", options->png, "Plot the readings over the time")
        ->type_name("FILE")
        ->needs(watch);
    return {command, [options](Console& console) { return runSensors(*options, console); }};
}

} // namespace Zentara::Tool
