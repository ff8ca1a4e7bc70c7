#include "ratio_reporter.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <utility>
#include <vector>

namespace Bench {

namespace {

using Pair = std::pair<std::string, std::string>;

std::map<Pair, double>& aims() {
    static std::map<Pair, double> table;
    return table;
}

class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs)
            note(run);
    }

    void printRatios() const {
        std::printf("\n%-28s %-26s %10s %10s\n", "group", "peer", "ratio", "aim");
        for (const auto& [group, times] : groups) {
            auto own = times.find("ours");
            if (own == times.end())
                continue;
            for (const auto& [peer, time] : times)
                if (peer != "ours")
                    printRatio(group, peer, own->second / time);
        }
    }

private:
    // The least of the repetitions: what else runs on the machine can only add to a time.
    void note(const Run& run) {
        if (run.error_occurred || run.run_type != Run::RT_Iteration)
            return;
        std::string name = run.run_name.function_name;
        std::size_t slash = name.rfind('/');
        if (slash == std::string::npos)
            return;
        auto& times = groups[name.substr(0, slash)];
        const std::string& kind = run.run_name.time_type;
        bool acrossThreads = kind == "real_time" || kind == "manual_time";
        double time = acrossThreads ? run.GetAdjustedRealTime() : run.GetAdjustedCPUTime();
        auto [entry, isNew] = times.try_emplace(name.substr(slash + 1), time);
        if (!isNew)
            entry->second = std::min(entry->second, time);
    }

    static void printRatio(const std::string& group, const std::string& peer, double ratio) {
        auto aim = aims().find({group, peer});
        if (aim == aims().end())
            std::printf("%-28s %-26s %10.3f %10s\n", group.c_str(), peer.c_str(), ratio, "");
        else
            std::printf("%-28s %-26s %10.3f %10.3f %s\n", group.c_str(), peer.c_str(), ratio, aim->second,
                        ratio <= aim->second ? "met" : "MISSED");
    }

    std::map<std::string, std::map<std::string, double>> groups;
};

} // namespace

Aim::Aim(std::string group, std::string peer, double ratio) {
    aims()[{std::move(group), std::move(peer)}] = ratio;
}

int runAll(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 2;
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.printRatios();
    return 0;
}

} // namespace Bench
