// SPDX-License-Identifier: MIT
#include "render/scene/RadarHorizon.h"

#include "ig/math/EllipsoidModel.h"
#include "ig/math/quat.h"
#include "plugins/terrain/TerrainGrid.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace ig {

namespace {

constexpr double STILL = 100, STILL_UP = 15; // m that the radar may go before all is looked at anew
constexpr double CURVATURE = 0.5 / (4.0 / 3 * EllipsoidModel::MEAN_RADIUS);
constexpr double STEP = double{RadarHorizon::REACH} / RadarHorizon::RANGES;

double heightAt(TerrainGrids grids, double longitude, double latitude) {
    const TerrainGrid* grid = findGrid(grids, longitude, latitude);
    if (!grid) return 0;
    const float height = grid->getHeight(static_cast<int>(grid->getColumn(longitude) + 0.5),
                                         static_cast<int>(grid->getRow(latitude) + 0.5));
    return height > 0 ? static_cast<double>(height) : 0; // holes are not a number
}

} // namespace

bool RadarHorizon::update(TerrainGrids grids, const dvec3& site) {
    const dvec2 degree = EllipsoidModel().getDegreeLengths(site.y);
    const dvec3 moved = site - m_site;
    if (!m_lowest.empty() && std::ranges::equal(grids, m_made_of) && std::abs(moved.z) < STILL_UP &&
        std::hypot(moved.x * degree.x, moved.y * degree.y) < STILL)
        return false;
    m_made_of.assign(grids.begin(), grids.end());
    m_site = site;
    m_lowest.resize(static_cast<std::size_t>(BEARINGS) * RANGES);
    for (int bearing = 0; bearing < BEARINGS; bearing++)
        look(grids, bearing);
    return true;
}

/// Outwards along one bearing: what has risen highest so far hides what is below the line over it.
/// Places as in `RadarLand`: linear, with second-order terms for the meridians' convergence.
void RadarHorizon::look(TerrainGrids grids, int bearing) {
    const EllipsoidModel earth;
    const auto [meridian, prime] = earth.getRadii(m_site.y);
    const double latitude = m_site.y * DEG_TO_RAD<double>;
    const double tangent = std::tan(latitude), cosine = std::max(std::cos(latitude), 1e-3);
    const double angle = 2 * std::numbers::pi * (bearing + 0.5) / BEARINGS;
    const double sine = std::sin(angle), cosine_of = std::cos(angle);
    double steepest = -1e9;
    for (int i = 0; i < RANGES; i++) {
        const double range = (i + 0.5) * STEP, drop = range * range * CURVATURE;
        m_lowest[static_cast<std::size_t>(i * BEARINGS + bearing)] =
            static_cast<float>(std::max(m_site.z + steepest * range + drop, double{NONE}));
        const double east = range * sine, north = range * cosine_of;
        const double longitude =
            m_site.x + east / (prime * cosine) * (1 + north * tangent / prime) * RAD_TO_DEG<double>;
        const double place = m_site.y + (north - east * east * tangent / (2 * prime)) / meridian *
                                            RAD_TO_DEG<double>;
        const double height = heightAt(grids, longitude, place);
        steepest = std::max(steepest, (height - drop - m_site.z) / range);
    }
}

float RadarHorizon::getLowest(vec2 place) const {
    if (m_lowest.empty()) return NONE;
    const double share = std::atan2(place.x, place.y) / (2 * std::numbers::pi);
    const int bearing = static_cast<int>((share - std::floor(share)) * BEARINGS) % BEARINGS;
    const int range = std::min(
        static_cast<int>(std::hypot(place.x, place.y) / static_cast<float>(STEP)), RANGES - 1);
    return m_lowest[static_cast<std::size_t>(range * BEARINGS + bearing)];
}

} // namespace ig
