#include "host/plugins/refused_by_scan.h"

#include <string>

#include <zentara/core/plugin_probe.h>
#include <zentara/utils/format.h>
#include <zentara/version.h>

#include "host/plugins/library_machine.h"
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

} // namespace

RefusedFile refusedByScan(const PluginAnswer& answer) {
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
    const std::string ownMachine = machineOf(Utils::Platform::executablePath());
    const std::string machine = probe.step == PluginScanStep::Open ? machineOf(probe.path) : std::string();
    if (!machine.empty() && machine != ownMachine) {
        refused.reason = "is a library for " + machine;
        refused.found = machine;
        refused.wanted = ownMachine;
        refused.remedy = "install the build of the plug-in for " + ownMachine;
    }
    return refused;
}

} // namespace Zentara::Host
