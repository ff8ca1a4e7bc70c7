#include "utils/install_root_lookup.h"

#include <cstdio>
#include <optional>

#include <zentara/utils/environment_variable.h>
#include <zentara/utils/files.h>

#include "utils/log_warning.h"
#include "utils/platform/key_store.h"

namespace Zentara::Utils {

namespace {

using Platform::KeyRead;
using Platform::KeyView;

constexpr const char* plainKey = "Software\\Korvalis\\ZentaraSDK";
constexpr const char* developmentKitKey = "Software\\Korvalis\\ZentaraSDK-CDK";
constexpr int kitMajor = 1;
constexpr int kitMinor = 4;

std::nullopt_t unparsedVersion() {
    logWarning("Failed to parse version");
    return std::nullopt;
}

/// The third number of a version text of four fields whose first two are the development kit's.
std::optional<int> kitPatch(const std::string& version) {
    int major = 0;
    int minor = 0;
    int patch = 0;
    char rest[2];
    // The widths keep every number inside an int.
    // A fourth field must be there, whatever it holds.
    if (std::sscanf(version.c_str(), "%9d.%9d.%9d.%1s", &major, &minor, &patch, rest) != 4)
        return unparsedVersion();
    if (major != kitMajor || minor != kitMinor)
        return std::nullopt;
    return patch;
}

std::optional<int> kitPatchInView(const std::string& store, KeyView view) {
    std::string version;
    switch (Platform::readKeyValue(store, developmentKitKey, view, "Version", version)) {
    case KeyRead::Found:
        return kitPatch(version);
    case KeyRead::Unreadable:
        return unparsedVersion();
    case KeyRead::Missing:
        break;
    }
    return std::nullopt;
}

/// The view that holds the development kit to use. With one in each, the 32-bit view must be strictly newer.
std::optional<KeyView> developmentKitView(const std::string& store) {
    const std::optional<int> patch32 = kitPatchInView(store, KeyView::Bits32);
    const std::optional<int> patch64 = kitPatchInView(store, KeyView::Bits64);
    if (patch32 && (!patch64 || *patch32 > *patch64))
        return KeyView::Bits32;
    return patch64 ? std::optional(KeyView::Bits64) : std::nullopt;
}

/// The root that comes before any key, if there is one.
std::optional<InstallRoot> rootFromEnvironment() {
    EnvironmentVariable variable("ZENTARASDK_ROOT");
    if (!variable.isDefined())
        return std::nullopt;
    InstallRoot found;
    found.root = addTrailingSeparator(variable.getValue());
    return found;
}

InstallRoot readRoot(const std::string& store, const char* key, KeyView view, const std::string& fallback) {
    InstallRoot found;
    std::string directory;
    // A value that is no text is a broken installation, not a missing one: it must not be passed over in silence.
    const KeyRead result = Platform::readKeyValue(store, key, view, "InstallDir", directory);
    found.readable = result != KeyRead::Unreadable;
    if (found.readable)
        found.root =
            addTrailingSeparator(result == KeyRead::Found && !directory.empty() ? directory : fallback);
    return found;
}

} // namespace

InstallRoot findInstallRoot(const std::string& store, const std::string& fallback) {
    if (const std::optional<InstallRoot> portable = rootFromEnvironment())
        return *portable;
    const std::optional<KeyView> kitView = developmentKitView(store);
    InstallRoot found = kitView ? readRoot(store, developmentKitKey, *kitView, fallback)
                                : readRoot(store, plainKey, KeyView::Bits64, fallback);
    found.suffix = kitView ? "-CDK" : "";
    return found;
}

InstallRoot findNativeInstallRoot(const std::string& store, const std::string& fallback) {
    if (const std::optional<InstallRoot> portable = rootFromEnvironment())
        return *portable;
    return readRoot(store, plainKey, KeyView::Bits64, fallback);
}

} // namespace Zentara::Utils
