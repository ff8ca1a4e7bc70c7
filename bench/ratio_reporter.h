#pragma once

#include <string>

/// A benchmark of ours is named "GROUP/ours" and its peers "GROUP/PEER"; the reporter divides the first by each of
/// the others after the run. An aim says which ratio is good enough.
namespace Bench {

/// States that `group`'s own time should be at most `ratio` times that of `peer`. Call before runAll().
struct Aim {
    Aim(std::string group, std::string peer, double ratio);
};

/// Runs every registered benchmark and prints the table of ratios below the times. The exit code of main():
/// a missed aim is printed, but is no failure, since a busy machine can miss any.
int runAll(int argc, char** argv);

} // namespace Bench
