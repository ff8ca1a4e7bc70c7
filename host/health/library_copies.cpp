#include <algorithm>
#include <set>
#include <system_error>
#include <vector>

#include <zentara/host/failure.h>
#include <zentara/host/own_root.h>
#include <zentara/utils/environment_variable.h>
#include <zentara/utils/files.h>
#include <zentara/utils/format.h>
#include <zentara/utils/text.h>
#include <zentara/version.h>

#include "host/files/file_failure.h"
#include "host/files/paths.h"
#include "host/health/checkup.h"
#include "utils/platform/program.h"
#include "utils/visible_text.h"

namespace Zentara::Host {

namespace fs = std::filesystem;
using Utils::Format;

namespace {

/// Stands before the version in the library's file.
constexpr const char* mark = "@(#)ZentaraSDK ";
constexpr std::uint64_t mostLibraryBytes = std::uint64_t{1} << 28;

void addListed(std::vector<fs::path>& places, const char* variable, char separator) {
    Utils::EnvironmentVariable listed{variable};
    if (!listed.isDefined())
        return;
    for (const std::string& word : Utils::split(listed.getValue(), separator)) {
        if (!word.empty())
            places.push_back(pathOf(word));
    }
}

/// Where systems look for libraries. A list that is another system's names no directory here.
std::vector<fs::path> placesOfLibraries(const fs::path& system) {
    std::vector<fs::path> places;
    addListed(places, "LD_LIBRARY_PATH", ':');
    addListed(places, "PATH", ';');
    const fs::path own = pathOf(Utils::Platform::executablePath()).parent_path();
    const fs::path root = pathOf(installRoot().directory);
    places.insert(places.end(), {own, own.parent_path() / "lib", root / "bin", root / "lib"});
    for (const char* prefix : {"usr/local/lib", "usr/lib", "lib"}) {
        places.push_back(system / prefix);
        std::error_code error;
        for (fs::directory_iterator entry(system / prefix, error), end; !error && entry != end;
             entry.increment(error)) {
            if (entry->path().filename().string().ends_with("-linux-gnu"))
                places.push_back(entry->path());
        }
    }
    return places;
}

bool isLibrary(const fs::path& file) {
    const std::string name = file.filename().string();
    return name.starts_with("libZentaraPlugins.so") || name == "ZentaraPlugins.dll";
}

/// Links are followed, so that each file is there once.
std::set<fs::path> librariesIn(const std::vector<fs::path>& places) {
    std::set<fs::path> found;
    for (const fs::path& place : places) {
        std::error_code error;
        for (fs::directory_iterator entry(place, error), end; !error && entry != end;
             entry.increment(error)) {
            std::error_code broken;
            const fs::path real =
                isLibrary(entry->path()) ? fs::canonical(entry->path(), broken) : fs::path();
            if (!broken && !real.empty())
                found.insert(real);
        }
    }
    return found;
}

/// The version of a library that is not loaded for that; empty when its file does not tell.
std::string versionIn(const std::string& file) {
    const std::string bytes = readFileBytes(file, mostLibraryBytes);
    const std::size_t found = bytes.find(mark);
    if (found == std::string::npos)
        return {};
    const std::size_t begin = found + std::char_traits<char>::length(mark);
    return bytes.substr(begin, bytes.find_first_not_of("0123456789.", begin) - begin);
}

} // namespace

void checkLibraries(Checkup& checkup, const fs::path& system) {
    const std::string running = sdkVersion();
    checkup.about("library-version");
    if (running == ZENTARA_SDK_VERSION_STRING)
        checkup.well(running);
    else
        checkup.wrong(Format("the library is of version %, and this program was built for %") % running %
                          ZENTARA_SDK_VERSION_STRING,
                      "install both of one version, and see that no other library is found before");

    checkup.about("library-copy");
    for (const fs::path& path : librariesIn(placesOfLibraries(system))) {
        const std::string file = utf8Of(path);
        try {
            const std::string version = versionIn(file);
            if (version == running)
                checkup.well("'" + Utils::visibleText(file) + "'");
            else
                checkup.wrong(
                    Format("'%' is of % and the running library of %: which of them a program gets is "
                           "chance") %
                        Utils::visibleText(file) %
                        (version.empty() ? "an unknown version" : "version " + version) % running,
                    "remove one of them, or take its directory out of the search path");
        } catch (const Failure&) { // of what may not be read nothing is known
        }
    }
}

} // namespace Zentara::Host
