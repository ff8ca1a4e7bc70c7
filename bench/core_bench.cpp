#include "ratio_reporter.h"

#include <zentara/core/plugin_exports.h>
#include <zentara/core/plugin_manager.h>
#include <zentara/core/plugin_probe.h>
#include <zentara/utils/dynamic_library.h>
#include <zentara/utils/environment_variable.h>
#include <zentara/utils/files.h>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace {

using namespace Zentara;

const Bench::Aim aims[] = {
    {"scan_10", "bare_calls", 1.1, "the scan of 10 plug-ins; the peer lists, opens, asks and closes them"},
    {"scan_1000", "bare_calls", 1.1, "the same of 1,000"}};
const Bench::Growth growth{"plugins", 1.2, "the scan of 1 to 1,000 plug-ins"};

/// An install root below the build tree whose "bin/Plugins/" holds `count` plug-ins with different GUIDs.
std::string makeRoot(int count) {
    std::string root = std::string(SCAN_ROOT) + std::to_string(count) + "/";
    std::filesystem::create_directories(root + "bin/Plugins");
    std::string library = Utils::readFile(SCAN_PLUGIN);
    std::size_t identity = library.find("scan-bench-mark!");
    if (identity == std::string::npos) {
        std::fputs("core_bench: the plug-in " SCAN_PLUGIN " does not hold its mark\n", stderr);
        std::exit(1);
    }
    for (int i = 0; i < count; ++i) {
        char digits[16];
        std::snprintf(digits, sizeof digits, "%04d", i % 10000);
        library.replace(identity, 4, digits);
        Utils::writeFile(root + "bin/Plugins/scan" + digits + "." + Core::pluginFileExtension(), library);
    }
    return root;
}

void scanOurs(benchmark::State& state, int count) {
    std::string root = makeRoot(count);
    Utils::EnvironmentVariable("ZENTARASDK_ROOT").setValue(root.c_str());
    std::size_t found = 0;
    for (auto _ : state) {
        Core::PluginManager* manager = Core::PluginManager::instance();
        found = manager->getGUIDs(Core::ImplType_VIDEO_DEVICE).size();
        manager->release();
    }
    if (found != static_cast<std::size_t>(count))
        state.SkipWithError("not every plug-in was registered");
}

void scanMany(benchmark::State& state) { scanOurs(state, static_cast<int>(state.range(0))); }
BENCHMARK(scanMany)->Name("plugins/at")->RangeMultiplier(10)->Range(1, 1000)->Unit(benchmark::kMillisecond);

template<class Function>
Function lookUp(void* library, const char* name) {
    return reinterpret_cast<Function>(Utils::getFunction(library, name));
}

/// The least that tells the same: list, open, look up, call, close.
void scanBare(benchmark::State& state, int count) {
    std::string root = makeRoot(count);
    for (auto _ : state) {
        for (const std::string& path :
             Utils::getFileList(root + "bin/Plugins/", Core::pluginFileExtension())) {
            void* library = Utils::loadSharedLibrary(path, 2);
            std::int32_t n[4];
            benchmark::DoNotOptimize(lookUp<Core::GetImplGUIDFunction>(library, "getImplGUID")());
            benchmark::DoNotOptimize(lookUp<Core::GetImplTypeFunction>(library, "getImplType")());
            lookUp<Core::GetPluginVersionFunction>(library, "getPluginVersion")(n, n + 1, n + 2);
            lookUp<Core::GetSDKVersionFunction>(library, "getSDKVersion")(n, n + 1, n + 2, n + 3);
            Utils::freeSharedLibrary(library);
        }
    }
}

BENCHMARK_CAPTURE(scanOurs, 10, 10)->Name("scan_10/ours")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(scanBare, 10, 10)->Name("scan_10/bare_calls")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(scanOurs, 1000, 1000)->Name("scan_1000/ours")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(scanBare, 1000, 1000)->Name("scan_1000/bare_calls")->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv) { return Bench::runAll(argc, argv); }
