// SPDX-License-Identifier: MIT
#include "render/scene/GlintList.h"

#include "ig/math/EllipsoidModel.h"
#include "plugins/terrain/ObjectTerrain.h"
#include "render/scene/ShaderConstants.h"
#include "render/scene/shares.h"

#include <algorithm>
#include <cmath>

namespace ig {

namespace {

constexpr float BRIGHT = 0.1f;     ///< ground, by which no path shows
constexpr float TOGETHER = 15;     ///< m: the next lamps within it count as one
constexpr float LAMP_CANDELA = 60; ///< of a lamp at density 1, whatever it lights

bool isOverLand(const FrameView& view, const SceneList& list, const vec3& place) {
    if (!list.terrain) return false;
    const dvec3 wgs = EllipsoidModel().toWGS(view.eye + view.frame * dvec3(place));
    double altitude = 0;
    return list.terrain->getAltitudeByLonLat(wgs.x, wgs.y, &altitude, nullptr) && altitude > 0;
}

/// Where its path lies in the picture.
PictureRect findPath(const FrameView& view, const Glint& glint) {
    const auto altitude = static_cast<float>(std::max(view.geodetic.z, 1.0));
    const auto& c = view.view.columns;
    const vec3 back(c[0].z, c[1].z, c[2].z);
    const vec2 far{glint.place.x, glint.place.y};
    const float range = std::hypot(far.x, far.y);
    PictureRect rect;
    for (float d = range; d > altitude / 4; d /= 2) { // down to nearly below the eye
        const vec3 place(far.x * d / range, far.y * d / range, -altitude);
        const float wide = GLINT_WIDTH * length(place) + 1;
        if (-dot(back, place) > wide + 1) rect.include(PictureRect::of(view, place, wide));
    }
    return rect;
}

/// What is seen of it at the eye, by brightness.
float weight(const Glint& glint) { return strongest(glint.color) / length2(glint.place); }

} // namespace

void GlintList::gather(const FrameView& view, const SceneList& list, float ground) {
    glints.clear();
    if (ground > BRIGHT || !list.ocean || view.orthographic) return;
    vec3 first;
    float sum = 0; // of the last one's lamps
    for (const LampItem& lamp : list.lamps) {
        if (length(lamp.position) > SceneList::MIRRORED) continue;
        const vec3 color = lamp.color * (lamp.power * LAMP_CANDELA * LUX);
        const float share = strongest(color);
        if (sum > 0 && length(lamp.position - first) < TOGETHER) {
            Glint& last = glints.back();
            last.place += (lamp.position - last.place) * (share / (sum + share));
            last.color += color;
            sum += share;
        } else {
            first = lamp.position;
            sum = share;
            glints.push_back({lamp.position, color});
        }
    }
    std::erase_if(glints, [&](const Glint& g) {
        return findPath(view, g).isEmpty() || isOverLand(view, list, g.place);
    });
    std::sort(glints.begin(), glints.end(), [](const Glint& a, const Glint& b) {
        const float one = weight(a), other = weight(b);
        return one != other ? one > other : a.place.x < b.place.x;
    });
    if (glints.size() > MOST_GLINTS) glints.erase(glints.begin() + MOST_GLINTS, glints.end());
}

void GlintList::addPaths(const FrameView& view, PictureParts& parts) const {
    for (const Glint& glint : glints)
        parts.add(findPath(view, glint));
}

} // namespace ig
