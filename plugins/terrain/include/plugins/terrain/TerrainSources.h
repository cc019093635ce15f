// SPDX-License-Identifier: MIT
#pragma once

#include "ig/base/jString.h"

#include <vector>

namespace ig {

class NodeReader;

/// What the ground of a world is made from, as its terrain node tells it. Paths of files, as they
/// stand in the world file; empty where it names none.
struct TerrainSources {
    /// What a raster's heights are measured from. Sea level is altitude 0 of the world.
    enum class Heights {
        mean_sea_level, ///< taken unchanged
        ellipsoid,      ///< WGS84: the geoid's height there is taken off
    };
    /// Which ground lies where. Meaning and names of the classes are the land cover's.
    struct LandCover {
        struct Class {
            int value; ///< in the raster
            jString ground;
        };
        jString raster;
        std::vector<Class> classes; ///< in the order of the file

        bool empty() const { return raster.empty(); }
    };

    std::vector<jString> rasters; ///< of heights, from coarse to fine
    Heights heights = Heights::mean_sea_level;
    jString geoid;                ///< raster of its heights above the ellipsoid, m
    std::vector<jString> imagery; ///< pictures of the ground, from coarse to fine
    LandCover land_cover;
    jString built; ///< folder that holds the ground already made of all these

    bool hasGround() const { return !rasters.empty() || !built.empty(); }
};

/// Those of a terrain node; what the file has wrong is reported.
TerrainSources readTerrainSources(const NodeReader& reader);

} // namespace ig
