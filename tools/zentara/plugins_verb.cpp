#include <algorithm>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include <zentara/core/guids.h>
#include <zentara/core/impl_type.h>
#include <zentara/core/plugin_probe.h>
#include <zentara/utils/files.h>
#include <zentara/utils/format.h>
#include <zentara/utils/text.h>
#include <zentara/version.h>

#include "host/files/paths.h"
#include "host/guid_text.h"
#include "tools/zentara/json_output.h"
#include "tools/zentara/plugins/library_machine.h"
#include "tools/zentara/plugins/plugin_question.h"
#include "tools/zentara/plugins/refused_file.h"
#include "tools/zentara/text_columns.h"
#include "tools/zentara/verb.h"
#include "utils/platform/directory_access.h"
#include "utils/visible_text.h"

namespace Zentara::Tool {
namespace {

using Core::PluginProbe;
using Core::PluginScanStep;
using Utils::Format;

struct PluginsOptions {
    bool all = false;
    bool json = false;
};

/// What lies in the plug-in directory.
struct Inventory {
    std::string directory;
    bool exists = false;
    std::vector<PluginProbe> registered;
    std::vector<RefusedFile> refused;
};

const char* kindOf(std::int32_t type) noexcept {
    switch (type) {
    case Core::ImplType_DEPTH_NODE:
        return "depth node";
    case Core::ImplType_COLOR_NODE:
        return "colour node";
    case Core::ImplType_AUDIO_NODE:
        return "audio node";
    case Core::ImplType_AUDIO_DEVICE:
        return "audio device";
    case Core::ImplType_VIDEO_DEVICE:
        return "video device";
    case Core::ImplType_ENUMERATOR:
        return "enumerator";
    case Core::ImplType_DESCRIPTOR_STORE:
        return "descriptor store";
    case Core::ImplType_PARAMETER_INTERPRETER:
        return "parameter interpreter";
    default:
        return "unknown";
    }
}

std::string remedyFor(const PluginProbe& probe) {
    switch (probe.step) {
    case PluginScanStep::Name:
        return "debug builds are never loaded: install the release build of the plug-in, under a name "
               "without the "
               "mark";
    case PluginScanStep::Open:
        return "install a build for this system and processor, together with every library it needs; copy it "
               "again "
               "if it is damaged";
    case PluginScanStep::ImplGUID:
        return "it is no plug-in: move it out of the directory, or export \"getImplGUID\"";
    case PluginScanStep::Duplicate:
        return "remove one of the two files, or give one another GUID; the first in the list wins";
    case PluginScanStep::ImplType:
        return "export \"getImplType\" with one of the kinds 1 to 6, 8 and 9";
    case PluginScanStep::PluginVersion:
        return "export \"getPluginVersion\"";
    case PluginScanStep::SDKVersion:
        return Format("build the plug-in against SDK %, or install the one that was built for it") %
               ZENTARA_SDK_VERSION_STRING;
    case PluginScanStep::Accepted:
        break;
    }
    return {};
}

/// What is wrong in a file that has not answered.
RefusedFile refusedByItsEnd(const PluginProbe& probe) {
    return {probe.path,   probe.accepted() ? "unload" : Core::pluginScanStepName(probe.step),
            probe.text,   probe.found,
            probe.wanted, "take it out of the directory: it does so to every program that looks for plug-ins",
            true};
}

/// A library for another machine is told as that, whatever the loader says.
RefusedFile refusedByScan(const PluginProbe& probe, const std::string& ownMachine) {
    const std::string machine = probe.step == PluginScanStep::Open ? machineOf(probe.path) : std::string();
    if (!machine.empty() && machine != ownMachine)
        return {probe.path,
                Core::pluginScanStepName(probe.step),
                "is a library for " + machine,
                machine,
                ownMachine,
                "install the build of the plug-in for " + ownMachine,
                false};
    return {probe.path,   probe.accepted() ? "unload" : Core::pluginScanStepName(probe.step),
            probe.text,   probe.found,
            probe.wanted, remedyFor(probe),
            false};
}

/// The first file in the list has the GUID, as in the scan.
void refuseDuplicates(std::vector<PluginAnswer>& answers) {
    std::map<std::string, std::string> registered;
    for (PluginAnswer& answer : answers) {
        PluginProbe& probe = answer.probe;
        if (answer.isFatal || probe.step < PluginScanStep::Duplicate)
            continue;
        const auto first = registered.find(guidText(probe.guid));
        if (first != registered.end()) {
            probe.step = PluginScanStep::Duplicate;
            probe.found = Core::GUID_toString(probe.guid);
            probe.wanted = "a GUID of its own";
            probe.text = Format("has the GUID %, which was registered by %") % probe.found % first->second;
        } else if (probe.accepted()) {
            registered.emplace(guidText(probe.guid), probe.path);
        }
    }
}

/// What a file throws may hold anything.
void clean(PluginProbe& probe) {
    for (std::string* text : {&probe.found, &probe.wanted, &probe.text})
        *text = Utils::visibleText(*text);
}

void sortAnswers(const std::vector<PluginAnswer>& answers, const std::string& program, Inventory& inventory) {
    const std::string ownMachine = machineOf(program);
    for (const PluginAnswer& answer : answers) {
        if (answer.isFatal)
            inventory.refused.push_back(refusedByItsEnd(answer.probe));
        else if (answer.probe.accepted())
            inventory.registered.push_back(answer.probe);
        else
            inventory.refused.push_back(refusedByScan(answer.probe, ownMachine));
    }
}

Inventory takeInventory(const std::string& program) {
    Inventory inventory;
    attempt("find the plug-in directory", [&] { inventory.directory = Core::getPluginDirectory(); });
    std::error_code error;
    inventory.exists = std::filesystem::exists(pathOf(inventory.directory), error) || error;
    if (!inventory.exists)
        return inventory;
    inventory.refused = entriesBesidesPlugins(inventory.directory);
    std::set<std::string> others;
    for (const RefusedFile& file : inventory.refused)
        others.insert(file.path);
    std::vector<std::string> files = Utils::getFileList(inventory.directory, Core::pluginFileExtension());
    std::erase_if(files, [&others](const std::string& path) { return others.count(path) != 0; });
    std::vector<PluginAnswer> answers = askPlugins(program, files);
    refuseDuplicates(answers);
    for (PluginAnswer& answer : answers)
        clean(answer.probe);
    sortAnswers(answers, program, inventory);
    std::sort(inventory.refused.begin(), inventory.refused.end(),
              [](const RefusedFile& left, const RefusedFile& right) { return left.path < right.path; });
    return inventory;
}

template<std::size_t count>
std::string dotted(const std::array<std::int32_t, count>& numbers) {
    std::string text;
    for (const std::int32_t number : numbers)
        text += (text.empty() ? "" : ".") + std::to_string(number);
    return text;
}

Json toJson(const PluginProbe& probe) {
    return {{"name", orNull(guidName(probe.guid))},
            {"guid", guidText(probe.guid)},
            {"type", probe.type},
            {"kind", kindOf(probe.type)},
            {"version", dotted(probe.pluginVersion)},
            {"sdkVersion", dotted(probe.sdkVersion)},
            {"path", probe.path}};
}

Json toJson(const RefusedFile& file) {
    return {{"path", file.path},     {"step", file.step},     {"reason", file.text},  {"found", file.found},
            {"wanted", file.wanted}, {"remedy", file.remedy}, {"fatal", file.isFatal}};
}

void printJson(std::ostream& out, const Inventory& inventory, bool all) {
    Json json = beginJson("plugins");
    json["directory"] = inventory.directory;
    json["plugins"] = Json::array();
    for (const PluginProbe& probe : inventory.registered)
        json["plugins"].push_back(toJson(probe));
    if (all) {
        json["refused"] = Json::array();
        for (const RefusedFile& file : inventory.refused)
            json["refused"].push_back(toJson(file));
    }
    print(out, json);
}

std::string nameOrDash(const GUID& guid) {
    const std::string name = guidName(guid);
    return name.empty() ? "-" : name;
}

void printRegistered(std::ostream& out, const std::vector<PluginProbe>& plugins) {
    std::size_t nameWidth = 4;
    for (const PluginProbe& probe : plugins)
        nameWidth = std::max(nameWidth, lettersOf(guidName(probe.guid)));
    const auto row = [&out, width = nameWidth + 2](const std::string& name, const std::string& guid,
                                                   const std::string& kind, const std::string& version,
                                                   const std::string& sdk, const std::string& path) {
        out << padded(name, width) << padded(guid, 38) << padded(kind, 23) << padded(version, 9)
            << padded(sdk, 12) << path << '\n';
    };
    row("NAME", "GUID", "KIND", "VERSION", "SDK", "PATH");
    for (const PluginProbe& probe : plugins)
        row(nameOrDash(probe.guid), guidText(probe.guid), kindOf(probe.type), dotted(probe.pluginVersion),
            dotted(probe.sdkVersion), Utils::visibleText(probe.path));
}

void printRefused(std::ostream& out, const std::vector<RefusedFile>& files) {
    for (const RefusedFile& file : files) {
        out << "\nrefused: " << Utils::visibleText(file.path) << '\n' << "  step     " << file.step << '\n';
        out << "  reason   " << file.text << '\n';
        if (!file.found.empty())
            out << "  found    " << file.found << '\n';
        if (!file.wanted.empty())
            out << "  wanted   " << file.wanted << '\n';
        out << "  remedy   " << file.remedy << '\n';
    }
}

/// Files with another ending are no plug-ins that were refused.
std::size_t refusedPlugins(const Inventory& inventory) {
    return static_cast<std::size_t>(
        std::count_if(inventory.refused.begin(), inventory.refused.end(),
                      [](const RefusedFile& file) { return file.step != "ending"; }));
}

void remark(std::ostream& err, const std::string& text) { tellLine(err, "zentara plugins: " + text); }

/// Says on standard error what the list leaves open.
void remarkOn(const Inventory& inventory, bool all, std::ostream& err) {
    const std::size_t count = refusedPlugins(inventory);
    if (count != 0 && !all)
        remark(err, Format(count == 1 ? "% plug-in was refused; --all tells why"
                                      : "% plug-ins were refused; --all tells why") %
                        count);
    for (const RefusedFile& file : inventory.refused) {
        if (file.isFatal)
            remark(err, Format("'%' %: take it out, or no program finds a camera") %
                            Utils::visibleText(file.path) % file.text);
    }
    if (Utils::Platform::everybodyMayWrite(inventory.directory))
        remark(err,
               Format("everybody may write to '%', and what lies there runs in every program that looks for "
                      "cameras: let administrators alone write there") %
                   inventory.directory);
}

/// Says on standard error why nothing is registered.
void explainNothing(std::ostream& err, const Inventory& inventory) {
    if (!inventory.exists)
        remark(
            err,
            Format(
                "there is no directory '%'; set ZENTARASDK_ROOT to the directory that holds bin/Plugins/") %
                inventory.directory);
    else
        remark(err, Format("no usable plug-in in '%'") % inventory.directory);
}

ExitCode runPlugins(const PluginsOptions& options, Console& console) {
    const Inventory inventory = takeInventory(console.program);
    if (options.json) {
        printJson(console.out, inventory, options.all);
    } else {
        if (!inventory.registered.empty())
            printRegistered(console.out, inventory.registered);
        if (options.all)
            printRefused(console.out, inventory.refused);
    }
    remarkOn(inventory, options.all, console.err);
    if (!inventory.registered.empty())
        return Failure::None;
    explainNothing(console.err, inventory);
    return Failure::NoPlugin;
}

} // namespace

Verb addPluginsVerb(CLI::App& program) {
    auto options = std::make_shared<PluginsOptions>();
    CLI::App* command =
        program.add_subcommand("plugins", "Lists the plug-ins that are registered")->group("Verbs");
    command->footer("Each file is asked in a process of its own, for 5 s at most: one that crashes, hangs or "
                    "ends the process is\n"
                    "named, and the others are listed. Exit code 4 when no plug-in is usable.");
    command->add_flag("--all", options->all,
                      "Also list everything else in the directory, why it was refused and the remedy");
    command->add_flag("--json", options->json, "Print JSON");
    return {command, [options](Console& console) { return runPlugins(*options, console); }};
}

} // namespace Zentara::Tool
