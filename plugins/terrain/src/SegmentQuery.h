// SPDX-License-Identifier: MIT
#pragma once

#include "HeightStack.h"

namespace ig {

/// Where a straight segment of the world meets the ground of a stack of height fields first.
///
/// A straight line of the world is curved in (u, v, altitude), in which the triangles are planar.
/// Vertical segments stay at one (u, v) and are solved there. Any other is cut to the shell between
/// the lowest and the highest sample, then halved until a piece either passes clear of all heights
/// below it or is so short that it counts as straight: 32 m, where it strays by 0.02 mm. Such a
/// piece walks from edge to edge of the triangles that it crosses and looks for a change of sign of
/// its height above them. That height is carried over from one triangle, one field and one piece to
/// the next, so that no crossing slips between two of them.
class SegmentQuery {
public:
    /// From a to b, in the world.
    SegmentQuery(const HeightStack& ground, const dvec3& a, const dvec3& b);
    /// The first crossing as a parameter in [0, 1] along a → b; negative when there is none.
    double solve();

private:
    /// A point of the segment in grid coordinates, the coarsest field's unless they are said to
    /// be another's.
    struct Place {
        double t, u, v, altitude;
    };
    Place getPlace(double t) const;

    double getVerticalDirection(double altitude) const;
    double solveVertical(const Place& start, double direction) const;
    double solvePiece(const Place& from, const Place& to);
    bool passesClear(const Place& from, const Place& to, double piece_length) const;
    /// The part of a straight piece over one field, s from 0 to 1 along it.
    struct Stretch {
        double begin, end;
        const HeightStack::Layer* layer;
    };
    bool divide(const Place& from, const Place& to);
    void assign(const HeightStack::Layer& layer, double begin, double end);
    double walk(const Place& from, const Place& to);
    double walk(const Stretch& stretch, const Place& from, const Place& to, double& height) const;

    const HeightStack& m_ground;
    dvec3 m_a, m_direction;
    double m_length;

    // The height above the ground where the last walked piece ended: for the piece that begins
    // there.
    double m_end = -1, m_end_height = 0;
    std::vector<Stretch> m_stretches; ///< of the piece being walked, in order
};

} // namespace ig
