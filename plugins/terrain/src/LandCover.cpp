// SPDX-License-Identifier: MIT
#include "plugins/terrain/LandCover.h"

#include <array>
#include <cmath>

namespace ig {

namespace {

/// By class. Trees are those that stand out: closed woods have some hundreds of large ones on a
/// hectare, gardens and hedges a handful.
constexpr std::array TRAITS{
    LandTraits{"none", Ground::Kind::any, true, 0},
    LandTraits{"grass", Ground::Kind::grass, true, 1},
    LandTraits{"crop", Ground::Kind::grass, true, 0.5f},
    LandTraits{"forest", Ground::Kind::grass, true, 250},
    LandTraits{"shrub", Ground::Kind::grass, true, 12},
    LandTraits{"bare", Ground::Kind::sand, false, 0},
    LandTraits{"sand", Ground::Kind::sand, false, 0},
    LandTraits{"rock", Ground::Kind::hard, false, 0},
    LandTraits{"built_up", Ground::Kind::hard, false, 8},
    LandTraits{"wetland", Ground::Kind::grass, true, 2},
    LandTraits{"snow", Ground::Kind::snow, false, 0},
    LandTraits{"water", Ground::Kind::water, false, 0},
};
static_assert(TRAITS.size() == static_cast<std::size_t>(LandClass::water) + 1);

} // namespace

LandCover::LandCover(const Grid& grid, std::shared_ptr<const LandClass[]> classes)
    : m_grid(grid), m_middle_longitude(grid.west + grid.columns * grid.spacing_longitude / 2),
      m_classes(std::move(classes)) {}

LandClass LandCover::getClass(double longitude, double latitude) const {
    const double offset = std::remainder(longitude - m_middle_longitude, 360);
    const double column = std::floor(offset / m_grid.spacing_longitude + m_grid.columns * 0.5);
    const double row = std::floor((m_grid.north - latitude) / m_grid.spacing_latitude);
    if (!(column >= 0 && column < m_grid.columns && row >= 0 && row < m_grid.rows))
        return LandClass::none;
    const LandClass land =
        m_classes[static_cast<std::size_t>(row) * static_cast<std::size_t>(m_grid.columns) +
                  static_cast<std::size_t>(column)];
    return land <= LandClass::water ? land : LandClass::none; // a file may hold anything
}

const LandTraits& LandCover::getTraits(LandClass land) {
    return TRAITS[static_cast<std::size_t>(land)];
}

std::optional<LandClass> LandCover::find(std::string_view name) {
    for (std::size_t i = 1; i < TRAITS.size(); i++)
        if (name == TRAITS[i].name) return static_cast<LandClass>(i);
    return {};
}

} // namespace ig
