// zentara_kept_blocks ROUNDS KEEP: what a heap makes of blocks of 104 bytes, one a round, that stay (KEEP is 1) while
// larger ones come and go around them, as the husks of failed requests do. Nothing of the library runs.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include "utils/platform/program.h"

int main(int argc, char** argv) {
    const int rounds = argc > 1 ? std::atoi(argv[1]) : 0;
    const bool keep = argc > 2 && std::atoi(argv[2]) != 0;
    if (rounds < 5) {
        std::fputs("usage: zentara_kept_blocks ROUNDS KEEP, with 5 rounds or more\n", stderr);
        return 2;
    }
    std::vector<std::unique_ptr<char[]>> passing(24);
    std::vector<std::unique_ptr<char[]>> kept;
    kept.reserve(static_cast<std::size_t>(rounds) + 1);
    std::srand(7);
    std::printf("%8s %10s %10s\n", "round", "KiB", "kept KiB");
    for (int round = 0; round <= rounds; ++round) {
        for (int i = 0; i < 200; ++i) {
            const int size = std::rand() % 8 != 0 ? 16 + std::rand() % 4000 : 20000 + std::rand() % 400000;
            std::unique_ptr<char[]>& place = passing[static_cast<std::size_t>(std::rand()) % passing.size()];
            place.reset(); // its room is there for the next one
            place.reset(new char[static_cast<std::size_t>(size)]);
            std::memset(place.get(), 1, static_cast<std::size_t>(size));
        }
        if (keep)
            kept.emplace_back(new char[104]);
        if (round % (rounds / 5) == 0)
            std::printf("%8d %10zu %10zu\n", round,
                        Zentara::Utils::Platform::resourceUse().residentBytes / 1024,
                        kept.size() * 104 / 1024);
    }
    return 0;
}
