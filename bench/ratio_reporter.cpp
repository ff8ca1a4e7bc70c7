#include "ratio_reporter.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <map>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

namespace Bench {

namespace {

using Pair = std::pair<std::string, std::string>;

struct Wanted {
    double most;
    std::string what;
};

std::map<Pair, Wanted>& aims() {
    static std::map<Pair, Wanted> table;
    return table;
}

std::map<std::string, Wanted>& growths() {
    static std::map<std::string, Wanted> table;
    return table;
}

std::map<std::string, Wanted>& counts() {
    static std::map<std::string, Wanted> table;
    return table;
}

double median(std::vector<double> times) {
    const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
    std::nth_element(times.begin(), middle, times.end());
    return *middle;
}

/// The slope of the line through the logarithms: least squares.
double exponentOf(const std::map<double, std::vector<double>>& times) {
    double sumX = 0;
    double sumY = 0;
    double sumXX = 0;
    double sumXY = 0;
    for (const auto& [size, some] : times) {
        const double x = std::log(size);
        const double y = std::log(median(some));
        sumX += x;
        sumY += y;
        sumXX += x * x;
        sumXY += x * y;
    }
    const auto count = static_cast<double>(times.size());
    return (count * sumXY - sumX * sumY) / (count * sumXX - sumX * sumX);
}

class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs)
            note(run);
    }

    void printTable() {
        std::printf("\n%-28s %-26s %10s %10s\n", "group", "peer", "ratio", "aim");
        for (const auto& [group, times] : groups) {
            const auto own = times.find("ours");
            for (const auto& [peer, some] : times)
                if (own != times.end() && peer != "ours")
                    printRatio(group, peer, median(own->second), median(some));
        }
        for (const auto& [group, numbers] : counted) {
            const Wanted& aim = counts().at(group);
            const double most = *std::max_element(numbers.begin(), numbers.end());
            std::printf("%-28s %-26s %10g %10g %s\n", group.c_str(), "counted", most, aim.most,
                        most <= aim.most ? "met" : "MISSED");
            rows.push_back({{"group", group}, {"count", most}, {"aim", aim.most}, {"what", aim.what}});
        }
        for (const auto& [group, times] : growing) {
            if (times.size() < 2)
                continue;
            const Wanted& aim = growths().at(group);
            const double exponent = exponentOf(times);
            std::printf("%-28s %-26s %10.3f %10.3f %s\n", group.c_str(), "exponent", exponent, aim.most,
                        exponent <= aim.most ? "met" : "MISSED");
            nlohmann::json row{
                {"group", group}, {"exponent", exponent}, {"aim", aim.most}, {"what", aim.what}};
            for (const auto& [size, some] : times)
                row["times"].push_back({size, median(some)});
            rows.push_back(std::move(row));
        }
    }

    [[nodiscard]] const nlohmann::json& table() const { return rows; }

private:
    void note(const Run& run) {
        if (run.error_occurred || run.run_type != Run::RT_Iteration)
            return;
        const std::string name = run.run_name.function_name;
        const std::size_t slash = name.rfind('/');
        if (slash == std::string::npos)
            return;
        if (name.substr(slash + 1) == "counted") {
            counted[name.substr(0, slash)].push_back(run.counters.at("count"));
            return;
        }
        const std::string& kind = run.run_name.time_type;
        const bool acrossThreads = kind == "real_time" || kind == "manual_time";
        // Nanoseconds, whatever the unit that is shown.
        const double time = (acrossThreads ? run.GetAdjustedRealTime() : run.GetAdjustedCPUTime()) * 1e9 /
                            benchmark::GetTimeUnitMultiplier(run.time_unit);
        if (name.substr(slash + 1) == "at")
            growing[name.substr(0, slash)][std::stod(run.run_name.args)].push_back(time);
        else
            groups[name.substr(0, slash)][name.substr(slash + 1)].push_back(time);
    }

    void printRatio(const std::string& group, const std::string& peer, double own, double other) {
        const double ratio = own / other;
        nlohmann::json row{
            {"group", group}, {"peer", peer}, {"ratio", ratio}, {"ours", own}, {"theirs", other}};
        const auto aim = aims().find({group, peer});
        if (aim == aims().end()) {
            std::printf("%-28s %-26s %10.3f\n", group.c_str(), peer.c_str(), ratio);
        } else {
            const auto& [most, what] = aim->second;
            std::printf("%-28s %-26s %10.3f %10.3f %s\n", group.c_str(), peer.c_str(), ratio, most,
                        ratio <= most ? "met" : "MISSED");
            row["aim"] = most;
            row["what"] = what;
        }
        rows.push_back(std::move(row));
    }

    std::map<std::string, std::map<std::string, std::vector<double>>> groups;
    std::map<std::string, std::map<double, std::vector<double>>> growing;
    std::map<std::string, std::vector<double>> counted;
    nlohmann::json rows = nlohmann::json::array();
};

/// Takes the option out of the arguments.
std::string takeResultsFile(int& argc, char** argv) {
    constexpr const char* option = "--results=";
    for (int i = 1; i < argc; ++i) {
        if (std::strncmp(argv[i], option, std::strlen(option)) != 0)
            continue;
        std::string file = argv[i] + std::strlen(option);
        std::copy(argv + i + 1, argv + argc, argv + i);
        --argc;
        return file;
    }
    return {};
}

} // namespace

Aim::Aim(std::string group, std::string peer, double ratio, std::string what) {
    aims()[{std::move(group), std::move(peer)}] = {ratio, std::move(what)};
}

Growth::Growth(std::string group, double exponent, std::string what) {
    growths()[std::move(group)] = {exponent, std::move(what)};
}

Count::Count(std::string group, double most, std::string what) {
    counts()[std::move(group)] = {most, std::move(what)};
}

int runAll(int argc, char** argv) {
    const std::string file = takeResultsFile(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 2;
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.printTable();
    if (file.empty())
        return 0;
    std::ofstream out(file);
    out << reporter.table().dump(1) << '\n';
    return out ? 0 : 1;
}

} // namespace Bench
