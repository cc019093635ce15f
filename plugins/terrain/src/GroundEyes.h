// SPDX-License-Identifier: MIT
#pragma once

#include "HeightFile.h"
#include "HeightStack.h"

#include <array>

namespace ig {

/// Where a built world is looked at from, and what of it is to be in memory for that. A picture may
/// have several views, each with its eye: they are told apart by their places, for an eye goes but
/// a little from frame to frame, and one that has jumped is another.
class GroundEyes {
public:
    /// An eye is there, degrees. The one that has been told longest ago makes room.
    void lookFrom(double longitude, double latitude);
    /// Four a second. An eye that hasn't been told for two seconds is forgotten.
    void endPeriod();

    /// Has read what is around the eyes and where their flight leads, and waits until it is.
    void fetch(const HeightStack& ground) const;
    /// Gives back what is far from all of them, of grids that lie in files.
    void release(const HeightStack& ground) const;

private:
    static constexpr int FORGOTTEN = 8; ///< periods

    struct Place {
        double longitude = 0, latitude = 0; ///< degrees
    };
    struct Eye {
        Place place, before; ///< now, and when the last period ended
        int age = FORGOTTEN; ///< periods since it was told
    };
    /// Samples of a grid around a place, as far as it reaches.
    static HeightFile::Window around(const TerrainGrid& grid, const Place& place, int reach);

    std::array<Eye, 4> m_eyes;
};

} // namespace ig
