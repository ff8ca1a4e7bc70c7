#include <zentara/host/plugins.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>
#include <utility>

#include <zentara/core/guids.h>
#include <zentara/core/impl_type.h>
#include <zentara/core/plugin_probe.h>
#include <zentara/host/user_log.h>
#include <zentara/utils/files.h>
#include <zentara/utils/format.h>
#include <zentara/utils/log_area.h>
#include <zentara/version.h>

#include "host/attempt.h"
#include "host/files/paths.h"
#include "host/guid_text.h"
#include "host/plugins/besides_plugins.h"
#include "host/plugins/library_machine.h"
#include "host/plugins/plugin_question.h"
#include "utils/platform/directory_access.h"
#include "utils/platform/program.h"
#include "utils/visible_text.h"

namespace Zentara::Host {
namespace {

using Core::PluginProbe;
using Core::PluginScanStep;
using Utils::Format;

std::string remedyFor(PluginScanStep step) {
    switch (step) {
    case PluginScanStep::Name:
        return "debug builds are never loaded: install the release build of the plug-in, under a name "
               "without the mark";
    case PluginScanStep::Open:
        return "install a build for this system and processor, together with every library it needs; copy it "
               "again if it is damaged";
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

/// What is wrong with a file that was asked, or with what it did instead of an answer.
RefusedFile refusedByScan(const PluginAnswer& answer, const std::string& ownMachine) {
    const PluginProbe& probe = answer.probe;
    RefusedFile refused{probe.path,    probe.accepted() ? "unload" : Core::pluginScanStepName(probe.step),
                        probe.text,    probe.found,
                        probe.wanted,  remedyFor(probe.step),
                        answer.isFatal};
    if (refused.isFatal) {
        refused.remedy = "take it out of the directory: it does so to every program that looks for plug-ins";
        return refused;
    }
    // A library for another machine is told as that, whatever the loader says.
    const std::string machine = probe.step == PluginScanStep::Open ? machineOf(probe.path) : std::string();
    if (!machine.empty() && machine != ownMachine) {
        refused.reason = "is a library for " + machine;
        refused.found = machine;
        refused.wanted = ownMachine;
        refused.remedy = "install the build of the plug-in for " + ownMachine;
    }
    return refused;
}

/// The first file in the list has the GUID, as in the scan.
void refuseDuplicates(std::vector<PluginAnswer>& answers) {
    std::map<std::string, std::string> registered;
    for (PluginAnswer& answer : answers) {
        PluginProbe& probe = answer.probe;
        if (answer.isFatal || probe.step < PluginScanStep::Duplicate)
            continue;
        const std::string guid = guidText(probe.guid);
        const auto first = registered.find(guid);
        if (first != registered.end()) {
            probe.step = PluginScanStep::Duplicate;
            probe.found = Core::GUID_toString(probe.guid);
            probe.wanted = "a GUID of its own";
            probe.text = Format("has the GUID %, which was registered by %") % probe.found % first->second;
        } else if (probe.accepted()) {
            registered.emplace(guid, probe.path);
        }
    }
}

void sortAnswers(std::vector<PluginAnswer> answers, PluginDirectory& directory) {
    const std::string ownMachine = machineOf(Utils::Platform::executablePath());
    for (PluginAnswer& answer : answers) {
        PluginProbe& probe = answer.probe;
        for (std::string* text : {&probe.found, &probe.wanted, &probe.text})
            *text = Utils::visibleText(*text); // what a file throws may hold anything
        if (answer.isFatal || !probe.accepted())
            directory.refused.push_back(refusedByScan(answer, ownMachine));
        else
            directory.registered.push_back({probe.path,
                                            {guidName(probe.guid), probe.guid},
                                            probe.type,
                                            Core::implTypeName(probe.type),
                                            probe.pluginVersion,
                                            probe.sdkVersion});
    }
    std::sort(directory.refused.begin(), directory.refused.end(),
              [](const RefusedFile& left, const RefusedFile& right) { return left.path < right.path; });
}

} // namespace

std::string PluginName::guidText() const { return Host::guidText(guid); }

PluginDirectory surveyPlugins(const PluginQuestions& questions) {
    beginUserLog();
    const Utils::LogAreaScope scope(Utils::LogArea_PLUGINS);
    PluginDirectory directory;
    attempt("find the plug-in directory", [&] { directory.path = Core::getPluginDirectory(); });
    std::error_code error;
    directory.isThere = std::filesystem::exists(pathOf(directory.path), error) || error;
    if (!directory.isThere)
        return directory;
    directory.everybodyMayWrite = Utils::Platform::everybodyMayWrite(directory.path);
    directory.refused = entriesBesidesPlugins(directory.path);
    std::set<std::string> others;
    for (const RefusedFile& file : directory.refused)
        others.insert(file.path);
    std::vector<std::string> files = Utils::getFileList(directory.path, Core::pluginFileExtension());
    std::erase_if(files, [&others](const std::string& path) { return others.count(path) != 0; });
    std::vector<PluginAnswer> answers = askPlugins(questions, files);
    refuseDuplicates(answers);
    sortAnswers(std::move(answers), directory);
    return directory;
}

} // namespace Zentara::Host
