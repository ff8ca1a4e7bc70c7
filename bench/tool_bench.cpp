#include "ratio_reporter.h"

#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

const Bench::Aim aims[] = {
    {"tool_version", "bare_start", 1.5, "`zentara --version`; the peer links the same libraries and ends"},
    {"tool_plugins", "bare_scan", 1.5,
     "`zentara plugins`; the peer links the same, and opens and asks the plug-ins"}};

/// From the start of the program to its end.
void run(benchmark::State& state, const char* program, const char* argument) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    for (auto _ : state) {
        char* const words[] = {const_cast<char*>(program), const_cast<char*>(argument), nullptr};
        pid_t child = 0;
        int status = -1;
        if (posix_spawn(&child, program, &actions, nullptr, words, environ) != 0 ||
            waitpid(child, &status, 0) != child || status != 0)
            state.SkipWithError("the program does not run");
    }
    posix_spawn_file_actions_destroy(&actions);
}

BENCHMARK_CAPTURE(run, version, ZENTARA_TOOL, "--version")
    ->Name("tool_version/ours")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(run, bare, BARE_START, "")
    ->Name("tool_version/bare_start")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(run, plugins, ZENTARA_TOOL, "plugins")
    ->Name("tool_plugins/ours")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(run, scan, BARE_START, PLUGIN_DIRECTORY)
    ->Name("tool_plugins/bare_scan")
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv) { return Bench::runAll(argc, argv); }
