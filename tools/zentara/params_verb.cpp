#include <charconv>
#include <iomanip>
#include <map>
#include <memory>
#include <sstream>

#include <zentara/core/descriptor_store_ro.h>
#include <zentara/utils/format.h>

#include "tools/zentara/calibration_json.h"
#include "tools/zentara/camera_session.h"
#include "tools/zentara/parameter_text.h"

namespace Zentara::Tool {
namespace {

using Tool::toJson; // those of values and ranges
using Utils::Format;

constexpr const char* verbName = "params";

struct Options : CameraOptions {
    std::vector<std::string> words;
    std::string file;
    bool dryRun = false;
};

/// What there is to say of one parameter.
struct Row {
    ParameterType parameter{};
    UnitType unit = UnitType_NONE;
    AccessMode access = AccessMode_NONE;
    ParameterValue value; ///< null when it cannot be read
    Utils::SmartPtr<ParameterRangeBaseInternal> range;
};

ParameterType parameterNamed(const std::string& word) {
    int number = -1;
    const auto result = std::from_chars(word.data(), word.data() + word.size(), number);
    const auto parameter = static_cast<ParameterType>(number);
    if (result.ec != std::errc() || result.ptr != word.data() + word.size() || !emptyValue(parameter))
        throw ToolFailure(ExitCode_USAGE,
                          Format("'%' is no parameter; they are numbered from 0 to 15") % word);
    return parameter;
}

/// Those that the camera's description names; all there can be when it names none.
std::vector<ParameterType> parametersOf(CameraSession& session) {
    std::vector<ParameterType> parameters = session.store().getParameters();
    if (!parameters.empty())
        return parameters;
    for (int number = 0; emptyValue(static_cast<ParameterType>(number)); ++number)
        parameters.push_back(static_cast<ParameterType>(number));
    return parameters;
}

ParameterValue readValue(CameraSession& session, ParameterType parameter) {
    IO::ParameterInterpreter& camera = session.parameters();
    const ParameterValue value = emptyValue(parameter);
    attempt(Format("read parameter %") % static_cast<int>(parameter), [&] {
        if (auto* number = dynamic_cast<IO::setFloatParameterRequest*>(value.get())) {
            float read = 0;
            camera.read(parameter, &read);
            number->setValue(read);
        } else if (auto* whole = dynamic_cast<IO::setIntParameterRequest*>(value.get())) {
            int read = 0;
            camera.read(parameter, &read);
            whole->setValue(read);
        } else if (auto* flag = dynamic_cast<IO::setBoolParameterRequest*>(value.get())) {
            bool read = false;
            camera.read(parameter, &read);
            flag->setValue(read);
        } else if (auto* region = dynamic_cast<IO::setRegionOfInterestRequest*>(value.get())) {
            region->setRegion(camera.getRegionOfInterest());
        }
    });
    return value;
}

void writeValue(CameraSession& session, ParameterType parameter, const ParameterValue& value) {
    IO::ParameterInterpreter& camera = session.parameters();
    attempt(Format("set parameter % to %") % static_cast<int>(parameter) % toText(value), [&] {
        if (const auto* number = dynamic_cast<const IO::setFloatParameterRequest*>(value.get()))
            camera.write(parameter, number->getValue());
        else if (const auto* whole = dynamic_cast<const IO::setIntParameterRequest*>(value.get()))
            camera.write(parameter, whole->getValue());
        else if (const auto* flag = dynamic_cast<const IO::setBoolParameterRequest*>(value.get()))
            camera.write(parameter, flag->getValue());
        else if (const auto* region = dynamic_cast<const IO::setRegionOfInterestRequest*>(value.get()))
            camera.setRegionOfInterest(region->getRegion());
    });
}

Row describe(CameraSession& session, ParameterType parameter) {
    Row row;
    row.parameter = parameter;
    IO::ParameterInterpreter& camera = session.parameters();
    attempt(Format("ask about parameter %") % static_cast<int>(parameter), [&] {
        row.access = camera.getAccessMode(parameter);
        row.unit = camera.getUnitType(parameter);
        row.range = camera.getParameterRange(parameter);
    });
    if ((row.access & AccessMode_READ) != 0)
        row.value = readValue(session, parameter);
    return row;
}

Json toJson(const Row& row) {
    return {{"parameter", static_cast<int>(row.parameter)},
            {"kind", kindName(row.parameter)},
            {"unit", unitName(row.unit)},
            {"access", accessName(row.access)},
            {"value", row.value ? toJson(row.value) : Json()},
            {"range", toJson(row.range.get())}};
}

void print(std::ostream& out, const Row& row) {
    out << std::left << std::setw(4) << static_cast<int>(row.parameter) << std::setw(8)
        << kindName(row.parameter) << std::setw(12) << accessName(row.access) << std::setw(16)
        << (row.value ? toText(row.value) : "-") << std::setw(10) << unitName(row.unit)
        << toText(row.range.get()) << '\n';
}

void finishRows(CameraSession& session, const std::vector<ParameterType>& parameters) {
    Json list = Json::array();
    std::ostringstream text;
    text << std::left << std::setw(4) << "NO" << std::setw(8) << "KIND" << std::setw(12) << "ACCESS"
         << std::setw(16) << "VALUE" << std::setw(10) << "UNIT"
         << "RANGE\n";
    for (const ParameterType parameter : parameters) {
        const Row row = describe(session, parameter);
        list.push_back(toJson(row));
        print(text, row);
    }
    session.finish({{"parameters", list}}, text.str());
}

ExitCode runList(const Options& options, Console& console) {
    CameraSession session(verbName, options, console);
    finishRows(session, parametersOf(session));
    return ExitCode_DONE;
}

ExitCode runGet(const Options& options, Console& console) {
    std::vector<ParameterType> parameters;
    for (const std::string& word : options.words)
        parameters.push_back(parameterNamed(word));
    CameraSession session(verbName, options, console);
    finishRows(session, parameters);
    return ExitCode_DONE;
}

ExitCode runSet(const Options& options, Console& console) {
    std::vector<ParameterType> parameters;
    std::vector<ParameterValue> values;
    for (const std::string& word : options.words) {
        const std::size_t sign = word.find('=');
        if (sign == std::string::npos)
            throw ToolFailure(ExitCode_USAGE, Format("'%' is not of the form NUMBER=VALUE") % word);
        parameters.push_back(parameterNamed(word.substr(0, sign)));
        values.push_back(valueFromText(parameters.back(), word.substr(sign + 1)));
    }
    CameraSession session(verbName, options, console);
    for (std::size_t index = 0; index < values.size(); ++index)
        writeValue(session, parameters[index], values[index]);
    finishRows(session, parameters);
    return ExitCode_DONE;
}

/// Parameters by their number, in order.
std::map<int, ParameterValue> ordered(const IO::ParameterRequestMap& state) {
    std::map<int, ParameterValue> values;
    for (const auto& [parameter, value] : state)
        values.emplace(parameter, value);
    return values;
}

Json toJson(const IO::ParameterRequestMap& state) {
    Json json = Json::object();
    for (const auto& [number, value] : ordered(state))
        json[std::to_string(number)] = toJson(value);
    return json;
}

/// All that can be read and written back.
IO::ParameterRequestMap readState(CameraSession& session) {
    IO::ParameterRequestMap state;
    for (const ParameterType parameter : parametersOf(session)) {
        attempt(Format("ask about parameter %") % static_cast<int>(parameter), [&] {
            if (session.parameters().getAccessMode(parameter) == AccessMode_READ_WRITE)
                state[parameter] = emptyValue(parameter);
        });
    }
    attempt("read the camera's parameters", [&] { session.parameters().read(state); });
    return state;
}

ExitCode runSave(const Options& options, Console& console) {
    CameraSession session(verbName, options, console);
    const Json values = toJson(readState(session));
    Json json = beginJson(verbName);
    json["camera"] = session.identity();
    json["values"] = values;
    writeJsonFile(options.file, json);
    session.finish({{"values", values}, {"file", options.file}},
                   Format("% parameters written: %\n") % values.size() % options.file);
    return ExitCode_DONE;
}

IO::ParameterRequestMap readStateFile(const std::string& path) {
    const Json json = readJsonFile(path);
    const auto values = json.find("values");
    if (!json.is_object() || values == json.end() || !values->is_object())
        throw ToolFailure(ExitCode_FAILED, Format("'%' has no object 'values'") % path);
    if (json.value("schema", Json()) != Json(jsonSchema))
        throw ToolFailure(ExitCode_FAILED, Format("'%' is not of schema %") % path % jsonSchema);
    IO::ParameterRequestMap state;
    for (const auto& [name, value] : values->items()) {
        const ParameterType parameter = parameterNamed(name);
        state[parameter] = valueFromJson(parameter, value, "'" + path + "'");
    }
    return state;
}

ExitCode runLoad(const Options& options, Console& console) {
    const IO::ParameterRequestMap wanted = readStateFile(options.file);
    CameraSession session(verbName, options, console);
    const Json before = toJson(readState(session));
    if (!options.dryRun)
        attempt("set the camera's parameters", [&] { session.parameters().write(wanted); });
    const Json after = options.dryRun ? toJson(wanted) : toJson(readState(session));
    Json changes = Json::array();
    std::ostringstream text;
    for (const auto& [name, value] : after.items()) {
        if (before.value(name, Json()) == value)
            continue;
        changes.push_back(
            {{"parameter", std::stoi(name)}, {"before", before.value(name, Json())}, {"after", value}});
        text << name << ": " << before.value(name, Json()).dump() << " -> " << value.dump() << '\n';
    }
    session.finish({{"changes", changes}, {"written", !options.dryRun}}, text.str());
    return ExitCode_DONE;
}

} // namespace

Verb addParamsVerb(CLI::App& program) {
    auto options = std::make_shared<Options>();
    CLI::App* command =
        program.add_subcommand(verbName, "Reads and changes a depth camera's parameters")->group("Verbs");
    command->require_subcommand(1);
    command->footer(
        "Parameters are numbered from 0 to 15; the number fixes the kind of the value. A simulated\n"
        "camera forgets its parameters when the program that drives it ends.");

    CLI::App* list = command->add_subcommand("list", "Lists all parameters with value, unit and range");
    addCameraOptions(*list, *options);
    CLI::App* get = command->add_subcommand("get", "Prints some parameters");
    get->add_option("NUMBER", options->words, "Which ones")->required();
    addCameraOptions(*get, *options);
    CLI::App* set = command->add_subcommand("set", "Changes parameters, then reads them back");
    set->add_option("NUMBER=VALUE", options->words, "A number; on or off; for the region X,Y,WIDTH,HEIGHT")
        ->required();
    addCameraOptions(*set, *options);
    CLI::App* save =
        command->add_subcommand("save", "Writes all parameters that can be set into a JSON file");
    save->add_option("FILE", options->file, "The file")->required();
    addCameraOptions(*save, *options);
    CLI::App* load = command->add_subcommand("load", "Sets all parameters of such a file at once");
    load->add_option("FILE", options->file, "The file")->required();
    load->add_flag("--dry-run", options->dryRun, "Only say what would change");
    addCameraOptions(*load, *options);

    return {command, [=](Console& console) {
                if (list->parsed())
                    return runList(*options, console);
                if (get->parsed())
                    return runGet(*options, console);
                if (set->parsed())
                    return runSet(*options, console);
                return save->parsed() ? runSave(*options, console) : runLoad(*options, console);
            }};
}

} // namespace Zentara::Tool
