// SPDX-License-Identifier: MIT
#include "render/scene/ShadowCasters.h"

#include <algorithm>
#include <cmath>
#include <tuple>

namespace ig {

namespace {

// How far something may have moved before a map is drawn again, texels. What is near the focus is
// looked at closely; elsewhere a shadow may lag by half a texel.
constexpr double NEAR_TOLERANCE = 0.2, FAR_TOLERANCE = 0.4;
constexpr int REST = 30; ///< frames after which what doesn't move counts as resting

/// How far any point of a sphere goes from one pose to another.
double getMove(const dmat4& from, const dmat4& to, const CasterItem& item) {
    const dmat3 a = from.getMat3(), b = to.getMat3();
    double turned = 0;
    for (int i = 0; i < 3; i++)
        turned += dot(a.columns[i] - b.columns[i], a.columns[i] - b.columns[i]);
    // About the pose's own origin, which may lie outside the sphere.
    const double reach = item.radius + length(item.center - to.getTranslate());
    return length(from.getTranslate() - to.getTranslate()) + std::sqrt(turned) * reach;
}

} // namespace

namespace {

/// How much larger than the thing its shadow may be in the maps around the eye, m.
float findBlur(const ShadowPlace& place, float distance) {
    constexpr double TEXELS = 2;
    int map = 1;
    while (map < NUM_SHADOW_MAPS - 1 && SHADOW_RADII[map] < static_cast<double>(distance))
        map++;
    return static_cast<float>(TEXELS * place.getTexel(map));
}

} // namespace

/// The shadow goes along the light through the sphere: over level water as long as the light is
/// low, and over a crest or a trough it ends so much sooner or later.
PictureRect findOnSea(const std::vector<CasterItem>& casters, const FrameView& view,
                      const ShadowPlace& place, const vec3& light, float crest) {
    const float level = std::max(std::hypot(light.x, light.y), 1e-6f);
    const vec2 way{light.x / level, light.y / level};
    PictureRect rect;
    for (const CasterItem& item : casters) {
        const vec3 center(view.toFrame(item.center));
        const vec3 foot = center - light * ((center.z - view.getSeaLevel(center)) / light.z);
        const auto radius = static_cast<float>(item.radius);
        const float farthest = length(foot) + (radius + crest) / light.z;
        const float across = radius + findBlur(place, farthest);
        // Along the light longer than across it: a box about that ellipse.
        const float along = across / light.z + crest * level / light.z;
        const vec3 half(std::hypot(along * way.x, across * way.y),
                        std::hypot(along * way.y, across * way.x), crest);
        rect.include(PictureRect::ofBox(view, {foot.x, foot.y, view.getSeaLevel(foot)}, half));
    }
    return rect;
}

bool ShadowCasters::isSame(const Shown& shown, const CasterItem& item) {
    return shown.object == item.mesh && shown.mesh == item.mesh->get() &&
           shown.surface == item.surface;
}

ShadowCasters::Shown ShadowCasters::show(const CasterItem& item, const ShadowPlace& place) {
    return {item.mesh,
            item.mesh->get(),
            item.surface,
            *item.pose,
            false,
            0,
            place.toTexels(0, item.center, item.radius)};
}

void ShadowCasters::rest() {
    m_jobs.clear();
    m_items.clear();
}

void ShadowCasters::forget() { *this = ShadowCasters(); }

void ShadowCasters::plan(const std::vector<CasterItem>& casters, ShadowPlace& place) {
    rest();
    planFirst(casters, place);
    if (place.isNew()) {
        for (int map = 1; map < NUM_SHADOW_MAPS; map++)
            planOther(map, casters, place);
        return;
    }
    for (int i = 0; i < NUM_SHADOW_MAPS - 1; i++) {
        const int map = m_turn;
        m_turn = m_turn % (NUM_SHADOW_MAPS - 1) + 1;
        if (!hasChanged(map, casters, place)) continue;
        planOther(map, casters, place);
        break;
    }
}

// ------------------------------------------------------------------ the first map

void ShadowCasters::planFirst(const std::vector<CasterItem>& casters, ShadowPlace& place) {
    const bool anew = place.isNew() || place.isElsewhere(0);
    match(casters, place, anew);
    place.settle(0);
    if (m_rest_changed) drawResting(place);
    if (m_rest_changed || m_moved) drawMoving(place, m_rest_changed);
}

/// Finds what is shown among what there is now. Both have the scene's order, so that the next one
/// is nearly always the one looked for.
void ShadowCasters::match(const std::vector<CasterItem>& casters, const ShadowPlace& place,
                          bool anew) {
    std::vector<Shown>& shown = m_shown[0];
    const double tolerance = NEAR_TOLERANCE * place.getTexel(0);
    m_rest_changed = anew;
    m_moved = false;
    m_low_x = m_low_y = 1e9f;
    m_high_x = m_high_y = -1e9f;
    m_next.clear();
    std::size_t at = 0;
    const auto leave = [&](const Shown& gone) { // is shown no more, or not there
        (gone.rests ? m_rest_changed : m_moved) = true;
        include(gone);
    };
    for (const CasterItem& item : casters) {
        if (!(item.maps & 1)) continue;
        std::size_t found = at;
        while (found < shown.size() && !isSame(shown[found], item))
            found++;
        Shown next = show(item, place);
        if (found == shown.size()) { // new here
            m_moved = true;
            next.still = anew ? REST : 0;
        } else {
            for (; at < found; at++)
                leave(shown[at]);
            const Shown& before = shown[at++];
            if (getMove(before.pose, *item.pose, item) > tolerance) {
                leave(before);
                m_moved = true;
            } else {
                next.still = std::min(before.still + 1, REST);
                next.rests = before.rests;
                next.pose = before.pose;
                if (!anew) next.texels = before.texels;
                m_rest_changed |= next.still == REST && !next.rests;
            }
        }
        m_next.push_back(next);
    }
    for (; at < shown.size(); at++)
        leave(shown[at]);
    std::swap(shown, m_next);
}

/// Of the part that the moving ones change.
void ShadowCasters::include(const Shown& shown) {
    m_low_x = std::min(m_low_x, shown.texels.x - shown.texels.z);
    m_low_y = std::min(m_low_y, shown.texels.y - shown.texels.z);
    m_high_x = std::max(m_high_x, shown.texels.x + shown.texels.z);
    m_high_y = std::max(m_high_y, shown.texels.y + shown.texels.z);
}

/// What has rested joins; where nothing rests nothing is drawn.
void ShadowCasters::drawResting(const ShadowPlace& place) {
    m_rest_is_empty = true;
    for (Shown& shown : m_shown[0]) {
        shown.rests = shown.still == REST;
        m_rest_is_empty &= !shown.rests;
    }
    if (m_rest_is_empty) return;
    begin(0, true, Job::CLEAR, place.getSize());
    for (const Shown& shown : m_shown[0])
        if (shown.rests) add(shown, 0, place);
    end();
}

void ShadowCasters::drawMoving(const ShadowPlace& place, bool whole) {
    begin(0, false, m_rest_is_empty ? Job::CLEAR : Job::RESTORE, place.getSize());
    for (const Shown& shown : m_shown[0]) {
        if (shown.rests) continue;
        include(shown);
        add(shown, 0, place);
    }
    Job& job = m_jobs.back();
    if (!whole) {
        const auto clamp = [&](float texel) {
            return static_cast<int>(std::clamp(texel, 0.0f, static_cast<float>(place.getSize())));
        };
        job.x = clamp(m_low_x - 1);
        job.y = clamp(m_low_y - 1);
        job.width = std::max(clamp(m_high_x + 2) - job.x, 0);
        job.height = std::max(clamp(m_high_y + 2) - job.y, 0);
    }
    end();
}

// ------------------------------------------------------------------ the others

bool ShadowCasters::hasChanged(int map, const std::vector<CasterItem>& casters,
                               const ShadowPlace& place) const {
    if (place.isElsewhere(map)) return true;
    const double tolerance = FAR_TOLERANCE * place.getTexel(map);
    auto shown = m_shown[map].begin();
    for (const CasterItem& item : casters) {
        if (!(item.maps >> map & 1)) continue;
        if (shown == m_shown[map].end() || !isSame(*shown, item) ||
            getMove(shown->pose, *item.pose, item) > tolerance)
            return true;
        ++shown;
    }
    return shown != m_shown[map].end();
}

void ShadowCasters::planOther(int map, const std::vector<CasterItem>& casters, ShadowPlace& place) {
    place.settle(map);
    m_shown[map].clear();
    begin(map, false, Job::CLEAR, place.getSize());
    for (const CasterItem& item : casters) {
        if (!(item.maps >> map & 1)) continue;
        m_shown[map].push_back(show(item, place));
        add(m_shown[map].back(), map, place);
    }
    end();
}

// ------------------------------------------------------------------ jobs

void ShadowCasters::begin(int map, bool resting, Job::Before before, int size) {
    m_jobs.push_back({map, resting, before, 0, 0, size, size, static_cast<int>(m_items.size()), 0});
}

void ShadowCasters::add(const Shown& shown, int map, const ShadowPlace& place) {
    m_items.push_back({shown.object, shown.surface, place.toMap(map, shown.pose)});
}

/// Brings together what one draw can show.
void ShadowCasters::end() {
    Job& job = m_jobs.back();
    job.count = static_cast<int>(m_items.size()) - job.first;
    std::sort(m_items.begin() + job.first, m_items.end(), [](const Item& a, const Item& b) {
        return std::tuple(a.mesh->get(), a.surface) < std::tuple(b.mesh->get(), b.surface);
    });
}

} // namespace ig
