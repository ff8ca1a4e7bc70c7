#include <zentara/core/plugin_probe.h>

#include <algorithm>
#include <exception>
#include <iterator>

#include <zentara/core/guids.h>
#include <zentara/core/plugin_exports.h>
#include <zentara/plugin/plugin_exceptions.h>
#include <zentara/utils/files.h>
#include <zentara/utils/format.h>
#include <zentara/utils/install_root.h>

#include "core/guid_map.h"
#include "core/plugin_file.h"
#include "utils/platform/dynamic_library.h"
#include "utils/platform/library_file.h"

namespace Zentara::Core {

namespace {

using Utils::Format;

constexpr std::array<std::int32_t, 4> wantedSDKVersion = {
    ZENTARA_SDK_VERSION_MAJOR, ZENTARA_SDK_VERSION_MINOR, ZENTARA_SDK_VERSION_PATCH,
    ZENTARA_SDK_VERSION_BUILD};

constexpr std::int32_t acceptedTypes[] = {
    ImplType_DEPTH_NODE,   ImplType_COLOR_NODE, ImplType_AUDIO_NODE,       ImplType_AUDIO_DEVICE,
    ImplType_VIDEO_DEVICE, ImplType_ENUMERATOR, ImplType_DESCRIPTOR_STORE, ImplType_PARAMETER_INTERPRETER};

std::string versionText(const std::array<std::int32_t, 4>& version) {
    return Format("%.%.%.%") % version[0] % version[1] % version[2] % version[3];
}

std::string debugMark() { return std::string("-d.") + pluginFileExtension(); }

/// The library that is being asked; closed when the asking is over.
class OpenLibrary {
public:
    OpenLibrary() = default;
    ~OpenLibrary() {
        if (handle)
            Utils::Platform::closeLibrary(handle);
    }
    OpenLibrary(const OpenLibrary&) = delete;
    OpenLibrary& operator=(const OpenLibrary&) = delete;

    bool open(const std::string& path, std::string& problem) {
        handle = openPluginFile(path, problem);
        return handle != nullptr;
    }

    template<typename Function>
    Function find(const char* name) const {
        return reinterpret_cast<Function>(Utils::Platform::findSymbol(handle, name));
    }

private:
    void* handle = nullptr;
};

/// Takes one file through the steps of the scan, in their order, until one refuses it.
class Scanner {
public:
    Scanner(const std::string& path, const GuidMap<std::string>& registeredPaths,
            const PluginScanListener& listener)
        : registered(registeredPaths), begins(listener) {
        probe.path = path;
    }

    PluginProbe run() {
        // The cheap steps first, and none that runs the file's code before its name was seen.
        const bool passed = checkName() && open() && readGUID() && checkDuplicate() && readType() &&
                            readPluginVersion() && readSDKVersion();
        if (passed)
            probe.step = PluginScanStep::Accepted;
        if (begins)
            begins(PluginScanStep::Accepted);
        return std::move(probe);
    }

private:
    void begin(PluginScanStep step) {
        probe.step = step;
        if (begins)
            begins(step);
    }

    /// Anywhere in the path, so that a folder can be marked as a whole.
    bool checkName() {
        begin(PluginScanStep::Name);
        const std::string mark = debugMark();
        if (probe.path.find(mark) == std::string::npos)
            return true;
        return refuse(mark, "a path without " + mark, Format("is a debug build: its path has \"%\"") % mark);
    }

    bool open() {
        begin(PluginScanStep::Open);
        std::string problem;
        if (library.open(probe.path, problem))
            return true;
        return refuse(problem, "a library of this system", Format("cannot be opened: %") % problem);
    }

    bool readGUID() {
        begin(PluginScanStep::ImplGUID);
        return ask<GetImplGUIDFunction>("getImplGUID", [this](auto function) { probe.guid = function(); });
    }

    bool checkDuplicate() {
        begin(PluginScanStep::Duplicate);
        const auto first = registered.find(probe.guid);
        if (first == registered.end())
            return true;
        const std::string guid = GUID_toString(probe.guid);
        return refuse(guid, "a GUID of its own",
                      Format("has the GUID %, which was registered by %") % guid % first->second);
    }

