// SPDX-License-Identifier: MIT
#include "flightsim/mission/Nearest.h"

#include <algorithm>

namespace flightsim {

namespace {

/// What it takes to make `b` of `a`: a letter to insert counts 1, one to delete or change 2, so
/// that an abbreviation lies near to its word.
std::size_t editDistance(const std::string& a, const std::string& b) {
    std::vector<std::size_t> row; // distances of the beginnings of b from that of a so far
    for (std::size_t j = 0; j <= b.size(); j++)
        row.push_back(j);
    for (std::size_t i = 0; i < a.size(); i++) {
        std::vector<std::size_t> next = {2 * (i + 1)};
        for (std::size_t j = 0; j < b.size(); j++)
            next.push_back(
                std::min({row[j] + (a[i] == b[j] ? 0 : 2), row[j + 1] + 2, next.back() + 1}));
        row.swap(next);
    }
    return row.back();
}

} // namespace

std::string nearest(const std::string& wrong, const std::vector<std::string>& known) {
    if (known.empty()) return {};
    const auto best = std::ranges::min_element(
        known, {}, [&](const std::string& name) { return editDistance(wrong, name); });
    return "; nearest is \"" + *best + "\"";
}

} // namespace flightsim
