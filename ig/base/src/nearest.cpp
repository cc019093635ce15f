// SPDX-License-Identifier: MIT
#include "ig/base/nearest.h"

#include <algorithm>
#include <cctype>

namespace ig {

namespace {

// What it takes to make the known name of the wrong one.
constexpr int CHANGE_CASE = 1, INSERT = 2, REMOVE = 4, CHANGE = 4, SWAP = 4;

int changeCost(char a, char b) {
    if (a == b) return 0;
    const auto lower = [](char c) { return std::tolower(static_cast<unsigned char>(c)); };
    return lower(a) == lower(b) ? CHANGE_CASE : CHANGE;
}

/// The edit distance with the costs above.
int distance(std::string_view wrong, std::string_view known) {
    std::vector<std::vector<int>> cost(wrong.size() + 1, std::vector<int>(known.size() + 1, 0));
    for (std::size_t i = 0; i <= wrong.size(); i++)
        for (std::size_t j = 0; j <= known.size(); j++) {
            if (i + j == 0) continue;
            int best = i > 0 ? cost[i - 1][j] + REMOVE : cost[i][j - 1] + INSERT;
            if (j > 0) best = std::min(best, cost[i][j - 1] + INSERT);
            if (i > 0 && j > 0)
                best = std::min(best, cost[i - 1][j - 1] + changeCost(wrong[i - 1], known[j - 1]));
            if (i > 1 && j > 1 && wrong[i - 1] == known[j - 2] && wrong[i - 2] == known[j - 1])
                best = std::min(best, cost[i - 2][j - 2] + SWAP);
            cost[i][j] = best;
        }
    return cost[wrong.size()][known.size()];
}

} // namespace

std::string nearest(std::string_view wrong, const std::vector<std::string>& known) {
    const std::string* best = nullptr;
    int least = 0;
    for (const std::string& name : known) {
        const int cost = distance(wrong, name);
        // Names without a letter in common lie at REMOVE or CHANGE per letter of the wrong one and
        // INSERT per further letter: at that distance nothing is like anything.
        const int all = static_cast<int>(wrong.size() + name.size()) * INSERT;
        if (5 * cost > 3 * all || (best && cost >= least)) continue;
        best = &name;
        least = cost;
    }
    return best ? "; nearest is \"" + *best + '"' : std::string();
}

} // namespace ig
