#include <algorithm>
#include <memory>
#include <string>

#include <CLI/CLI.hpp>

#include <zentara/host/plugins.h>
#include <zentara/utils/format.h>

#include "tools/zentara/json_output.h"
#include "tools/zentara/plugin_check_words.h"
#include "tools/zentara/text_columns.h"
#include "tools/zentara/verb.h"

namespace Zentara::Tool {
namespace {

using Utils::Format;

struct PluginsOptions {
    std::string check; ///< a file; empty: the directory is listed
    bool all = false;
    bool json = false;
};

template<std::size_t count>
std::string dotted(const std::array<std::int32_t, count>& numbers) {
    std::string text;
    for (const std::int32_t number : numbers)
        text += (text.empty() ? "" : ".") + std::to_string(number);
    return text;
}

Json toJson(const RegisteredPlugin& plugin) {
    return {{"name", orNull(plugin.name.name)},
            {"guid", plugin.name.guidText()},
            {"type", plugin.type},
            {"kind", plugin.kind},
            {"version", dotted(plugin.version)},
            {"sdkVersion", dotted(plugin.sdkVersion)},
            {"path", plugin.path}};
}

Json toJson(const RefusedFile& file) {
    return {{"path", file.path},     {"step", file.step},     {"reason", file.reason}, {"found", file.found},
            {"wanted", file.wanted}, {"remedy", file.remedy}, {"fatal", file.isFatal}};
}

void printJson(const PluginDirectory& directory, bool all, Console& console) {
    Json json = beginJson(console);
    json["directory"] = directory.path;
    json["plugins"] = Json::array();
    for (const RegisteredPlugin& plugin : directory.registered)
        json["plugins"].push_back(toJson(plugin));
    if (all) {
        json["refused"] = Json::array();
        for (const RefusedFile& file : directory.refused)
            json["refused"].push_back(toJson(file));
    }
    print(console.out, json);
}

void printRegistered(std::ostream& out, const std::vector<RegisteredPlugin>& plugins) {
    if (plugins.empty())
        return;
    std::size_t nameWidth = 4;
    for (const RegisteredPlugin& plugin : plugins)
        nameWidth = std::max(nameWidth, lettersOf(plugin.name.name));
    const auto row = [&out, width = nameWidth + 2](const std::string& name, const std::string& guid,
                                                   const std::string& kind, const std::string& version,
                                                   const std::string& sdk, const std::string& path) {
        out << padded(name, width) << padded(guid, 38) << padded(kind, 23) << padded(version, 9)
            << padded(sdk, 12) << path << '\n';
    };
    row("NAME", "GUID", "KIND", "VERSION", "SDK", "PATH");
    for (const RegisteredPlugin& plugin : plugins)
        row(plugin.name.name.empty() ? "-" : plugin.name.name, plugin.name.guidText(), plugin.kind,
            dotted(plugin.version), dotted(plugin.sdkVersion), printable(plugin.path));
}

void printRefused(std::ostream& out, const std::vector<RefusedFile>& files) {
    for (const RefusedFile& file : files) {
        out << "\nrefused: " << printable(file.path) << '\n' << "  step     " << file.step << '\n';
        out << "  reason   " << file.reason << '\n';
        if (!file.found.empty())
            out << "  found    " << file.found << '\n';
        if (!file.wanted.empty())
            out << "  wanted   " << file.wanted << '\n';
        out << "  remedy   " << file.remedy << '\n';
    }
}

/// Says on standard error what the list leaves open.
void remarkOn(const PluginDirectory& directory, bool all, Console& console) {
    const auto& refused = directory.refused;
    const auto count = std::count_if(refused.begin(), refused.end(), [](const RefusedFile& file) {
        return file.step != "ending"; // with another one they are no plug-ins that were refused
    });
    if (count != 0 && !all)
        note(console, Format(count == 1 ? "% plug-in was refused; --all tells why"
                                        : "% plug-ins were refused; --all tells why") %
                          static_cast<long long>(count));
    for (const RefusedFile& file : refused) {
        if (file.isFatal)
            note(console, Format("'%' %: take it out, or no program finds a camera") % printable(file.path) %
                              file.reason);
    }
    if (directory.everybodyMayWrite)
        note(console, Format("everybody may write to '%', and what lies there runs in every program that "
                             "looks for cameras: let administrators alone write there") %
                          directory.path);
    if (!directory.isThere)
        note(console, Format("there is no directory '%'; set ZENTARASDK_ROOT to the directory that holds "
                             "bin/Plugins/") %
                          directory.path);
    else if (directory.registered.empty())
        note(console, Format("no usable plug-in in '%'") % directory.path);
}

ExitCode runPlugins(const PluginsOptions& options, Console& console) {
    if (!options.check.empty())
        return checkPluginFile(options.check, options.json, console);
    const PluginDirectory directory = surveyPlugins({.program = console.program});
    if (options.json) {
        printJson(directory, options.all, console);
    } else {
        printRegistered(console.out, directory.registered);
        if (options.all)
            printRefused(console.out, directory.refused);
    }
    remarkOn(directory, options.all, console);
    return directory.registered.empty() ? Failure::NoPlugin : Failure::None;
}

} // namespace

Verb addPluginsVerb(CLI::App& program) {
    auto options = std::make_shared<PluginsOptions>();
    CLI::App* command =
        program.add_subcommand("plugins", "Lists the plug-ins that are registered")->group("Verbs");
    command->footer(
        "The files are asked in another process, and whichever does not pass there in one of its own, for "
        "5 s at most:\n"
        "one that crashes, hangs or ends the process is named, and the others are listed. Exit code 4 when "
        "no\n"
        "plug-in is usable.\n\n"
        "--check takes a file, wherever it lies, through all that hosts do with its kind, in processes of "
        "its own: exports,\n"
        "objects, each operation with sane and with hostile arguments, threads, the end, unloading. Of each "
        "step it says\n"
        "what was observed, what a host would see and the remedy. A camera that the plug-in serves is opened "
        "and streams.\n"
        "Exit code 8 when a step failed.");
    CLI::Option* all =
        command->add_flag("--all", options->all,
                          "Also list everything else in the directory, why it was refused and the remedy");
    command->add_option("--check", options->check, "Check this plug-in file")
        ->type_name("FILE")
        ->excludes(all);
    command->add_flag("--json", options->json, "Print JSON");
    return {command, [options](Console& console) { return runPlugins(*options, console); }, true};
}

} // namespace Zentara::Tool
