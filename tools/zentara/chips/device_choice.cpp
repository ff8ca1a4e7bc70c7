#include "tools/zentara/chips/device_choice.h"

#include <algorithm>
#include <vector>

#include <zentara/core/plugin_manager.h>
#include <zentara/core/plugin_probe.h>
#include <zentara/utils/format.h>

#include "tools/zentara/exit_code.h"
#include "tools/zentara/guid_text.h"

namespace Zentara::Tool {
namespace {

std::vector<GUID> registered(Core::ImplType type) {
    std::vector<GUID> guids;
    attempt("look for plug-ins", [&] {
        Core::PluginManager* manager = Core::PluginManager::instance();
        if (manager == nullptr)
            throw ToolFailure(ExitCode_NO_PLUGIN, "cannot look for plug-ins: there is no plug-in manager");
        guids = manager->getGUIDs(type);
        manager->release();
    });
    std::sort(guids.begin(), guids.end(),
              [](const GUID& left, const GUID& right) { return guidText(left) < guidText(right); });
    return guids;
}

} // namespace

GUID chooseDevice(Core::ImplType type, const char* what, std::ostream& err) {
    const std::vector<GUID> guids = registered(type);
    if (guids.empty())
        throw ToolFailure(
            ExitCode_NO_PLUGIN,
            Utils::Format("no % plug-in is registered in '%'; 'zentara plugins --all' tells why") % what %
                Core::getPluginDirectory());
    if (guids.size() > 1)
        err << "zentara: " << guids.size() << " " << what << " plug-ins are registered; taking "
            << guidLabel(guids.front()) << '\n';
    return guids.front();
}

} // namespace Zentara::Tool
