#include <algorithm>
#include <iomanip>
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

#include "tools/zentara/guid_text.h"
#include "tools/zentara/json_output.h"
#include "tools/zentara/paths.h"
#include "tools/zentara/verb.h"

namespace Zentara::Tool {
namespace {

using Core::PluginProbe;
using Core::PluginScanStep;
using Utils::Format;

struct PluginsOptions {
    bool all = false;
    bool json = false;
};

/// A file of the directory that is not registered, and why.
struct Refused {
    std::string path;
    std::string step;
    std::string text;
    std::string found;
    std::string wanted;
    std::string remedy;
};

/// What lies in the plug-in directory.
struct Inventory {
    std::string directory;
    bool exists = false;
    std::vector<PluginProbe> registered;
    std::vector<Refused> refused;
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

Refused refusedByScan(const PluginProbe& probe) {
    return {probe.path,      Core::pluginScanStepName(probe.step), probe.text, probe.found, probe.wanted,
            remedyFor(probe)};
}

Refused refusedByEnding(const std::string& path) {
    const std::string wanted = std::string(".") + Core::pluginFileExtension();
    return {path,
            "ending",
            "its name does not end in " + wanted,
            Utils::getFilename(path),
            wanted,
            "only files that end in " + wanted + " are looked at; rename it if it is a plug-in"};
}

/// The files that the scan does not even look at.
std::vector<Refused> filesBesides(const std::string& directory, const std::vector<PluginProbe>& probes) {
    std::set<std::string> seen;
    for (const PluginProbe& probe : probes)
        seen.insert(probe.path);
    std::vector<Refused> others;
    for (const std::string& path : Utils::getFileList(directory, "")) {
        if (seen.count(path) == 0)
            others.push_back(refusedByEnding(path));
    }
    return others;
}

Inventory takeInventory() {
    Inventory inventory;
    attempt("find the plug-in directory", [&] { inventory.directory = Core::getPluginDirectory(); });
    inventory.exists = isDirectory(inventory.directory);
    const auto probes = Core::probePluginDirectory(inventory.directory);
    for (const PluginProbe& probe : probes) {
        if (probe.accepted())
            inventory.registered.push_back(probe);
        else
            inventory.refused.push_back(refusedByScan(probe));
    }
    const auto others = filesBesides(inventory.directory, probes);
    inventory.refused.insert(inventory.refused.end(), others.begin(), others.end());
    std::sort(inventory.refused.begin(), inventory.refused.end(),
              [](const Refused& left, const Refused& right) { return left.path < right.path; });
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

Json toJson(const Refused& file) {
    return {{"path", file.path},   {"step", file.step},     {"reason", file.text},
            {"found", file.found}, {"wanted", file.wanted}, {"remedy", file.remedy}};
}

void printJson(std::ostream& out, const Inventory& inventory, bool all) {
    Json json = beginJson("plugins");
    json["directory"] = inventory.directory;
    json["plugins"] = Json::array();
    for (const PluginProbe& probe : inventory.registered)
        json["plugins"].push_back(toJson(probe));
    if (all) {
        json["refused"] = Json::array();
        for (const Refused& file : inventory.refused)
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
        nameWidth = std::max(nameWidth, guidName(probe.guid).size());
    const auto name = static_cast<int>(nameWidth) + 2;
    out << std::left << std::setw(name) << "NAME" << std::setw(38) << "GUID" << std::setw(23) << "KIND"
        << std::setw(9) << "VERSION" << std::setw(12) << "SDK"
        << "PATH\n";
    for (const PluginProbe& probe : plugins)
        out << std::left << std::setw(name) << nameOrDash(probe.guid) << std::setw(38) << guidText(probe.guid)
            << std::setw(23) << kindOf(probe.type) << std::setw(9) << dotted(probe.pluginVersion)
            << std::setw(12) << dotted(probe.sdkVersion) << probe.path << '\n';
}

void printRefused(std::ostream& out, const std::vector<Refused>& files) {
    for (const Refused& file : files) {
        out << "\nrefused: " << file.path << '\n' << "  step     " << file.step << '\n';
        out << "  reason   " << file.text << '\n';
        if (!file.found.empty())
            out << "  found    " << file.found << '\n';
        if (!file.wanted.empty())
            out << "  wanted   " << file.wanted << '\n';
        out << "  remedy   " << file.remedy << '\n';
    }
}

/// Says on standard error why nothing is registered.
void explainNothing(std::ostream& err, const Inventory& inventory, bool all) {
    if (!inventory.exists) {
        err << "zentara plugins: there is no directory '" << inventory.directory
            << "'; set ZENTARASDK_ROOT to the directory that holds bin/Plugins/\n";
        return;
    }
    err << "zentara plugins: no usable plug-in in '" << inventory.directory << "'";
    if (!all && !inventory.refused.empty())
        err << "; --all tells why its " << inventory.refused.size() << " files were refused";
    err << '\n';
}

ExitCode runPlugins(const PluginsOptions& options, Console& console) {
    const Inventory inventory = takeInventory();
    if (options.json) {
        printJson(console.out, inventory, options.all);
    } else {
        if (!inventory.registered.empty())
            printRegistered(console.out, inventory.registered);
        if (options.all)
            printRefused(console.out, inventory.refused);
    }
    if (!inventory.registered.empty())
        return ExitCode_DONE;
    explainNothing(console.err, inventory, options.all);
    return ExitCode_NO_PLUGIN;
}

} // namespace

Verb addPluginsVerb(CLI::App& program) {
    auto options = std::make_shared<PluginsOptions>();
    CLI::App* command =
        program.add_subcommand("plugins", "Lists the plug-ins that are registered")->group("Verbs");
    command->footer("Exit code 4 when no plug-in is usable.");
    command->add_flag("--all", options->all,
                      "Also list every other file of the directory, why it was refused and the remedy");
    command->add_flag("--json", options->json, "Print JSON");
    return {command, [options](Console& console) { return runPlugins(*options, console); }};
}

} // namespace Zentara::Tool
