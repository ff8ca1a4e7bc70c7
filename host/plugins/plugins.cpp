#include <zentara/host/plugins.h>

#include <algorithm>
#include <array>
#include <bit>
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

#include "host/attempt.h"
#include "host/files/paths.h"
#include "host/guid_text.h"
#include "host/plugins/besides_plugins.h"
#include "host/plugins/plugin_question.h"
#include "host/plugins/refused_by_scan.h"
#include "utils/platform/directory_access.h"
#include "utils/visible_text.h"

namespace Zentara::Host {
namespace {

using Core::PluginProbe;
using Core::PluginScanStep;
using Utils::Format;

using GuidBytes = std::array<unsigned char, sizeof(GUID)>;

/// The first file in the list has the GUID, as in the scan.
void refuseDuplicates(std::vector<PluginAnswer>& answers) {
    std::map<GuidBytes, std::string> registered;
    for (PluginAnswer& answer : answers) {
        PluginProbe& probe = answer.probe;
        if (answer.isFatal || probe.step < PluginScanStep::Duplicate)
            continue;
        const auto guid = std::bit_cast<GuidBytes>(probe.guid);
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
    for (PluginAnswer& answer : answers) {
        PluginProbe& probe = answer.probe;
        for (std::string* text : {&probe.found, &probe.wanted, &probe.text})
            *text = Utils::visibleText(*text); // what a file throws may hold anything
        if (answer.isFatal || !probe.accepted())
            directory.refused.push_back(refusedByScan(answer));
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
    std::vector<PluginAnswer> answers = askPlugins(questions, directory.path, [&directory] {
        directory.refused = entriesBesidesPlugins(directory.path);
        std::set<std::string> others;
        for (const RefusedFile& file : directory.refused)
            others.insert(file.path);
        std::vector<std::string> files = Utils::getFileList(directory.path, Core::pluginFileExtension());
        std::erase_if(files, [&others](const std::string& path) { return others.count(path) != 0; });
        return files;
    });
    refuseDuplicates(answers);
    sortAnswers(std::move(answers), directory);
    return directory;
}

} // namespace Zentara::Host
