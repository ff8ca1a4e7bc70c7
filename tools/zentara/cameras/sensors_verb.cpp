#include <array>
#include <map>
#include <memory>
#include <optional>

#include <CLI/CLI.hpp>

#include <zentara/core/periodic_operation.h>
#include <zentara/host/output_file.h>
#include <zentara/host/plot.h>
#include <zentara/utils/clock.h>
#include <zentara/utils/format.h>
#include <zentara/utils/signal.h>

#include "tools/zentara/arguments.h"
#include "tools/zentara/cameras/camera_json.h"
#include "tools/zentara/cameras/camera_session.h"
#include "tools/zentara/cameras/node_names.h"
#include "tools/zentara/cameras/parameter_text.h"
#include "tools/zentara/interrupt.h"
#include "tools/zentara/streams/frame_counter.h"
#include "tools/zentara/supervisor.h"

namespace Zentara::Tool {
namespace {

using Utils::Format;

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
        auto place = describedAccelerometer(session.store());
        if (options.accelerometer >= 0)
            place = {static_cast<std::uint32_t>(options.accelerometer), ""};
        if (!place)
            return;
        accelerometerName = place->name;
        accelerometer = Utils::makeRefcounted<Core::AccelerometerPeriodicOperation>(place->registerAddress,
                                                                                    std::int64_t{0}, true);
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
    void writePlot(OutputFile& file) const {
        if (history.empty())
            return;
        const std::string& camera = session.camera().serialNumber();
        std::vector<PlotPanel> panels{{"Temperatures of " + camera, "degC", {}}};
        for (const auto& [sensor, points] : history)
            panels.front().lines.push_back({shortLabelOf(sensor), points});
        if (accelerometer)
            panels.push_back({"Acceleration of " + camera,
                              "g",
                              {{"x", accelerations[0]}, {"y", accelerations[1]}, {"z", accelerations[2]}}});
        file.write(plot("seconds", panels).png());
        file.commit();
    }

    [[nodiscard]] Json toJson(const Reading& reading) const {
        Json json{{"seconds", reading.seconds}, {"temperatures", Json::array()}};
        for (const SensorValue& value : reading.temperatures.values)
            json["temperatures"].push_back({{"sensor", value.sensorId},
                                            {"name", orNull(sensorName(session.store(), value.sensorId))},
                                            {"celsius", floatJson(value.value)}});
        json["acceleration"] = Json();
        if (accelerometer)
            json["acceleration"] = {{"name", orNull(accelerometerName)},
                                    {"register", accelerometer->getRegAddress()},
                                    {"x", floatJson(reading.acceleration.x)},
                                    {"y", floatJson(reading.acceleration.y)},
                                    {"z", floatJson(reading.acceleration.z)}};
        return json;
    }

    [[nodiscard]] std::string toText(const Reading& reading) const {
        std::string text = fixed(reading.seconds, 1) + " s";
        for (const SensorValue& value : reading.temperatures.values)
            text += Format("  % % degC") % labelOf(value.sensorId) % floatText(value.value);
        if (accelerometer)
            text += "  acceleration " +
                    (accelerometerName.empty() ? "" : printable(accelerometerName) + " ") +
                    floatText(reading.acceleration.x) + " " + floatText(reading.acceleration.y) + " " +
                    floatText(reading.acceleration.z) + " g";
        return text;
    }

private:
    /// "sensor 1 (illumination)"
    [[nodiscard]] std::string labelOf(std::int32_t sensor) const {
        const std::string name = printable(sensorName(session.store(), sensor));
        return "sensor " + std::to_string(sensor) + (name.empty() ? "" : " (" + name + ")");
    }

    /// For a plot, whose names stand in one line: "illumination"
    [[nodiscard]] std::string shortLabelOf(std::int32_t sensor) const {
        const std::string name = sensorName(session.store(), sensor);
        return name.empty() ? labelOf(sensor) : name;
    }

    void note(const Reading& reading) {
        for (const SensorValue& value : reading.temperatures.values) {
            if (!options.png.empty())
                history[value.sensorId].emplace_back(reading.seconds, value.value);
        }
        if (accelerometer && !options.png.empty()) {
            accelerations[0].emplace_back(reading.seconds, reading.acceleration.x);
            accelerations[1].emplace_back(reading.seconds, reading.acceleration.y);
            accelerations[2].emplace_back(reading.seconds, reading.acceleration.z);
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
    std::string accelerometerName;
    std::map<std::int32_t, std::vector<std::pair<double, double>>> history;
    std::array<std::vector<std::pair<double, double>>, 3> accelerations; ///< x, y, z
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
        const Reading reading = sensors.read();
        session.finish(sensors.toJson(reading), sensors.toText(reading) + '\n');
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
        "written when the watching ends, be it by Ctrl-C or a failure. Sensors have the names of the "
        "camera's\n"
        "description, and the accelerometer is read where the description says that it is.");
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
