// SPDX-License-Identifier: MIT
#pragma once

#include "ig/math/EllipsoidModel.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace ig {

/// How a search walks along a stretch.
struct RayScale {
    double length;     ///< metres along the segment for t = 0 to 1
    double horizontal; ///< of these, metres along the horizontal
};

/// Narrows a change of sign of `clearance` between t0 (value c0) and t1 (value c1) down to 0.1 µm:
/// regula falsi with the Illinois rule.
template <class Clearance>
double refineCrossing(const Clearance& clearance, double t0, double c0, double t1, double c1,
                      double length) {
    constexpr double PRECISION = 1e-7;
    constexpr int MAX_STEPS = 60;
    for (int step = 0; step < MAX_STEPS && (t1 - t0) * length > PRECISION; step++) {
        const double t = std::clamp(t0 - c0 * (t1 - t0) / (c1 - c0), t0, t1);
        const double c = clearance(t);
        if (std::abs(c) < PRECISION) return t;
        if ((c > 0) == (c0 > 0)) {
            t0 = t;
            c0 = c;
            c1 /= 2;
        } else {
            t1 = t;
            c1 = c;
            c0 /= 2;
        }
    }
    return t0 - c0 * (t1 - t0) / (c1 - c0);
}

/// The first t of a stretch at which `clearance(t)`, the height of the segment's point above the
/// surface in metres, changes sign; −1 when it doesn't. Steps are as long as a surface with slopes
/// below √3 (water breaks before that) can't reach the segment, but at least a quarter of a metre
/// over the sea (a steep segment is over within one step), and at least a 2048th of the stretch: of
/// a crest narrower than that, a grazing segment may miss the tip.
template <class Clearance>
double findCrossing(const Clearance& clearance, const EllipsoidModel::Stretch& stretch,
                    const RayScale& scale) {
    constexpr double FINEST = 0.25;
    constexpr double STEEPEST = 2; // √(1 + 3): change of clearance per metre of the segment
    constexpr double MAX_STEPS = 2048;
    const double shortest = std::max((stretch.end - stretch.begin) / MAX_STEPS,
                                     scale.horizontal > 0 ? FINEST / scale.horizontal
                                                          : std::numeric_limits<double>::max());
    double t0 = stretch.begin, c0 = clearance(t0);
    if (c0 == 0) return t0;
    while (t0 < stretch.end) {
        const double safe = std::abs(c0) / (STEEPEST * scale.length);
        const double t1 = std::min(stretch.end, t0 + std::max(shortest, safe));
        const double c1 = clearance(t1);
        if (!(c0 > 0) != !(c1 > 0)) return refineCrossing(clearance, t0, c0, t1, c1, scale.length);
        t0 = t1;
        c0 = c1;
    }
    return -1;
}

} // namespace ig
