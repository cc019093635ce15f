// SPDX-License-Identifier: MIT
#include "PlaceGround.h"

#include "ig/base/jLog.h"
#include "ig/math/EllipsoidModel.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numbers>

using namespace ig;

namespace world_commands {

namespace {

constexpr int BEARINGS = 36;              ///< looked at round a ring
constexpr double RING = 1.15;             ///< from one ring to the next
constexpr double FAR = 30'000;            ///< m, the outermost
constexpr double ROOM = 300, WAY = 5'000; ///< m of water around a ship, and ahead of it
constexpr double APART = 700;             ///< m between the ships
constexpr double DEEP = -12;              ///< altitude of a sea's floor that no keel touches

/// Places on rings around the middle, from the inside out, until `visit` returns false.
template <class Visit>
void walkRings(double first, Visit visit) {
    for (double radius = first; radius < FAR; radius *= RING)
        for (int i = 0; i < BEARINGS; i++) {
            const double angle = 2 * std::numbers::pi * i / BEARINGS;
            if (!visit(dvec2{radius * std::sin(angle), radius * std::cos(angle)})) return;
        }
}

} // namespace

bool PlaceGround::read(const std::vector<std::string>& rasters, const dvec2& place) {
    TerrainSources sources;
    sources.rasters.assign(rasters.begin(), rasters.end());
    if (!m_terrain.load(sources)) return false;
    m_place = place;
    m_degree = EllipsoidModel().getDegreeLengths(place.y);
    if (isLand({0, 0})) return true;
    tellNoLand(rasters.front());
    return false;
}

double PlaceGround::getLongitude(double east) const {
    return std::remainder(m_place.x + east / m_degree.x, 360);
}

double PlaceGround::getLatitude(double north) const { return m_place.y + north / m_degree.y; }

std::optional<double> PlaceGround::getAltitude(const dvec2& at) const {
    double altitude = 0;
    if (!m_terrain.getAltitudeByLonLat(getLongitude(at.x), getLatitude(at.y), &altitude, nullptr))
        return {};
    return altitude;
}

/// A pad wants ground above the sea everywhere below it.
bool PlaceGround::isLand(const dvec2& at) const {
    for (const double x : {-PAD, 0.0, PAD})
        for (const double y : {-PAD, 0.0, PAD})
            if (getAltitude({at.x + x, at.y + y}).value_or(0) <= 0) return false;
    return true;
}

void PlaceGround::tellNoLand(const std::string& raster) const {
    std::optional<dvec2> land;
    walkRings(50, [&](const dvec2& at) {
        if (isLand(at)) land = at;
        return !land;
    });
    std::string remedy = "there is none within 30 km: are longitude and latitude exchanged, or is "
                         "the raster of another place?";
    if (land) {
        char text[120];
        std::snprintf(text, sizeof text, "the nearest is at --lon %.6f --lat %.6f",
                      getLongitude(land->x), getLatitude(land->y));
        remedy = text;
    }
    const std::optional<double> altitude = getAltitude({0, 0});
    jLog::error(
        "visual_channel: \"%s\" has no land for a pad at longitude %g, latitude %g (%s): %s",
        raster.c_str(), m_place.x, m_place.y,
        altitude ? "water, or at its edge" : "outside it, or without data", remedy.c_str());
}

dvec2 PlaceGround::getRange(double reach) const {
    constexpr int STEPS = 32;
    std::optional<dvec2> range;
    for (int i = 0; i <= STEPS; i++)
        for (int j = 0; j <= STEPS; j++) {
            const double altitude =
                getAltitude({reach * (2.0 * i / STEPS - 1), reach * (2.0 * j / STEPS - 1)})
                    .value_or(0);
            if (!range) range = dvec2{altitude, altitude};
            range->x = std::max(range->x, altitude);
            range->y = std::min(range->y, altitude);
        }
    return *range;
}

/// Where there is no ground there is only sea.
bool PlaceGround::isWater(const dvec2& at, double altitude) const {
    return getAltitude(at).value_or(-1e9) <= altitude;
}

bool PlaceGround::isOpen(const dvec2& at, double altitude) const {
    if (!isWater(at, altitude)) return false;
    for (int i = 0; i < BEARINGS; i += 3) {
        const double angle = 2 * std::numbers::pi * i / BEARINGS;
        for (const double radius : {ROOM / 3, ROOM * 2 / 3, ROOM})
            if (!isWater({at.x + radius * std::sin(angle), at.y + radius * std::cos(angle)},
                         altitude))
                return false;
    }
    for (double north = ROOM; north < WAY; north += ROOM / 3)
        if (!isWater({at.x, at.y + north}, 0)) return false;
    return true;
}

std::vector<dvec2> PlaceGround::findShips() const {
    std::vector<dvec2> ships;
    for (const double altitude : {DEEP, 0.0}) {
        walkRings(600, [&](const dvec2& at) {
            const bool apart = std::ranges::all_of(ships, [&](const dvec2& other) {
                return std::hypot(at.x - other.x, at.y - other.y) > APART;
            });
            if (apart && isOpen(at, altitude)) ships.push_back(at);
            return ships.size() < 2;
        });
        if (ships.size() == 2) break;
    }
    return ships;
}

} // namespace world_commands
