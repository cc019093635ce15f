// SPDX-License-Identifier: MIT
#include "SegmentQuery.h"

#include "ig/math/EllipsoidModel.h"
#include "ig/math/quat.h"

#include <algorithm>

namespace ig {

namespace {

const EllipsoidModel EARTH;
constexpr double NONE = -1;
constexpr double NO_DATA = std::numeric_limits<double>::quiet_NaN();

/// By how much a segment may lean sideways in all and still count as vertical, m. The ground rises
/// by no more than that on a slope of 45°.
constexpr double VERTICAL_LEAN = 1e-5;
/// Rounding of earth-centred positions, m: what a segment may fall short of the ground.
constexpr double ROUNDING = 1e-8;
/// Pieces up to this length count as straight in (u, v, altitude), m.
constexpr double STRAIGHT = 32;
/// Above this length a piece is halved unseen, m: how far it strays is known only for short ones.
constexpr double LONGEST_PIECE = 20000;
/// Below the smallest radius of curvature of the ellipsoid and of all land below it, m.
constexpr double SMALLEST_RADIUS = 6.3e6;

/// The places where a coordinate that runs linearly from c0 to c1 takes whole values, in order.
class WholeValues {
public:
    WholeValues(double c0, double c1, double begin) : m_c0(c0), m_slope(c1 - c0) {
        if (std::abs(m_slope) < 1e-12) return; // nowhere, or all along
        const double c = c0 + m_slope * begin;
        m_value = m_slope > 0 ? std::floor(c) : std::ceil(c);
        m_next = begin;
        pass(begin);
    }
    /// Parameter of the next one.
    double next() const { return m_next; }
    /// Leaves those up to `s` behind.
    void pass(double s) {
        while (m_next <= s) {
            m_value += m_slope > 0 ? 1 : -1;
            m_next = (m_value - m_c0) / m_slope;
        }
    }

private:
    double m_c0, m_slope;
    double m_value = 0;
    double m_next = std::numeric_limits<double>::infinity();
};

/// Cuts [s0, s1] to where a coordinate that runs from c0 to c1 lies in [low, high]; false when that
/// is nowhere.
bool clip(double c0, double c1, double low, double high, double& s0, double& s1) {
    const double slope = c1 - c0;
    if (slope == 0) return c0 >= low && c0 <= high;
    const double at_low = (low - c0) / slope, at_high = (high - c0) / slope;
    s0 = std::max(s0, std::min(at_low, at_high));
    s1 = std::min(s1, std::max(at_low, at_high));
    return s0 <= s1;
}

double between(double a, double b, double s) { return a + (b - a) * s; }

} // namespace

SegmentQuery::SegmentQuery(const HeightStack& ground, const dvec3& a, const dvec3& b)
    : m_ground(ground), m_a(a), m_direction(b - a), m_length(length(m_direction)) {}

double SegmentQuery::solve() {
    if (!isFinite(m_a) || !std::isfinite(m_length) || m_length == 0) return NONE;
    const Place start = getPlace(0);
    const double direction = getVerticalDirection(start.altitude);
    if (direction != 0) return solveVertical(start, direction);
    const HeightField::Range range = m_ground.getRange();
    // The surface at constant altitude is not quite the ellipsoid with longer axes.
    const auto margin = [](double altitude) { return 1 + 1e-4 * std::abs(altitude); };
    EllipsoidModel::Stretch stretches[2];
    const int count = EARTH.cutShell(m_a, m_a + m_direction, range.lowest - margin(range.lowest),
                                     range.highest + margin(range.highest), stretches);
    double t = NONE;
    for (int i = 0; i < count && t < 0; i++)
        t = solvePiece(getPlace(stretches[i].begin), getPlace(stretches[i].end));
    return t;
}

/// 1 for straight up, −1 for straight down, 0 for any other direction, by the altitude of the
/// segment's start.
double SegmentQuery::getVerticalDirection(double altitude) const {
    if (m_length > SMALLEST_RADIUS / 2) return 0; // beyond the earth's middle lies another place
    // Where a vertical line meets the ellipsoid, the normal there is its direction. This is cheaper
    // than the normal below the start and as exact.
    const dvec3 along = m_direction / m_length;
    const double direction = dot(along, m_a) > 0 ? 1 : -1;
    const dvec3 foot = m_a - along * (direction * altitude);
    constexpr double FLATNESS = 1 - EllipsoidModel::FLATTENING;
    const dvec3 normal(foot.x, foot.y, foot.z / (FLATNESS * FLATNESS));
    const double lean2 = length2(cross(m_direction, normal));
    return lean2 <= VERTICAL_LEAN * VERTICAL_LEAN * length2(normal) ? direction : 0;
}

double SegmentQuery::solveVertical(const Place& start, double direction) const {
    const HeightField::Facet facet = m_ground.getFacet(start.u, start.v);
    if (!facet) return NONE;
    const double t = (facet.altitude - start.altitude) * direction / m_length;
    const double slack = ROUNDING / m_length;
    return t >= -slack && t <= 1 + slack ? std::clamp(t, 0.0, 1.0) : NONE;
}

SegmentQuery::Place SegmentQuery::getPlace(double t) const {
    const dvec3 g = EARTH.toWGS(m_a + m_direction * t);
    const TerrainGrid& grid = m_ground.getCoarsest().getGrid();
    return {t, grid.getColumn(g.x), grid.getRow(g.y), g.z};
}

double SegmentQuery::solvePiece(const Place& from, const Place& to) {
    const double piece_length = (to.t - from.t) * m_length;
    const double half_earth = 180 / m_ground.getCoarsest().getGrid().spacing_longitude;
    const bool wraps = std::abs(to.u - from.u) > half_earth; // passes behind the earth
    if (piece_length <= STRAIGHT) return wraps ? NONE : walk(from, to);
    if (piece_length <= LONGEST_PIECE && !wraps && passesClear(from, to, piece_length)) return NONE;
    const Place middle = getPlace((from.t + to.t) / 2);
    if (!(middle.t > from.t && middle.t < to.t)) return NONE; // a segment beyond all measure
    const double t = solvePiece(from, middle);
    return t >= 0 ? t : solvePiece(middle, to);
}

bool SegmentQuery::passesClear(const Place& from, const Place& to, double piece_length) const {
    // The altitude along a straight line sags below its chord by at most L²/8R and never rises
    // above it; sideways it strays by that times the tangent of the latitude (the bend of parallels
    // and the convergence of meridians) and by as much again through the change of altitude.
    const double sag = piece_length * piece_length / (8 * SMALLEST_RADIUS);
    const double tangent = m_ground.getCoarsest().getSteepestTangent();
    const double stray = 2 * sag * (1 + tangent);
    const TerrainGrid& grid = m_ground.getCoarsest().getGrid();
    const double stray_v = stray / (SMALLEST_RADIUS * grid.spacing_latitude * DEG_TO_RAD<double>);
    const double stray_u = stray * std::sqrt(1 + tangent * tangent) /
                           (SMALLEST_RADIUS * grid.spacing_longitude * DEG_TO_RAD<double>);
    const HeightField::Range ground =
        m_ground.getRange(std::min(from.u, to.u) - stray_u, std::max(from.u, to.u) + stray_u,
                          std::min(from.v, to.v) - stray_v, std::max(from.v, to.v) + stray_v);
    return std::min(from.altitude, to.altitude) - sag > ground.highest ||
           std::max(from.altitude, to.altitude) + sag < ground.lowest;
}

/// Which field is the ground along the piece; false where the coarsest doesn't reach.
bool SegmentQuery::divide(const Place& from, const Place& to) {
    const auto cut = [&](const HeightStack::Layer& layer, double tolerance_u, double tolerance_v,
                         double& begin, double& end) {
        const TerrainGrid& grid = layer.field->getGrid();
        return clip(layer.toU(from.u), layer.toU(to.u), -tolerance_u,
                    grid.columns - 1 + tolerance_u, begin, end) &&
               clip(layer.toV(from.v), layer.toV(to.v), -tolerance_v, grid.rows - 1 + tolerance_v,
                    begin, end);
    };
    const std::vector<HeightStack::Layer>& layers = m_ground.getLayers();
    const HeightField& coarsest = *layers.front().field;
    m_stretches.assign(1, {0, 1, &layers.front()});
    Stretch& all = m_stretches.front();
    if (!cut(layers.front(), coarsest.getToleranceU(), coarsest.getToleranceV(), all.begin,
             all.end))
        return false;
    for (std::size_t i = 1; i < layers.size(); i++) {
        double begin = m_stretches.front().begin, end = m_stretches.back().end;
        if (cut(layers[i], 0, 0, begin, end) && begin < end) assign(layers[i], begin, end);
    }
    return true;
}

/// Gives a field what was its parent's.
void SegmentQuery::assign(const HeightStack::Layer& layer, double begin, double end) {
    std::vector<Stretch> divided;
    for (const Stretch& old : m_stretches) {
        if (old.begin < begin) divided.push_back({old.begin, std::min(old.end, begin), old.layer});
        const double from = std::max(old.begin, begin), to = std::min(old.end, end);
        if (from < to) divided.push_back({from, to, &layer});
        if (old.end > end) divided.push_back({std::max(old.begin, end), old.end, old.layer});
    }
    m_stretches = std::move(divided);
}

double SegmentQuery::walk(const Place& from, const Place& to) {
    if (!divide(from, to)) return NONE;
    const bool goes_on = m_stretches.front().begin == 0 && from.t == m_end;
    double height = goes_on ? m_end_height : NO_DATA;
    for (const Stretch& stretch : m_stretches) {
        const HeightStack::Layer& layer = *stretch.layer;
        const Place own_from{from.t, layer.toU(from.u), layer.toV(from.v), from.altitude};
        const Place own_to{to.t, layer.toU(to.u), layer.toV(to.v), to.altitude};
        const double t = walk(stretch, own_from, own_to, height);
        if (t >= 0) return t;
    }
    m_end = m_stretches.back().end == 1 ? to.t : NONE;
    m_end_height = height;
    return NONE;
}

/// Places are in the field's own coordinates. `height`: above the ground where the stretch begins,
/// not a number when it isn't known; then where it ends.
double SegmentQuery::walk(const Stretch& stretch, const Place& from, const Place& to,
                          double& height) const {
    double s = stretch.begin;
    // The edges of the triangles are the lines of whole u, whole v and whole u + v.
    WholeValues columns(from.u, to.u, s), rows(from.v, to.v, s);
    WholeValues diagonals(from.u + from.v, to.u + to.v, s);
    while (true) {
        const double next = std::min({stretch.end, columns.next(), rows.next(), diagonals.next()});
        const double middle = (s + next) / 2;
        const double u = between(from.u, to.u, middle), v = between(from.v, to.v, middle);
        const HeightField::Facet facet = stretch.layer->field->getFacet(u, v);
        const auto heightAt = [&](double at) {
            return between(from.altitude, to.altitude, at) - facet.altitude -
                   facet.slope_u * (between(from.u, to.u, at) - u) -
                   facet.slope_v * (between(from.v, to.v, at) - v);
        };
        if (std::isnan(height)) height = heightAt(s);
        const double next_height = heightAt(next);
        if (height * next_height <= 0) { // false where there is no data
            const double fall = height - next_height;
            const double crossing = fall != 0 ? s + (next - s) * height / fall : s;
            return between(from.t, to.t, crossing);
        }
        height = next_height;
        s = next;
        if (s >= stretch.end) return NONE;
        columns.pass(s);
        rows.pass(s);
        diagonals.pass(s);
    }
}

} // namespace ig
