#include <algorithm>
#include <memory>
#include <sstream>

#include <CLI/CLI.hpp>

#include <zentara/host/camera_files.h>
#include <zentara/host/output_file.h>
#include <zentara/utils/format.h>

#include "tools/zentara/arguments.h"
#include "tools/zentara/cameras/camera_session.h"
#include "tools/zentara/cameras/parameter_changes.h"
#include "tools/zentara/text_columns.h"

namespace Zentara::Tool {
namespace {

using Utils::Format;

constexpr const char* paramsVerb = "params";

struct ParamsOptions : CameraOptions {
    std::vector<std::string> words;
    std::string file;
    bool dryRun = false;
    bool force = false;
};

std::string columns(const std::string& number, const std::string& name, const std::string& kind,
                    const std::string& access, const std::string& value, const std::string& unit) {
    return padded(number, 4) + padded(name, 24) + padded(kind, 8) + padded(access, 12) + padded(value, 16) +
           padded(unit, 10);
}

void print(std::ostream& out, const Parameter& row) {
    const std::string number = std::to_string(row.number);
    const std::string name = row.name.empty() ? "-" : printable(row.name);
    if (!row.isSupported)
        out << padded(number, 4) << padded(name, 24) << padded(kindName(row.kind), 8)
            << "not supported by this camera\n";
    else
        out << columns(number, name, kindName(row.kind), accessName(row),
                       row.value ? valueText(*row.value) : "-", unitName(row.unit))
            << rangesText(row) << '\n';
}

void finishRows(CameraSession& session, const std::vector<int>& numbers) {
    Json list = Json::array();
    std::ostringstream text;
    text << columns("NO", "NAME", "KIND", "ACCESS", "VALUE", "UNIT") << "RANGE\n";
    for (const int number : numbers) {
        const Parameter row = session.camera().parameter(number);
        list.push_back(Json::parse(toJson(row)));
        print(text, row);
    }
    session.finish({{"parameters", list}}, text.str());
}

/// By number or name; a failure leads to the verb that lists both.
int parameterNamed(CameraSession& session, const std::string& word) {
    try {
        return session.camera().parameterNumber(word);
    } catch (const Failure& failure) {
        if (failure.code() != Failure::Usage)
            throw;
        throw Failure(failure.code(), failure.message(), failure.cause(),
                      failure.remedy() + (failure.remedy().empty() ? "" : " ") +
                          "'zentara params list' lists them");
    }
}

ExitCode runList(const ParamsOptions& options, Console& console) {
    return withCamera(options, console, [](CameraSession& session) {
        finishRows(session, session.camera().parameterNumbers());
        return Failure::None;
    });
}

ExitCode runParamsGet(const ParamsOptions& options, Console& console) {
    return withCamera(options, console, [&](CameraSession& session) {
        std::vector<int> numbers;
        for (const std::string& word : options.words)
            numbers.push_back(parameterNamed(session, word));
        finishRows(session, numbers);
        return Failure::None;
    });
}

ExitCode runParamsSet(ParamsOptions options, Console& console) {
    options.writes = true;
    return withCamera(options, console, [&](CameraSession& session) {
        // every word is understood before the camera is asked for anything
        std::vector<std::pair<int, ParameterValue>> settings; // in the order in which they were said
        std::vector<int> numbers;
        for (const std::string& word : options.words) {
            const std::size_t sign = word.find('=');
            if (sign == std::string::npos)
                throw Failure(Failure::Usage, Format("'%' is not of the form PARAMETER=VALUE") % word);
            const int number = parameterNamed(session, word.substr(0, sign));
            if (std::find(numbers.begin(), numbers.end(), number) != numbers.end())
                throw Failure(Failure::Usage, Format("parameter % is named twice") % number);
            numbers.push_back(number);
            settings.emplace_back(number, parameterValue(number, word.substr(sign + 1)));
        }
        setOneByOne(session.camera(), settings, console);
        finishRows(session, numbers);
        return Failure::None;
    });
}

ExitCode runSave(const ParamsOptions& options, Console& console) {
    return withCamera(options, console, [&](CameraSession& session) {
        const std::string document =
            parameterDocument(session.camera().info(), session.camera().parameterValues());
        writeOutputFile(options.file, document, forced(options.force));
        const Json values = Json::parse(document)["values"];
        session.finish({{"values", values}, {"file", options.file}},
                       Format("% parameters written: %\n") % values.size() % printable(options.file));
        return Failure::None;
    });
}

ExitCode runLoad(ParamsOptions options, Console& console) {
    options.writes = true;
    const StoredParameters stored = readParameterFile(options.file);
    return withCamera(options, console, [&](CameraSession& session) {
        session.noteOtherCamera(stored.serialNumber);
        Json list = Json::array();
        std::string text;
        for (const ParameterChange& change :
             loadValues(session.camera(), stored.values, options.file, options.dryRun, console)) {
            const Json before = change.before ? Json::parse(toJson(*change.before)) : Json();
            const Json after = Json::parse(toJson(change.after));
            const std::string number = std::to_string(change.number);
            list.push_back({{"parameter", change.number},
                            {"path", "values/" + number},
                            {"before", before},
                            {"after", after}});
            text += number + ": " + before.dump() + " -> " + after.dump() + '\n';
        }
        if (list.empty())
            text = "the camera has these values already\n";
        session.finish({{"changes", list}, {"written", !options.dryRun}}, text);
        return Failure::None;
    });
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
    load->add_option("FILE", options->file, "The file; - for standard input")->required();
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
