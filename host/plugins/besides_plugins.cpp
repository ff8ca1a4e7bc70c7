#include "host/plugins/besides_plugins.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <system_error>

#include <zentara/core/plugin_probe.h>
#include <zentara/host/failure.h>
#include <zentara/utils/format.h>
#include <zentara/utils/text.h>

#include "host/files/paths.h"
#include "utils/platform/new_file.h"
#include "utils/visible_text.h"

namespace Zentara::Host {
namespace {

namespace fs = std::filesystem;
using Utils::Format;

const std::string wantedFile = "a file";

std::string ending() { return std::string(".") + Core::pluginFileExtension(); }

RefusedFile refusedLink(const std::string& path, const fs::path& entry, const std::error_code& error) {
    std::error_code unknown;
    const std::string target = Utils::visibleText(utf8Of(fs::read_symlink(entry, unknown)));
    if (error == std::errc::too_many_symbolic_link_levels)
        return {path,   "link",     "is a link that leads back to itself",
                target, wantedFile, "remove it, or let it lead to a plug-in",
                false};
    if (error && error != std::errc::no_such_file_or_directory)
        return {path,   "link",     "is a link that cannot be followed: " + error.message(),
                target, wantedFile, "make the way to its target readable",
                false};
    return {path,   "link",     "is a link to something that is not there",
            target, wantedFile, "put the plug-in there, or remove the link",
            false};
}

/// What is no file is told by its kind.
RefusedFile refusedKind(const std::string& path, fs::file_type type) {
    switch (type) {
    case fs::file_type::directory:
        return {path,     "kind",     "is a folder",
                "folder", wantedFile, "folders are not searched: move the plug-ins in it one up, next to it",
                false};
    case fs::file_type::fifo:
        return {path, "kind", "is a pipe", "pipe", wantedFile, "remove it: nobody reads from it here", false};
    case fs::file_type::socket:
        return {path,     "kind",     "is a socket",
                "socket", wantedFile, "end the program that listens there, and remove it",
                false};
    default:
        return {path, "kind", "is a device", "device", wantedFile, "remove it: devices belong elsewhere",
                false};
    }
}

RefusedFile refusedEnding(const std::string& path, const fs::path& entry) {
    return {path,
            "ending",
            "its name does not end in " + ending(),
            Utils::visibleText(utf8Of(entry.filename())),
            ending(),
            Format("only files that end in % are looked at; rename it if it is a plug-in") % ending(),
            false};
}

bool hasPluginEnding(const fs::path& entry) {
    const std::string found = utf8Of(entry.extension());
    return found == ending() || (fs::path::preferred_separator == '\\' && Utils::toLower(found) == ending());
}

/// False for a file that the scan opens.
bool isRefused(const fs::path& entry, const std::string& path, RefusedFile& refused) {
    std::error_code error;
    const bool isLink = fs::is_symlink(fs::symlink_status(entry, error));
    const fs::file_status status = fs::status(entry, error);
    if (isLink && !fs::exists(status))
        refused = refusedLink(path, entry, error);
    else if (!fs::is_regular_file(status))
        refused = refusedKind(path, status.type());
    else if (!hasPluginEnding(entry))
        refused = refusedEnding(path, entry);
    else if (!std::ifstream(entry) &&
             Utils::Platform::lastFileTrouble() == Utils::Platform::FileTrouble::Permission)
        refused = {path,
                   "open",
                   "may not be read",
                   "no permission",
                   "a file that everybody may read",
                   "give everybody the permission to read it",
                   false};
    else
        return false;
    return true;
}

} // namespace

std::vector<RefusedFile> entriesBesidesPlugins(const std::string& directory) {
    std::error_code error;
    std::vector<RefusedFile> refused;
    for (fs::directory_iterator entry(pathOf(directory), error); !error && entry != fs::directory_iterator();
         entry.increment(error)) {
        RefusedFile found;
        if (isRefused(entry->path(), directory + utf8Of(entry->path().filename()), found))
            refused.push_back(found);
    }
    if (error)
        throw Failure(error == std::errc::permission_denied ? Failure::Permission : Failure::Failed,
                      Format("cannot read the plug-in directory '%': %") % directory % error.message());
    return refused;
}

} // namespace Zentara::Host
