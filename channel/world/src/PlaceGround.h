// SPDX-License-Identifier: MIT
#pragma once

#include "ig/math/vec.h"
#include "plugins/terrain/ObjectTerrain.h"

#include <optional>
#include <string>
#include <vector>

namespace world_commands {

/// Ground and water around the place that a world is made for. Places near it are metres to the
/// east and north of it.
class PlaceGround {
public:
    /// Half the edge of the pad, m.
    static constexpr double PAD = 16;

    /// Reads the rasters, from coarse to fine. False, with one log line, when one can't be read, or
    /// they have no land to stand a pad on at that place (degrees), with the nearest that has where
    /// there is one.
    bool read(const std::vector<std::string>& rasters, const ig::dvec2& place);

    double getLongitude(double east) const;
    double getLatitude(double north) const;
    /// Highest and lowest ground within a square, half of whose edge is `reach` m; without any, 0.
    ig::dvec2 getRange(double reach) const;
    /// Open water for two ships, the nearest first: 300 m all round and a way to the north, and
    /// deep where the raster knows depths. Fewer where there is none within 30 km.
    std::vector<ig::dvec2> findShips() const;

private:
    std::optional<double> getAltitude(const ig::dvec2& at) const; ///< none without data
    bool isWater(const ig::dvec2& at, double altitude) const;
    bool isOpen(const ig::dvec2& at, double altitude) const;
    bool isLand(const ig::dvec2& at) const;
    void tellNoLand(const std::string& raster) const;

    ig::ObjectTerrain m_terrain;
    ig::dvec2 m_place;  ///< longitude and latitude
    ig::dvec2 m_degree; ///< lengths of a degree there, m
};

} // namespace world_commands
