// SPDX-License-Identifier: MIT
#include "ig/scene/Ground.h"

#include <utility>

namespace ig {

Ground::Kind Ground::find(std::string_view name) {
    constexpr std::pair<std::string_view, Kind> NAMES[] = {
        {"land", Kind::land}, {"water", Kind::water}, {"grass", Kind::grass},
        {"sand", Kind::sand}, {"snow", Kind::snow},   {"hard", Kind::hard}};
    for (const auto& [known, kind] : NAMES)
        if (name == known) return kind;
    return Kind::any;
}

} // namespace ig
