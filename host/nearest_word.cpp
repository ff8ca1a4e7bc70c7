#include <zentara/host/nearest_word.h>

#include <algorithm>
#include <numeric>
#include <utility>

namespace Zentara::Host {
namespace {

std::size_t distance(const std::string& left, const std::string& right) {
    std::vector<std::size_t> row(right.size() + 1);
    std::iota(row.begin(), row.end(), 0U);
    for (std::size_t i = 1; i <= left.size(); ++i) {
        std::size_t diagonal = std::exchange(row[0], i);
        for (std::size_t j = 1; j <= right.size(); ++j) {
            const std::size_t changed = diagonal + (left[i - 1] == right[j - 1] ? 0 : 1);
            diagonal = std::exchange(row[j], std::min({row[j] + 1, row[j - 1] + 1, changed}));
        }
    }
    return row.back();
}

} // namespace

std::string nearestWord(const std::string& word, const std::vector<std::string>& known) {
    constexpr std::size_t longest = 64; // the work grows with the square
    std::string nearest;
    std::size_t best = word.size() / 3 + 2;
    for (const std::string& candidate : known) {
        const std::size_t changes = word.size() > longest ? best : distance(word, candidate);
        if (changes < best) {
            best = changes;
            nearest = candidate;
        }
    }
    return nearest;
}

} // namespace Zentara::Host
