#include "host/cameras/device_choice.h"

#include <algorithm>
#include <iterator>
#include <vector>

#include <zentara/core/guids.h>
#include <zentara/core/plugin_probe.h>
#include <zentara/utils/files.h>
#include <zentara/utils/format.h>
#include <zentara/utils/log_area.h>
#include <zentara/utils/text.h>

#include "host/attempt.h"
#include "host/cameras/held_manager.h"
#include "host/guid_text.h"
#include "host/tell.h"
#include "utils/visible_text.h"

namespace Zentara::Host {
namespace {

using Utils::Format;

/// Whether a plug-in is meant: by its GUID, with or without braces, its well-known name or its file, of which the
/// directory and the ending may be missing.
bool isCalled(const Core::PluginProbe& plugin, const std::string& name) {
    const bool braced = name.size() > 2 && name.front() == '{' && name.back() == '}';
    const std::string plain = Utils::toLower(braced ? name.substr(1, name.size() - 2) : name);
    const std::string file = Utils::getFilename(plugin.path);
    return Utils::toLower(guidText(plugin.guid)) == plain ||
           Utils::toLower(guidLabel(plugin.guid)) == plain || file == name ||
           Utils::removeExtension(file) == name ||
           Utils::canonicalPath(plugin.path) == Utils::canonicalPath(name);
}

/// Serves the system's own devices: without a node it does not know which.
bool isOfTheSystem(const GUID& device) {
    using namespace Core::Guids;
    const GUID all[] = {V4L2VIDEO_IMPL, ALSAAUDIO_IMPL, WMFVIDEO_IMPL, WMFAUDIO_IMPL};
    return std::any_of(std::begin(all), std::end(all),
                       [&](const GUID& one) { return guidEquals(one, device); });
}

std::string listOf(const std::vector<Core::PluginProbe>& plugins, Core::ImplType type) {
    std::string text;
    for (const Core::PluginProbe& plugin : plugins) {
        if (plugin.accepted() && plugin.type == type)
            text += Format("% % (%)") % (text.empty() ? "" : ",") % guidLabel(plugin.guid) %
                    Utils::visibleText(Utils::getFilename(plugin.path));
    }
    return text;
}

GUID namedDevice(Core::ImplType type, const char* what, const std::vector<std::string>& names) {
    std::vector<Core::PluginProbe> plugins;
    const Utils::LogAreaScope scope(Utils::LogArea_PLUGINS);
    attempt("look for plug-ins", [&] { plugins = Core::probePluginDirectory(Core::getPluginDirectory()); });
    for (const std::string& name : names) {
        const auto found = std::find_if(plugins.begin(), plugins.end(), [&](const Core::PluginProbe& plugin) {
            return plugin.accepted() && plugin.type == type && isCalled(plugin, name);
        });
        if (found != plugins.end())
            return found->guid;
    }
    throw Failure(Failure::Usage, Format("no % plug-in is called '%'; registered:%") % what %
                                      Utils::visibleText(names.front()) % listOf(plugins, type));
}

} // namespace

std::vector<GUID> registeredPlugins(Core::ImplType type, const char* what) {
    std::vector<GUID> guids;
    const Utils::LogAreaScope scope(Utils::LogArea_PLUGINS);
    attempt("look for plug-ins", [&] { guids = HeldManager()->getGUIDs(type); });
    if (guids.empty())
        throw Failure(
            Failure::NoPlugin,
            Format("no % plug-in is registered in '%'") % what % Core::getPluginDirectory(), {},
            "install the plug-ins there, or set ZENTARASDK_ROOT to the directory above their bin/Plugins");
    // By what people read, so that the order is the same on every machine.
    std::sort(guids.begin(), guids.end(),
              [](const GUID& left, const GUID& right) { return guidText(left) < guidText(right); });
    return guids;
}

GUID chooseDevice(Core::ImplType type, const char* what, const std::vector<std::string>& names,
                  const Note& note) {
    const std::vector<GUID> guids = registeredPlugins(type, what);
    if (!names.empty())
        return namedDevice(type, what, names);
    const auto other = std::find_if_not(guids.begin(), guids.end(), isOfTheSystem);
    const GUID chosen = other == guids.end() ? guids.front() : *other;
    if (guids.size() > 1)
        tell(note, std::to_string(guids.size()) + " " + what + " plug-ins are registered; taking " +
                       guidLabel(chosen));
    return chosen;
}

} // namespace Zentara::Host
