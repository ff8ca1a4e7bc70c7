#include <iomanip>
#include <map>
#include <memory>
#include <optional>

#include <CLI/CLI.hpp>

#include <zentara/core/periodic_operation.h>
#include <zentara/utils/clock.h>
#include <zentara/utils/format.h>
#include <zentara/utils/signal.h>

#include "tools/zentara/arguments.h"
#include "tools/zentara/cameras/camera_session.h"
#include "tools/zentara/cameras/parameter_text.h"
#include "tools/zentara/interrupt.h"
#include "tools/zentara/pending_file.h"
#include "tools/zentara/plot.h"
#include "tools/zentara/streams/frame_counter.h"

namespace Zentara::Tool {
namespace {

using Utils::Format;

constexpr const char* sensorsVerb = "sensors";
constexpr unsigned long sliceMilliseconds = 50;

struct SensorsOptions : CameraOptions {
    bool watch = false;
    double seconds = 0; ///< 0: until Ctrl-C
    unsigned interval = 500;
    int accelerometer = -1;
    std::string png;
};

/// What the sensors said at one time.
struct Reading {
    double seconds = 0;
    SensorValueArray temperatures;
    AccelerationInternal acceleration;
};

double secondsSince(std::int64_t start) {
    return static_cast<double>(Utils::Clock::nowMicros() - start) / 1e6;
}

class SensorWatch {
public:
    SensorWatch(const SensorsOptions& wanted, CameraSession& camera, Console& target)
        : options(wanted), session(camera), console(target) {
        if (options.accelerometer >= 0)
            accelerometer = Utils::makeRefcounted<Core::AccelerometerPeriodicOperation>(
                static_cast<std::uint32_t>(options.accelerometer), std::int64_t{0}, true);
    }

    Reading read() {
        Reading reading;
        attempt("read the temperatures", [&] { reading.temperatures = session.depth().readTemperatures(); });
        if (accelerometer)
            attempt("read the accelerometer",
                    [&] { reading.acceleration = session.depth().readAccelerometer(accelerometer.get()); });
        reading.seconds = secondsSince(start);
        return reading;
    }

    /// \return whether it was interrupted
    bool watch(const InterruptWatch& interrupt) {
        Utils::Threading::Signal never;
        for (double due = 0; console.out && (options.seconds <= 0 || due <= options.seconds);
             due += static_cast<double>(options.interval) / 1000) {
            while (secondsSince(start) < due && !interrupt.interrupted())
                never.timedWait(sliceMilliseconds);
            if (interrupt.interrupted())
                return true;
            note(read());
        }
        return false;
    }

    /// Of what came; nothing to plot leaves no file.
    void writePlot(PendingFile& file) const {
        if (history.empty())
            return;
        std::vector<PlotLine> lines;
        for (const auto& [sensor, points] : history)
            lines.push_back({Format("sensor %") % sensor, points});
        file.write(
            plotPng("Temperatures of " + session.camera().serialNumber() + ", degC", "seconds", lines));
        file.commit();
    }

    [[nodiscard]] Json toJson(const Reading& reading) const {
        Json json{{"seconds", reading.seconds}, {"temperatures", Json::array()}};
        for (const SensorValue& value : reading.temperatures.values)
            json["temperatures"].push_back({{"sensor", value.sensorId}, {"celsius", floatJson(value.value)}});
        if (accelerometer)
            json["acceleration"] = {{"x", floatJson(reading.acceleration.x)},
                                    {"y", floatJson(reading.acceleration.y)},
                                    {"z", floatJson(reading.acceleration.z)}};
        return json;
    }

    [[nodiscard]] std::string toText(const Reading& reading) const {
        std::string text = fixed(reading.seconds, 1) + " s";
        for (const SensorValue& value : reading.temperatures.values)
            text += Format("  sensor % % degC") % value.sensorId % fixed(value.value, 2);
        if (accelerometer)
            text += Format("  acceleration % % % g") % fixed(reading.acceleration.x, 3) %
                    fixed(reading.acceleration.y, 3) % fixed(reading.acceleration.z, 3);
        return text;
    }

private:
    void note(const Reading& reading) {
        for (const SensorValue& value : reading.temperatures.values) {
            if (!options.png.empty())
                history[value.sensorId].emplace_back(reading.seconds, value.value);
        }
        if (options.json) {
            Json json = beginJson(console);
            json["camera"] = cameraJson(session.camera());
            json.update(toJson(reading));
            printOnOneLine(console.out, json);
        } else {
            console.out << toText(reading) << std::endl;
        }
    }

    const SensorsOptions& options;
    CameraSession& session;
    Console& console;
    const std::int64_t start = Utils::Clock::nowMicros();
    Utils::SmartPtr<Core::AccelerometerPeriodicOperation> accelerometer;
    std::map<std::int32_t, std::vector<std::pair<double, double>>> history;
};

/// Whatever ends it, the plot shows what came before.
ExitCode watchSensors(SensorWatch& sensors, const SensorsOptions& options, Console& console) {
    console.lines = true;
    const InterruptWatch interrupt;
    std::optional<PendingFile> plot;
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
    } catch (const ToolFailure&) {
        finish();
        throw;
    }
    finish();
    return interrupted ? ExitCode_INTERRUPTED : ExitCode_DONE;
}

ExitCode runSensors(const SensorsOptions& options, Console& console) {
    return withCamera(options, console, [&](CameraSession& session) {
        SensorWatch sensors(options, session, console);
        if (options.watch)
            return watchSensors(sensors, options, console);
        const Reading reading = sensors.read();
        session.finish(sensors.toJson(reading), sensors.toText(reading) + '\n');
        return ExitCode_DONE;
    });
}

} // namespace

Verb addSensorsVerb(CLI::App& program) {
    auto options = std::make_shared<SensorsOptions>();
    CLI::App* command =
        program.add_subcommand(sensorsVerb, "Reads a depth camera's temperatures and accelerometer")
            ->group("Verbs");
    command->footer(
        "With --watch each reading is a line, or with --json an object on a line of its own; the plot is\n"
        "written when the watching ends, be it by Ctrl-C or a failure. Descriptions of cameras do not say\n"
        "where an accelerometer is, so its register has to be named: 0x71 for the simulated cameras.");
    addCameraOptions(*command, *options);
    CLI::Option* watch = command->add_flag("--watch", options->watch, "Read again and again, until Ctrl-C");
    command->add_option("--seconds", options->seconds, "Watch so long")
        ->type_name("N")
        ->check(secondsBetween(shortestWatch, longestWatch))
        ->needs(watch);
    command->add_option("--interval", options->interval, "Milliseconds between readings")
        ->type_name("MS")
        ->capture_default_str()
        ->check(CLI::Range(1U, 3'600'000U).description(""))
        ->needs(watch);
    command
        ->add_option("--accelerometer", options->accelerometer,
                     "Also read the accelerometer, whose values begin at this register of the camera's "
                     "time-of-flight controller")
        ->type_name("REGISTER")
        ->check(CLI::Range(0, 0xFFFF).description(""));
    command->add_option("--png", options->png, "Plot the temperatures over the time")
        ->type_name("FILE")
        ->needs(watch);
    return {command, [options](Console& console) { return runSensors(*options, console); }};
}

} // namespace Zentara::Tool
