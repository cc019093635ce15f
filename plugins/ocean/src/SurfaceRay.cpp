// SPDX-License-Identifier: MIT
#include "SurfaceRay.h"

#include "ig/math/EllipsoidModel.h"

namespace ig {

int stretchesNearSea(const dvec3& a, const dvec3& b, double depth, Stretch out[2]) {
    const double margin = depth * 1.02 + 0.1;
    Stretch outer, inner;
    const EllipsoidModel earth;
    if (!earth.cut(a, b, margin, outer)) return 0;
    Stretch parts[2] = {outer, {0, -1}};
    if (earth.cut(a, b, -margin, inner)) {
        parts[0] = {outer.begin, inner.begin};
        parts[1] = {inner.end, outer.end};
    }
    int count = 0;
    for (Stretch part : parts) {
        part = {std::max(part.begin, 0.0), std::min(part.end, 1.0)};
        if (part.begin <= part.end) out[count++] = part;
    }
    return count;
}

} // namespace ig
