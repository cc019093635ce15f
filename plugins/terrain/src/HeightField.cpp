// SPDX-License-Identifier: MIT
#include "HeightField.h"

#include "HeightFile.h"
#include "ig/math/EllipsoidModel.h"
#include "ig/math/quat.h"

#include <algorithm>
#include <bit>

namespace ig {

namespace {

const EllipsoidModel EARTH;

constexpr int BLOCK_SHIFT = HeightLayout::BLOCK_SHIFT;
/// A micrometre on the ground, in degrees. Converting a place to the world and back errs by a few
/// nanometres.
constexpr double TOLERANCE = 1e-11;

} // namespace

HeightField::HeightField(const TerrainGrid& shape, std::vector<float> heights)
    : m_grid(shape), m_heights(std::move(heights)) {
    m_grid.heights = m_heights.data();
    Range all;
    for (const float height : m_heights) {
        if (TerrainGrid::isHole(height))
            m_grid.has_holes = true;
        else
            all.expand(height, height);
    }
    if (!all.isEmpty()) {
        m_grid.lowest = all.lowest;
        m_grid.highest = all.highest;
    }
    place();
    buildLevels();
}

HeightField::HeightField(std::unique_ptr<const HeightFile> file)
    : m_grid(file->getShape()), m_file(std::move(file)) {
    place();
    for (const HeightLayout::Part& part : m_file->getLayout().blocks)
        m_levels.push_back({part.columns, part.rows, m_file->getBlocks(part)});
}

HeightField::~HeightField() = default;

/// What follows from the grid's place.
void HeightField::place() {
    m_grid.overview = this;
    m_middle_longitude = m_grid.west + (m_grid.columns - 1) * 0.5 * m_grid.spacing_longitude;
    m_middle_longitude = std::remainder(m_middle_longitude, 360);
    const double south = m_grid.north - (m_grid.rows - 1) * m_grid.spacing_latitude;
    const double farthest = std::max(std::abs(m_grid.north), std::abs(south));
    m_steepest_tangent = std::tan(std::min(farthest + 0.5, 89.9) * DEG_TO_RAD<double>);
    m_tolerance_u = TOLERANCE / m_grid.spacing_longitude;
    m_tolerance_v = TOLERANCE / m_grid.spacing_latitude;
}

HeightField::Facet HeightField::getFacetOfCell(int column, int row, double u, double v) const {
    const float* north =
        m_grid.heights + static_cast<std::ptrdiff_t>(row) * m_grid.columns + column;
    const float* south = north + m_grid.columns;
    const double fu = u - column, fv = v - row;
    // A missing corner is not a number and makes the whole facet so.
    if (fu + fv <= 1) {
        const double slope_u = double(north[1]) - north[0], slope_v = double(south[0]) - north[0];
        return {north[0] + fu * slope_u + fv * slope_v, slope_u, slope_v};
    }
    const double slope_u = double(south[1]) - south[0], slope_v = double(south[1]) - north[1];
    return {south[1] - (1 - fu) * slope_u - (1 - fv) * slope_v, slope_u, slope_v};
}

HeightField::Facet HeightField::getFacet(double u, double v) const {
    const int last_column = m_grid.columns - 2, last_row = m_grid.rows - 2;
    if (!(u >= -m_tolerance_u && u <= last_column + 1 + m_tolerance_u && v >= -m_tolerance_v &&
          v <= last_row + 1 + m_tolerance_v))
        return {};
    const auto facet = [&](double at_u, double at_v) {
        const int column = std::clamp(static_cast<int>(at_u), 0, last_column);
        const int row = std::clamp(static_cast<int>(at_v), 0, last_row);
        return getFacetOfCell(column, row, at_u, at_v);
    };
    Facet found = facet(u, v);
    // On the very edge of a hole: the triangle on the other side of the edge.
    for (int corner = 0; corner < 4 && !found && m_grid.has_holes; corner++)
        found = facet(u + (corner & 1 ? m_tolerance_u : -m_tolerance_u),
                      v + (corner & 2 ? m_tolerance_v : -m_tolerance_v));
    return found;
}

HeightField::Range HeightField::getBlockRange(int block_column, int block_row) const {
    Range range;
    const int column = block_column << BLOCK_SHIFT, row = block_row << BLOCK_SHIFT;
    const int end_column = std::min(column + (1 << BLOCK_SHIFT), m_grid.columns - 1);
    const int end_row = std::min(row + (1 << BLOCK_SHIFT), m_grid.rows - 1);
    for (int j = row; j <= end_row; j++) {
        for (int i = column; i <= end_column; i++) {
            const float height = m_grid.getHeight(i, j);
            if (!TerrainGrid::isHole(height)) range.expand(height, height);
        }
    }
    return range;
}

void HeightField::buildLevels() {
    const auto add = [this](const HeightLayout::Part& part) -> std::vector<Range>& {
        m_blocks.emplace_back(static_cast<std::size_t>(part.columns) *
                              static_cast<std::size_t>(part.rows));
        m_levels.push_back({part.columns, part.rows, m_blocks.back().data()});
        return m_blocks.back();
    };
    const HeightLayout layout(m_grid.columns, m_grid.rows);
    for (const HeightLayout::Part& part : layout.blocks) {
        Range* block = add(part).data();
        const Level* finer = m_levels.size() > 1 ? &m_levels.end()[-2] : nullptr;
        for (int j = 0; j < part.rows; j++)
            for (int i = 0; i < part.columns; i++, block++) {
                if (!finer) {
                    *block = getBlockRange(i, j);
                    continue;
                }
                for (int v = 2 * j; v < std::min(2 * j + 2, finer->rows); v++)
                    for (int u = 2 * i; u < std::min(2 * i + 2, finer->columns); u++)
                        block->expand(finer->at(u, v).lowest, finer->at(u, v).highest);
            }
    }
}

HeightField::Range HeightField::getRange(double u0, double u1, double v0, double v1) const {
    const double end_u = m_grid.columns - 1, end_v = m_grid.rows - 1;
    if (!(u0 <= end_u && u1 >= 0 && v0 <= end_v && v1 >= 0)) return {};
    // Blocks of the finest level; the last sample belongs to the last cell.
    const auto block = [](double cell, double end) {
        return static_cast<int>(std::clamp(cell, 0.0, end - 1)) >> BLOCK_SHIFT;
    };
    int i0 = block(u0, end_u), i1 = block(u1, end_u), j0 = block(v0, end_v), j1 = block(v1, end_v);
    std::size_t level = 0;
    for (; i1 - i0 > 1 || j1 - j0 > 1; level++) {
        i0 >>= 1;
        i1 >>= 1;
        j0 >>= 1;
        j1 >>= 1;
    }
    Range range;
    for (int j = j0; j <= j1; j++)
        for (int i = i0; i <= i1; i++)
            range.expand(m_levels[level].at(i, j).lowest, m_levels[level].at(i, j).highest);
    return range;
}

HeightField::Range HeightField::getSquareRange(int column, int row, int edge) const {
    const int shift = std::countr_zero(static_cast<unsigned>(edge));
    const auto level = static_cast<std::size_t>(shift - BLOCK_SHIFT);
    if (level >= m_levels.size()) return m_levels.back().at(0, 0); // more than all
    return m_levels[level].at(column >> shift, row >> shift);
}

float HeightField::getHeight(int column, int row, int step) const {
    if (m_file && step > 1 && ((column | row) & (step - 1)) == 0)
        return m_file->getHeight(column, row, step);
    return m_grid.getHeight(column, row);
}

BoundSphere HeightField::getBounds() const {
    const double width = (m_grid.columns - 1) * m_grid.spacing_longitude;
    const double height = (m_grid.rows - 1) * m_grid.spacing_latitude;
    if (width > 90 || height > 90) // no smaller sphere worth having
        return {{}, EllipsoidModel::SEMI_MAJOR_AXIS + std::max(m_grid.highest, 0.0f)};
    const dvec3 center = EARTH.toWorld({m_middle_longitude, m_grid.north - height / 2,
                                        (double(m_grid.lowest) + m_grid.highest) / 2});
    // The farthest points lie on the eastern and western borders, which are alike. Their distance
    // is taken at places along the border; between them it is greater by less than a thousandth.
    constexpr int STEPS = 32;
    double radius = 0;
    for (int i = 0; i <= STEPS; i++)
        for (const float altitude : {m_grid.lowest, m_grid.highest})
            radius = std::max(radius,
                              length(EARTH.toWorld({m_middle_longitude + width / 2,
                                                    m_grid.north - height * i / STEPS, altitude}) -
                                     center));
    return {center, radius * 1.001 + 1};
}

} // namespace ig
