#include <algorithm>
#include <charconv>
#include <map>
#include <memory>
#include <optional>
#include <sstream>

#include <CLI/CLI.hpp>

#include <zentara/core/descriptor_store_ro.h>
#include <zentara/utils/format.h>

#include "host/nearest_word.h"
#include "tools/zentara/arguments.h"
#include "tools/zentara/cameras/camera_json.h"
#include "tools/zentara/cameras/camera_session.h"
#include "tools/zentara/cameras/node_names.h"
#include "tools/zentara/cameras/parameter_text.h"
#include "tools/zentara/cameras/stored_document.h"
#include "tools/zentara/text_columns.h"

namespace Zentara::Tool {
namespace {

using Tool::toJson; // those of values and ranges
using Utils::Format;

constexpr const char* paramsVerb = "params";

struct ParamsOptions : CameraOptions {
    std::vector<std::string> words;
    std::string file;
    bool dryRun = false;
    bool force = false;
};

/// What there is to say of one parameter.
struct Row {
    ParameterType parameter{};
    std::string name; ///< what the description calls it; may be empty
    UnitType unit = UnitType_NONE;
    AccessMode access = AccessMode_NONE;
    ParameterValue value; ///< null when it cannot be read
    Utils::SmartPtr<ParameterRangeBaseInternal> range;
    bool supported = true;
};

std::optional<ParameterType> parameterNumbered(const std::string& word) {
    int number = -1;
    const auto result = std::from_chars(word.data(), word.data() + word.size(), number);
    const auto parameter = static_cast<ParameterType>(number);
    const bool isOne = result.ec == std::errc() && word == std::to_string(number) && emptyValue(parameter);
    return isOne ? std::optional(parameter) : std::nullopt;
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

/// By its number, or by the name that the description gives it.
ParameterType parameterNamed(CameraSession& session, const std::string& word) {
    if (const auto numbered = parameterNumbered(word))
        return *numbered;
    std::vector<std::string> names;
    for (const ParameterType listed : parametersOf(session)) {
        names.push_back(parameterName(session.store(), listed));
        if (!word.empty() && word == names.back())
            return listed;
    }
    const std::string nearest = nearestWord(word, names);
    throw Failure(
        Failure::Usage,
        Format("'%' is no parameter; they are numbered from 0 to 15, and the camera's "
               "description may name them") %
            word,
        {}, (nearest.empty() ? "" : "did you mean '" + nearest + "'? ") + "'zentara params list' lists them");
}

/// What the description does not list is none of the camera's, whatever its back-end may answer.
void checkListed(CameraSession& session, ParameterType parameter, const std::string& place = {}) {
    const std::vector<ParameterType> listed = parametersOf(session);
    if (std::find(listed.begin(), listed.end(), parameter) != listed.end())
        return;
    std::string numbers;
    for (const ParameterType other : listed)
        numbers += (numbers.empty() ? "" : ", ") + std::to_string(static_cast<int>(other));
    throw Failure(Failure::Failed,
                  Format("%the camera has no such parameter: %") % place % static_cast<int>(parameter),
                  "its description lists " + numbers);
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

/// Whether the camera has it; \return how it can be reached then
bool askAccess(CameraSession& session, ParameterType parameter, AccessMode& access) {
    IO::ParameterInterpreter& camera = session.parameters();
    bool supported = true;
    attempt(Format("ask about parameter %") % static_cast<int>(parameter), [&] {
        try {
            access = camera.getAccessMode(parameter);
        } catch (const Plugin::NotSupportedPluginException&) {
            supported = false;
        }
    });
    return supported;
}

/// Null where the camera does not say.
Utils::SmartPtr<ParameterRangeBaseInternal> askRange(CameraSession& session, ParameterType parameter) {
    Utils::SmartPtr<ParameterRangeBaseInternal> range;
    attempt(Format("ask for the range of parameter %") % static_cast<int>(parameter), [&] {
        try {
            range = session.parameters().getParameterRange(parameter);
        } catch (const Plugin::NotSupportedPluginException&) {
            // It is for the camera to refuse values then.
        }
    });
    return range;
}

Row describe(CameraSession& session, ParameterType parameter) {
    Row row;
    row.parameter = parameter;
    row.name = parameterName(session.store(), parameter);
    row.supported = askAccess(session, parameter, row.access);
    if (!row.supported)
        return row;
    attempt(Format("ask for the unit of parameter %") % static_cast<int>(parameter),
            [&] { row.unit = session.parameters().getUnitType(parameter); });
    row.range = askRange(session, parameter);
    if ((row.access & AccessMode_READ) != 0)
        row.value = readValue(session, parameter);
    return row;
}

/// Refuses what the camera is known to refuse, before anything is set. \param place where the value comes from
void checkSettable(CameraSession& session, ParameterType parameter, const ParameterValue& value,
                   const std::string& place) {
    checkListed(session, parameter, place);
    AccessMode access{};
    std::string reason;
    if (!askAccess(session, parameter, access))
        reason = "the camera has no such parameter";
    else if ((access & AccessMode_WRITE) == 0)
        reason = "it can only be read";
    else if (const auto range = askRange(session, parameter); range && !accepts(*range, value))
        reason = "value out of range: " + toText(range.get());
    if (!reason.empty())
        throw Failure(Failure::Failed, Format("%cannot set parameter % to %: %") % place %
                                           static_cast<int>(parameter) % toText(value) % reason);
}

Json toJson(const Row& row) {
    return {{"parameter", static_cast<int>(row.parameter)},
            {"name", orNull(row.name)},
            {"supported", row.supported},
            {"kind", kindName(row.parameter)},
            {"unit", unitName(row.unit)},
            {"access", accessName(row.access)},
            {"value", row.value ? toJson(row.value) : Json()},
            {"range", toJson(row.range.get())}};
}

std::string columns(const std::string& number, const std::string& name, const std::string& kind,
                    const std::string& access, const std::string& value, const std::string& unit) {
    return padded(number, 4) + padded(name, 24) + padded(kind, 8) + padded(access, 12) + padded(value, 16) +
           padded(unit, 10);
}

void print(std::ostream& out, const Row& row) {
    const std::string number = std::to_string(static_cast<int>(row.parameter));
    const std::string name = row.name.empty() ? "-" : printable(row.name);
    if (!row.supported)
        out << padded(number, 4) << padded(name, 24) << padded(kindName(row.parameter), 8)
            << "not supported by this camera\n";
    else
        out << columns(number, name, kindName(row.parameter), accessName(row.access),
                       row.value ? toText(row.value) : "-", unitName(row.unit))
            << toText(row.range.get()) << '\n';
}

void finishRows(CameraSession& session, const std::vector<ParameterType>& parameters) {
    Json list = Json::array();
    std::ostringstream text;
    text << columns("NO", "NAME", "KIND", "ACCESS", "VALUE", "UNIT") << "RANGE\n";
    for (const ParameterType parameter : parameters) {
        const Row row = describe(session, parameter);
        list.push_back(toJson(row));
        print(text, row);
    }
    session.finish({{"parameters", list}}, text.str());
}

/// A camera may round to its steps; nobody is to take what was asked for what is.
void tellRounded(CameraSession& session, ParameterType parameter, const ParameterValue& asked,
                 Console& console) {
    AccessMode access{};
    if (!askAccess(session, parameter, access) || (access & AccessMode_READ) == 0)
        return;
    const ParameterValue taken = readValue(session, parameter);
    if (toJson(taken) != toJson(asked))
        note(console, Format("parameter %: the camera took % for %") % static_cast<int>(parameter) %
                          toText(taken) % toText(asked));
}

ExitCode runList(const ParamsOptions& options, Console& console) {
    return withCamera(options, console, [](CameraSession& session) {
        finishRows(session, parametersOf(session));
        return Failure::None;
    });
}

ExitCode runParamsGet(const ParamsOptions& options, Console& console) {
    return withCamera(options, console, [&](CameraSession& session) {
        std::vector<ParameterType> parameters;
        for (const std::string& word : options.words)
            parameters.push_back(parameterNamed(session, word));
        for (const ParameterType parameter : parameters)
            checkListed(session, parameter);
        finishRows(session, parameters);
        return Failure::None;
    });
}

/// What `set` is to do, in the order in which it was said.
struct Settings {
    std::vector<ParameterType> parameters;
    std::vector<ParameterValue> values;
};

Settings settingsOf(CameraSession& session, const std::vector<std::string>& words) {
    Settings settings;
    for (const std::string& word : words) {
        const std::size_t sign = word.find('=');
        if (sign == std::string::npos)
            throw Failure(Failure::Usage, Format("'%' is not of the form PARAMETER=VALUE") % word);
        const ParameterType parameter = parameterNamed(session, word.substr(0, sign));
        if (std::find(settings.parameters.begin(), settings.parameters.end(), parameter) !=
            settings.parameters.end())
            throw Failure(Failure::Usage, Format("parameter % is named twice") % static_cast<int>(parameter));
        settings.parameters.push_back(parameter);
        settings.values.push_back(valueFromText(parameter, word.substr(sign + 1)));
    }
    return settings;
}

/// Values go one by one, so a failure says which ones have been set before it.
void writeAll(CameraSession& session, const Settings& settings) {
    std::string done;
    for (std::size_t index = 0; index < settings.values.size(); ++index) {
        try {
            writeValue(session, settings.parameters[index], settings.values[index]);
        } catch (const Failure& failure) {
            throw Failure(failure.code(),
                          failure.what() + (done.empty() ? "; nothing was set" : "; set before it: " + done));
        }
        done += (done.empty() ? "" : ", ") + std::to_string(static_cast<int>(settings.parameters[index]));
    }
}

ExitCode runParamsSet(ParamsOptions options, Console& console) {
    options.writes = true;
    return withCamera(options, console, [&](CameraSession& session) {
        const Settings settings = settingsOf(session, options.words);
        for (std::size_t index = 0; index < settings.values.size(); ++index)
            checkSettable(session, settings.parameters[index], settings.values[index], "");
        writeAll(session, settings);
        for (std::size_t index = 0; index < settings.values.size(); ++index)
            tellRounded(session, settings.parameters[index], settings.values[index], console);
        finishRows(session, settings.parameters);
        return Failure::None;
    });
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
        AccessMode access{};
        if (askAccess(session, parameter, access) && access == AccessMode_READ_WRITE)
            state[parameter] = emptyValue(parameter);
    }
    attempt("read the camera's parameters", [&] { session.parameters().read(state); });
    return state;
}

ExitCode runSave(const ParamsOptions& options, Console& console) {
    return withCamera(options, console, [&](CameraSession& session) {
        const Json values = toJson(readState(session));
        Json json = beginJson(paramsVerb);
        json["camera"] = cameraJson(session.camera());
        json["values"] = values;
        writeJsonFile(options.file, json, forced(options.force));
        session.finish({{"values", values}, {"file", options.file}},
                       Format("% parameters written: %\n") % values.size() % printable(options.file));
        return Failure::None;
    });
}

/// The values of a file, and the serial number of the camera that they are of; empty when it says none.
struct StoredValues {
    IO::ParameterRequestMap values;
    std::string serialNumber;
};

StoredValues readStateFile(const std::string& path) {
    const Json json = readJsonFile(path);
    JsonFields fields(json, path);
    checkDocument(fields);
    StoredValues stored;
    stored.serialNumber = serialNumberIn(json);
    JsonFields values = fields.object("values");
    for (const auto& [name, value] : fields.need("values").items()) {
        try {
            const auto parameter = parameterNumbered(name);
            if (!parameter)
                throw Failure(Failure::Usage,
                              Format("'%' is no parameter; they are numbered from 0 to 15") % name);
            stored.values[*parameter] = valueFromJson(*parameter, value, "it");
        } catch (const Failure& failure) {
            values.fail(name, failure.what()); // not the command line is wrong
        }
    }
    fields.refuseOthers({"verb", "camera"});
    return stored;
}

/// Where two states differ, one element a parameter.
Json changesBetween(const Json& before, const Json& after) {
    Json changes = Json::array();
    for (const auto& [name, value] : after.items()) {
        const Json old = before.value(name, Json());
        if (old != value)
            changes.push_back({{"parameter", std::stoi(name)},
                               {"path", "values/" + name},
                               {"before", old},
                               {"after", value}});
    }
    return changes;
}

/// What a camera that refused a state has taken of it all the same.
std::string takenText(CameraSession& session, const Json& before) {
    std::string taken;
    try {
        for (const Json& change : changesBetween(before, toJson(readState(session))))
            taken += (taken.empty() ? "" : ", ") + change["parameter"].dump();
    } catch (const Failure&) {
        return "what it has taken of them cannot be read";
    }
    return taken.empty() ? "nothing was changed" : "it has changed all the same: " + taken;
}

ExitCode loadInto(CameraSession& session, const StoredValues& stored, const ParamsOptions& options,
                  Console& console) {
    noteOtherCamera(stored.serialNumber, session, console);
    for (const auto& [number, value] : ordered(stored.values))
        checkSettable(session, static_cast<ParameterType>(number), value,
                      Format("'%', /values/%: ") % options.file % number);
    const Json before = toJson(readState(session));
    if (!options.dryRun) {
        try {
            attempt("set the camera's parameters", [&] { session.parameters().write(stored.values); });
        } catch (const Failure& failure) {
            throw Failure(failure.code(), std::string(failure.what()) + "; " + takenText(session, before));
        }
        for (const auto& [number, value] : ordered(stored.values))
            tellRounded(session, static_cast<ParameterType>(number), value, console);
    }
    const Json changes =
        changesBetween(before, options.dryRun ? toJson(stored.values) : toJson(readState(session)));
    std::ostringstream text;
    for (const Json& change : changes)
        text << change["parameter"] << ": " << change["before"].dump() << " -> " << change["after"].dump()
             << '\n';
    if (changes.empty())
        text << "the camera has these values already\n";
    session.finish({{"changes", changes}, {"written", !options.dryRun}}, text.str());
    return Failure::None;
}

ExitCode runLoad(ParamsOptions options, Console& console) {
    options.writes = true;
    const StoredValues stored = readStateFile(options.file);
    return withCamera(options, console,
                      [&](CameraSession& session) { return loadInto(session, stored, options, console); });
}

} // namespace

Verb addParamsVerb(CLI::App& program) {
    auto options = std::make_shared<ParamsOptions>();
    CLI::App* command =
        program.add_subcommand(paramsVerb, "Reads and changes a depth camera's parameters")->group("Verbs");
    command->require_subcommand(1);
    command->footer(
        "Parameters are numbered from 0 to 15; the number fixes the kind of the value. Where 'params list'\n"
        "shows a name, that stands for the number as well: 'params set \"exposure time=50\"'. A simulated\n"
        "camera forgets its parameters when the program that drives it ends, unless its settings say\n"
        "keepRegisters FILE.");

    CLI::App* list =
        command->add_subcommand("list", "Lists the camera's parameters with value, unit and range");
    addCameraOptions(*list, *options);
    CLI::App* get = command->add_subcommand("get", "Prints some parameters");
    get->add_option("PARAMETER", options->words, "Which ones, by number or name")->required();
    addCameraOptions(*get, *options);
    CLI::App* set = command->add_subcommand("set", "Changes parameters one by one, then reads them back");
    set->add_option("PARAMETER=VALUE", options->words, "A number; on or off; for the region X,Y,WIDTH,HEIGHT")
        ->required();
    addCameraOptions(*set, *options);
    CLI::App* save =
        command->add_subcommand("save", "Writes all parameters that can be set into a JSON file");
    save->add_option("FILE", options->file, "The file")->required();
    save->add_flag("--force", options->force, "Replace a file that is there already");
    addCameraOptions(*save, *options);
    CLI::App* load = command->add_subcommand("load", "Sets all parameters of such a file at once");
    load->add_option("FILE", options->file, "The file")->required();
    load->add_flag("--dry-run", options->dryRun, "Only say what would change");
    addCameraOptions(*load, *options);

    return {command, [=](Console& console) {
                if (list->parsed())
                    return runList(*options, console);
                if (get->parsed())
                    return runParamsGet(*options, console);
                if (set->parsed())
                    return runParamsSet(*options, console);
                return save->parsed() ? runSave(*options, console) : runLoad(*options, console);
            }};
}

} // namespace Zentara::Tool
