// SPDX-License-Identifier: MIT
#pragma once

#include "ig/math/vec.h"

namespace ig {

/// One tile of the sea's surface, resolution × resolution texels, repeated without end. Texel
/// (i, j) lies at x = i · tile / resolution, y = j · tile / resolution and at index
/// j · resolution + i; between texels the surface is the bilinear interpolation of the four around
/// a place, nothing else. The arrays belong to the ocean.
struct OceanTile {
    double tile = 0; ///< edge length, m
    /// Texels along an edge: a power of two, the same for all arrays of the tile and as long as the
    /// ocean lives; tiles differ.
    int resolution = 0;
    /// False while no wave of this tile carries energy; its arrays are zero then.
    bool active = false;
    /// Four floats a texel: displacement east and north, height, and the divergence of the
    /// displacement (negative on crests, below −1 where the water folds over). Null for the
    /// finest tile, whose waves are too low to float on: it only tilts the surface.
    const float* displacement = nullptr;
    /// Two floats a texel: slope of the height towards east and north.
    const float* slope = nullptr;
    /// One float a texel: the peak of −divergence, decaying with time: where crests broke and left
    /// foam. Null for the finest tile. Depends on how often the sea was evolved; for show only.
    const float* foam = nullptr;
    float slope_variance = 0; ///< mean square slope of the tile's waves, both axes together
};

/// The sea as it stands: all that is needed to draw exactly what queries answer. Valid until the
/// ocean evolves to the next frame.
///
/// The surface over the plane (x east, y north, m) is parametric: the water that rests at q is at
///     q + Σ D(q),  altitude mean_level + Σ h(q),
/// summed over the tiles with displacement. Tile 0 is sampled twice, against visible repetition: at
/// q, and at R q + offset, where R turns counter-clockwise by SECOND_TURN. Each of the two counts
/// 1/√2, and the vectors of the second, displacement and slope, are turned back by Rᵀ. Slopes are
/// derivatives with respect to q and add up in the same way, over all tiles.
struct OceanFrame {
    static constexpr int TILES = 4;
    static constexpr double SECOND_TURN = 17;                                  ///< degrees
    static constexpr double SECOND_COSINE = 0.956304755963035481;              ///< cos 17°
    static constexpr double SECOND_SINE = 0.292371704722736728;                ///< sin 17°
    static constexpr double SECOND_OFFSET_X = 5.3e5, SECOND_OFFSET_Y = -3.1e5; ///< m

    OceanTile tiles[TILES];
    unsigned version = 0; ///< changes whenever the arrays do
    double time = 0;      ///< running time that the sea stands at, s

    /// The plane's origin (degrees) and its scale there (metres per degree).
    double anchor_longitude = 0, anchor_latitude = 0;
    double metres_per_longitude = 0, metres_per_latitude = 0;

    double mean_level = 0; ///< added to every height, so that the mean sea level is altitude 0, m
    double highest_crest = 0; ///< no altitude of the surface is above this or below its negative, m
    double significant_height = 0; ///< four standard deviations of the height, m
    double wind = 0;               ///< over the sea, drives ripples, whitecaps and streaks, m/s
    double wave_direction = 0;     ///< where the waves come from, degrees clockwise from north
    /// Mean square slope, for each axis, of the ripples that no tile resolves.
    double ripple_slope_variance = 0;
    double whitecap_cover = 0; ///< share of the sea covered by whitecaps, 0 to 0.6

    /// The place of a longitude and latitude (degrees) in the plane; a longitude is taken the
    /// shorter way round from the anchor.
    dvec2 toPlane(double longitude, double latitude) const {
        double east = longitude - anchor_longitude;
        if (east > 180) east -= 360;
        if (east < -180) east += 360;
        return {east * metres_per_longitude, (latitude - anchor_latitude) * metres_per_latitude};
    }
};

} // namespace ig
