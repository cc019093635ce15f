// SPDX-License-Identifier: MIT
#pragma once

#include "ig/scene/Material.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

namespace ig {

/// What grows on a piece of ground, or lies there. `none`: nobody says, the ground looks as it does
/// without a land cover.
enum class LandClass : std::uint8_t {
    none,
    grass,
    crop,
    forest,
    shrub,
    bare,
    sand,
    rock,
    built_up,
    wetland,
    snow,
    water
};

/// What a class of land is to those who draw it, plant it or raise its dust.
struct LandTraits {
    const char* name;    ///< in scene files
    Ground::Kind ground; ///< what emitters find there; `any`: whatever the ground's material says
    bool has_grass;      ///< tufts grow there, where it is level and dry
    float trees;         ///< on a hectare, a square of 100 m, where it is level and dry
};

/// Where on the ground which class of land is: a grid of square pieces in longitude and latitude,
/// each of one class all over. Owned by the terrain; immutable, so that any thread may ask.
class LandCover {
public:
    /// Piece (column, row) reaches from longitude `west + column · spacing_longitude` to the next
    /// one's, and from latitude `north − row · spacing_latitude` southwards.
    struct Grid {
        int columns = 0, rows = 0; ///< from west to east and from north to south
        double west = 0, north = 0;
        double spacing_longitude = 0, spacing_latitude = 0; ///< degrees, positive
    };
    /// `classes`: `rows` times `columns`, row by row from the north.
    LandCover(const Grid& grid, std::shared_ptr<const LandClass[]> classes);

    /// The class at a geodetic place (degrees; the longitude modulo 360); `none` beyond the grid.
    LandClass getClass(double longitude, double latitude) const;
    const Grid& getGrid() const { return m_grid; }

    static const LandTraits& getTraits(LandClass land);
    /// The class of that name in scene files; nothing when there is none.
    static std::optional<LandClass> find(std::string_view name);

private:
    Grid m_grid;
    double m_middle_longitude;
    std::shared_ptr<const LandClass[]> m_classes;
};

} // namespace ig
