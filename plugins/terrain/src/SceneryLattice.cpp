// SPDX-License-Identifier: MIT
#include "plugins/terrain/Scenery.h"

#include "ig/math/EllipsoidModel.h"

#include <algorithm>
#include <cmath>

namespace ig {

namespace {
constexpr double ROW_HEIGHT = SceneryLattice::EDGE / EllipsoidModel::DEGREE;
}

double SceneryLattice::getRowHeight() { return ROW_HEIGHT; }

double SceneryLattice::getRowLength(std::int32_t row) {
    const double latitude = std::clamp((row + 0.5) * ROW_HEIGHT, -90.0, 90.0);
    return 360 * EllipsoidModel::DEGREE * std::max(std::cos(latitude * DEG_TO_RAD<double>), 1e-6);
}

std::int32_t SceneryLattice::getNumColumns(std::int32_t row) {
    return std::max(static_cast<std::int32_t>(getRowLength(row) / EDGE), 1);
}

double SceneryLattice::getColumn(std::int32_t row, double longitude) {
    const double round = (longitude + 180) / 360;
    return (round - std::floor(round)) * getNumColumns(row);
}

SceneryCellId SceneryLattice::getCell(double longitude, double latitude) {
    const auto row = static_cast<std::int32_t>(std::floor(latitude / ROW_HEIGHT));
    return {row, static_cast<std::int32_t>(getColumn(row, longitude)) % getNumColumns(row)};
}

bool SceneryLattice::isAround(SceneryCellId cell, double longitude, double latitude, double reach) {
    const double rows = reach / EDGE * ROW_HEIGHT;
    if (cell.row < getCell(0, latitude - rows).row || cell.row > getCell(0, latitude + rows).row)
        return false;
    const std::int32_t count = getNumColumns(cell.row);
    const double width = reach * count / getRowLength(cell.row);
    const double middle = cell.column + 0.5 - getColumn(cell.row, longitude);
    return std::abs(std::remainder(middle, count)) <= width + 0.5;
}

dvec2 SceneryLattice::getPlace(SceneryCellId cell, double u, double v) {
    return {(cell.column + u) / getNumColumns(cell.row) * 360 - 180, (cell.row + v) * ROW_HEIGHT};
}

float SceneryKind::getReach() const {
    const vec3 low = mesh->getLowest(), high = mesh->getHighest();
    const float across = std::hypot(std::max(-low.x, high.x), std::max(-low.y, high.y));
    return height.y > 0 ? across * height.y / getModelHeight() : across;
}

mat4 SceneryCell::getPose(const SceneryThing& thing) {
    const float c = std::cos(thing.heading_rad) * thing.scale;
    const float s = std::sin(thing.heading_rad) * thing.scale;
    mat4 pose;
    pose.columns[0] = {c, -s, 0, 0};
    pose.columns[1] = {s, c, 0, 0};
    pose.columns[2] = {0, 0, thing.scale, 0};
    pose.columns[3] = {thing.place, 1};
    return pose;
}

} // namespace ig
