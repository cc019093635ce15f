// SPDX-License-Identifier: MIT
#include "render/scene/HillShadows.h"

#include "ig/math/EllipsoidModel.h"
#include "ig/math/quat.h"
#include "plugins/terrain/TerrainGrid.h"

#include <algorithm>
#include <cmath>

namespace ig {

namespace {

constexpr double MARGIN = 1.25;     // of the terrain's own extent
constexpr double STEEPEST = 0.8;    // sine of a light's height above which hills cast nothing
constexpr float LEAST_SOFTNESS = 3; // m
constexpr float LEAST_SHADOW = 2;   // m above the ground; less is the ground's own roughness

/// Altitude of the ground, bilinear between every `step`th sample; `NONE` beyond the grid, in
/// holes, and below the sea.
float heightAt(const TerrainGrid& grid, double column, double row, int step) {
    if (!(column >= 0 && row >= 0 && column <= grid.columns - 1 && row <= grid.rows - 1))
        return HillShadows::NONE;
    const int c = std::min(static_cast<int>(column), grid.columns - 2) / step * step;
    const int r = std::min(static_cast<int>(row), grid.rows - 2) / step * step;
    const int east = std::min(c + step, grid.columns - 1);
    const int south = std::min(r + step, grid.rows - 1);
    const auto u = static_cast<float>((column - c) / (east - c));
    const auto v = static_cast<float>((row - r) / (south - r));
    const float at_north = std::lerp(grid.getHeight(c, r, step), grid.getHeight(east, r, step), u);
    const float at_south =
        std::lerp(grid.getHeight(c, south, step), grid.getHeight(east, south, step), u);
    const float height = std::lerp(at_north, at_south, v);
    return height > 0 ? height : HillShadows::NONE; // holes are not a number
}

} // namespace

/// Of the coarsest grid, whose samples are the finer ones' own where there are such.
bool HillShadows::update(TerrainGrids grids, const dvec3& light) {
    const TerrainGrid made_of = grids.empty() ? TerrainGrid() : grids.front();
    const bool is_other = made_of != m_made_of;
    if (!is_other && length(light - m_light) <= 0) return false;
    m_made_of = made_of;
    m_light = light;
    if (is_other && !made_of.empty()) layOut(made_of);
    const bool were_any = m_any;
    m_any = false;
    if (!made_of.empty()) sweep(light);
    return m_any || were_any;
}

/// Geodetic places are exact at nodes 16 texels apart and bilinear in between, which is off by less
/// than a metre.
void HillShadows::layOut(const TerrainGrid& grid) {
    constexpr int CELL = 16, NODES = SIZE / CELL + 1;
    const EllipsoidModel earth;
    const dvec3 middle(grid.west + (grid.columns - 1) * grid.spacing_longitude / 2,
                       grid.north - (grid.rows - 1) * grid.spacing_latitude / 2, 0);
    m_frame = earth.getWGSTransform(earth.toWorld(middle));
    const dvec2 degree = earth.getDegreeLengths(middle.y);
    m_half = MARGIN / 2 *
             std::max((grid.columns - 1) * grid.spacing_longitude * degree.x,
                      (grid.rows - 1) * grid.spacing_latitude * degree.y);
    // Samples closer than texels tell nothing, and of a large ground lie far apart.
    const double sample =
        std::max(grid.spacing_longitude * degree.x, grid.spacing_latitude * degree.y);
    int step = 1;
    while (2 * step * sample <= 2 * m_half / SIZE)
        step *= 2;
    struct Node {
        double column, row, drop; ///< of the earth below the plane, m
    };
    std::vector<Node> nodes;
    for (int j = 0; j < NODES; j++)
        for (int i = 0; i < NODES; i++) {
            const double x = (2.0 * i / (NODES - 1) - 1) * m_half;
            const double y = (2.0 * j / (NODES - 1) - 1) * m_half;
            const dvec3 place = earth.toWGS(m_frame * dvec3(x, y, 0));
            nodes.push_back({grid.getColumn(place.x), grid.getRow(place.y), place.z});
        }
    m_ground.assign(static_cast<std::size_t>(SIZE) * SIZE, NONE);
    m_shadow = m_ground;
    for (int j = 0; j < SIZE; j++)
        for (int i = 0; i < SIZE; i++) {
            const double u = (i + 0.5) / CELL, v = (j + 0.5) / CELL;
            const Node* n =
                &nodes[static_cast<std::size_t>(static_cast<int>(v) * NODES + static_cast<int>(u))];
            const double a = u - std::floor(u), b = v - std::floor(v);
            const auto mean = [&](double Node::*value) {
                return std::lerp(std::lerp(n[0].*value, n[1].*value, a),
                                 std::lerp(n[NODES].*value, n[NODES + 1].*value, a), b);
            };
            const float height = heightAt(grid, mean(&Node::column), mean(&Node::row), step);
            if (height > 0)
                m_ground[static_cast<std::size_t>(j * SIZE + i)] =
                    height - static_cast<float>(mean(&Node::drop));
        }
}

/// Line by line, across the axis that the light goes along most; the outermost texels stay without
/// shadow, which is what lies beyond the map.
void HillShadows::sweep(const dvec3& light) {
    std::fill(m_shadow.begin(), m_shadow.end(), NONE);
    m_sea_low = {1e9f, 1e9f, 0};
    m_sea_high = -m_sea_low;
    const dvec3 to_light = transpose(m_frame.getMat3()) * light;
    if (to_light.z > STEEPEST || to_light.z <= 0) return;
    const bool by_columns = std::abs(to_light.x) > std::abs(to_light.y);
    const double along = by_columns ? to_light.x : to_light.y;
    const double across = (by_columns ? to_light.y : to_light.x) / std::abs(along);
    const double texel = 2 * m_half / SIZE;
    const auto fall = static_cast<float>(to_light.z / std::abs(along) * texel);
    m_fall = fall;
    m_softness = LEAST_SOFTNESS + fall;
    const int step = by_columns ? 1 : SIZE, next = by_columns ? SIZE : 1; // between lines, within
    const int towards = along > 0 ? step : -step;
    const int shift = static_cast<int>(std::floor(across));
    const auto share = static_cast<float>(across - shift);
    for (int k = 1; k < SIZE - 1; k++) {
        const int line = (along > 0 ? SIZE - 1 - k : k) * step;
        const auto at = [&](int i) { // the higher of ground and shadow, a line towards the light
            const auto place =
                static_cast<std::size_t>(line + towards + std::clamp(i, 0, SIZE - 1) * next);
            return std::max(m_ground[place], m_shadow[place]);
        };
        for (int i = 1; i < SIZE - 1; i++) {
            const auto place = static_cast<std::size_t>(line + i * next);
            const float shadow = std::lerp(at(i + shift), at(i + shift + 1), share) - fall;
            m_shadow[place] = shadow;
            note(place, shadow);
        }
    }
}

/// Of what is above the ground or the sea.
void HillShadows::note(std::size_t place, float shadow) {
    if (shadow < NONE / 10) return;
    const auto texel = static_cast<float>(2 * m_half / SIZE);
    const vec2 p{(static_cast<float>(place % SIZE) + 0.5f) * texel - static_cast<float>(m_half),
                 (static_cast<float>(place / SIZE) + 0.5f) * texel - static_cast<float>(m_half)};
    const float ground = m_ground[place];
    const float sea =
        -(p.x * p.x + p.y * p.y) / static_cast<float>(2 * EllipsoidModel::MEAN_RADIUS);
    if (shadow < std::max(ground, sea) + LEAST_SHADOW) return;
    m_any = true;
    if (ground > NONE) return;
    m_sea_low = {std::min(m_sea_low.x, p.x), std::min(m_sea_low.y, p.y), 0};
    m_sea_high = {std::max(m_sea_high.x, p.x), std::max(m_sea_high.y, p.y), 0};
}

/// Two texels more, and what a shadow is longer in the troughs.
PictureRect HillShadows::findOnSea(const FrameView& view, float crest) const {
    if (!m_any || m_sea_low.x > m_sea_high.x) return {};
    const vec3 middle = (m_sea_low + m_sea_high) * 0.5f;
    const auto texel = static_cast<float>(2 * m_half / SIZE);
    const float radius = length(m_sea_high - m_sea_low) / 2 + texel * (2 + crest / m_fall);
    const vec3 at(view.toFrame(m_frame * dvec3(middle)));
    const vec3 far(std::hypot(at.x, at.y) + radius, 0, 0);
    const float level = view.getSeaLevel(at);
    return PictureRect::ofBox(view, {at.x, at.y, level},
                              {radius, radius, crest + level - view.getSeaLevel(far)});
}

void HillShadows::fill(const FrameView& view, FrameBlock& block) {
    const dmat4 to_map = inverse(m_frame);
    const dmat3 rows = to_map.getMat3() * view.frame;
    const dvec3 eye = to_map * view.eye;
    const double scale = 0.5 / m_half;
    const auto shrink = [scale](const dvec3& v) { return dvec3(v.x * scale, v.y * scale, v.z); };
    m_to_map = mat4(dmat4({shrink(rows.getX()), shrink(rows.getY()), shrink(rows.getZ())},
                          shrink(eye) + dvec3(0.5, 0.5, 0)));
    block.hills = m_to_map;
    block.hill_shade = {m_any ? 1 / m_softness : 0, 0, 0, 0};
}

float HillShadows::getAbove(const vec3& place) const {
    const vec3 q = m_to_map * place;
    if (!m_any || !(std::min(q.x, q.y) >= 0 && std::max(q.x, q.y) < 1)) return NONE;
    const auto texel = [](float share) { return static_cast<std::size_t>(share * SIZE); };
    return m_shadow[texel(q.y) * SIZE + texel(q.x)] - q.z;
}

} // namespace ig
