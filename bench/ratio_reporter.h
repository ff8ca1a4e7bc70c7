#pragma once

#include <string>

/// A benchmark of ours is named "GROUP/ours" and its peers "GROUP/PEER"; the reporter divides the first's median by that of
/// each of the others after the run. An aim says which ratio is good enough. Benchmarks named "GROUP/at" with one
/// argument show growth: the exponent of time over the argument is fitted through their medians.
namespace Bench {

/// States that `group`'s own time should be at most `ratio` times that of `peer`. Call before runAll().
struct Aim {
    /// \param what is measured, in the words of the page that shows it
    Aim(std::string group, std::string peer, double ratio, std::string what = {});
};

/// Says what grows, and the greatest exponent that is good enough. Call before runAll().
struct Growth {
    Growth(std::string group, double exponent, std::string what);
};

/// Says how many of what is counted are good enough. The benchmark is named "GROUP/counted" and leaves the number in
/// its counter "count". Call before runAll().
struct Count {
    Count(std::string group, double most, std::string what);
};

/// Runs every registered benchmark and prints the table of ratios below the times. "--results=FILE" writes the table as
/// JSON, too. The exit code of main(): a missed aim is printed, but is no failure, since a busy machine can miss any.
int runAll(int argc, char** argv);

} // namespace Bench