    bool readType() {
        begin(PluginScanStep::ImplType);
        if (!ask<GetImplTypeFunction>("getImplType", [this](auto function) { probe.type = function(); }))
            return false;
        if (std::find(std::begin(acceptedTypes), std::end(acceptedTypes), probe.type) !=
            std::end(acceptedTypes))
            return true;
        return refuseValue("getImplType", std::to_string(probe.type), "one of 1, 2, 3, 4, 5, 6, 8, 9");
    }

    /// Asked for and reported, but any value will do.
    bool readPluginVersion() {
        begin(PluginScanStep::PluginVersion);
        return ask<GetPluginVersionFunction>("getPluginVersion", [this](auto function) {
            auto& version = probe.pluginVersion;
            function(&version[0], &version[1], &version[2]);
        });
    }

    bool readSDKVersion() {
        begin(PluginScanStep::SDKVersion);
        const bool answered = ask<GetSDKVersionFunction>("getSDKVersion", [this](auto function) {
            auto& version = probe.sdkVersion;
            function(&version[0], &version[1], &version[2], &version[3]);
        });
        if (!answered || probe.sdkVersion == wantedSDKVersion)
            return answered;
        return refuseValue("getSDKVersion", versionText(probe.sdkVersion), versionText(wantedSDKVersion));
    }

    /// Hands an export to `use`, which calls it. What it throws may be of a type that is defined in the library,
    /// so nothing of it is kept: the handler is left here, before the library is closed.
    template<typename Function, typename Use>
    bool ask(const char* name, Use use) {
        const auto function = library.find<Function>(name);
        if (!function)
            return refuse("no such export", name, Format("has no export \"%\"") % name);
        try {
            use(function);
            return true;
        } catch (const std::exception& failure) {
            return refuseThrown(name, failure.what());
        } catch (...) {
            return refuseThrown(name, "unknown exception");
        }
    }

    bool refuseThrown(const char* name, const char* what) {
        const std::string thrown = what ? what : "unknown exception";
        return refuse("exception: " + thrown, std::string("an answer from ") + name,
                      Format("throws from \"%\": %") % name % thrown);
    }

    bool refuseValue(const char* name, const std::string& found, const std::string& wanted) {
        return refuse(found, wanted, Format("% gives % where % is wanted") % name % found % wanted);
    }

    bool refuse(const std::string& found, const std::string& wanted, const std::string& text) {
        probe.found = found;
        probe.wanted = wanted;
        probe.text = text;
        return false;
    }

    const GuidMap<std::string>& registered;
    const PluginScanListener& begins;
    PluginProbe probe;
    OpenLibrary library;
};

} // namespace

const char* pluginScanStepName(PluginScanStep step) noexcept {
    static constexpr const char* names[] = {"name",       "open",     "implGUID",
                                            "duplicate",  "implType", "pluginVersion",
                                            "sdkVersion", "accepted", "unload"};
    const auto index = static_cast<std::size_t>(step);
    return index < std::size(names) ? names[index] : "unknown";
}

const char* pluginFileExtension() noexcept { return Utils::Platform::libraryExtension(); }

std::string getPluginDirectory() {
    std::string root;
    if (Utils::getNativeZTRootDirectory(root) != 0)
        throw Zentara::Plugin::InitializationPluginException("couldn't get bin directory");
    return root + "bin/Plugins/";
}

std::vector<PluginProbe> probePluginDirectory(const std::string& directory) {
    GuidMap<std::string> registered;
    std::vector<PluginProbe> probes;
    const std::vector<std::string> paths = Utils::getFileList(directory, pluginFileExtension());
    probes.reserve(paths.size());
    for (const std::string& path : paths) {
        probes.push_back(Scanner(path, registered, {}).run());
        // A refused file does not take its GUID away from a later one.
        if (probes.back().accepted())
            registered.emplace(probes.back().guid, path);
    }
    return probes;
}

PluginProbe probePluginFile(const std::string& path, const PluginScanListener& begins) {
    return Scanner(path, {}, begins).run();
}

} // namespace Zentara::Core
