// SPDX-License-Identifier: MIT
#include "render/scene/LightGrid.h"

#include "render/scene/LightList.h"
#include "render/scene/shares.h"

#include <algorithm>
#include <cmath>

namespace ig {

namespace {

constexpr float FIRST = 4;       ///< m, where the first slice ends
constexpr float OCTAVE = 2;      ///< slices for a doubled distance
constexpr float NEAREST = 0.01f; ///< m

/// Where a slice begins.
float begin(int slice) {
    return slice == 0 ? NEAREST : FIRST * std::exp2(static_cast<float>(slice - 1) / OCTAVE);
}

/// Cells along one axis, the last one included; none when it is before the first.
struct Range {
    int first, last;
};

/// One axis of the picture: at a distance d along the view, x lies at
/// (scale x + shear d + shift) / w(d), from -1 to 1.
struct Axis {
    float scale, shear, shift;
    int cells;

    Range cover(const FrameView& view, vec2 across, vec2 depth) const {
        float least = 1e9f, most = -1e9f;
        for (const float d : {depth.x, depth.y})
            for (const float x : {across.x, across.y}) {
                const float place = (scale * x + shear * d + shift) / divisor(view, d);
                least = std::min(least, place);
                most = std::max(most, place);
            }
        return {std::max(number(least), 0), std::min(number(most), cells - 1)};
    }
    /// Where the middle of a cell lies across the view, and half its size there.
    float middle(const FrameView& view, int cell, float d) const {
        const float place = (static_cast<float>(cell) + 0.5f) * 2 / static_cast<float>(cells) - 1;
        return (place * divisor(view, d) - shift - shear * d) / scale;
    }
    float half(const FrameView& view, float d) const {
        return std::abs(divisor(view, d) / (scale * static_cast<float>(cells)));
    }

private:
    static float divisor(const FrameView& view, float d) {
        return view.projection.columns[3].w - view.projection.columns[2].w * d;
    }
    int number(float place) const {
        const float cell = std::floor((place * 0.5f + 0.5f) * static_cast<float>(cells));
        return static_cast<int>(std::clamp(cell, -1.0f, static_cast<float>(cells)));
    }
};

} // namespace

LightGrid::LightGrid() {
    constexpr std::size_t CELLS = LIGHT_COLUMNS * LIGHT_ROWS * LIGHT_SLICES;
    m_cells.resize(CELLS);
    m_strengths.resize(CELLS);
    clear();
}

void LightGrid::clear() {
    Cell none;
    none.fill(NONE);
    std::fill(m_cells.begin(), m_cells.end(), none);
    std::fill(m_strengths.begin(), m_strengths.end(), Strengths{});
}

void LightGrid::sort(const FrameView& view, const std::vector<LightItem>& lights) {
    clear();
    m_block.slices = view.orthographic ? vec4() : vec4(OCTAVE, 1 - OCTAVE * std::log2(FIRST), 0, 0);
    const std::size_t count = std::min(lights.size(), std::size_t{MOST_LIGHTS});
    for (std::size_t i = 0; i < count; i++) {
        pack(lights[i], i);
        add(view, lights[i], static_cast<std::uint8_t>(i));
    }
}

void LightGrid::pack(const LightItem& light, std::size_t number) {
    m_block.places[number] = {light.position, 1 / light.reach};
    m_block.colors[number] = {light.color * (LUX / PI), 1 / (light.cone.x - light.cone.y)};
    m_block.axes[number] = {light.axis, light.cone.y};
}

void LightGrid::add(const FrameView& view, const LightItem& light, std::uint8_t number) {
    LightItem seen = light; // in the eye's axes
    seen.position = view.view * light.position;
    seen.axis = view.view * light.axis;
    const float d = -seen.position.z;
    const vec2 reached{d - light.reach, d + light.reach};
    if (view.orthographic) {
        addToSlice(view, seen, number, 0, reached);
        return;
    }
    for (int slice = 0; slice < LIGHT_SLICES; slice++) {
        const float end = slice + 1 < LIGHT_SLICES ? begin(slice + 1) : reached.y;
        const vec2 depth{std::max(begin(slice), reached.x), std::min(end, reached.y)};
        if (depth.x < depth.y) addToSlice(view, seen, number, slice, depth);
    }
}

/// Into the cells between two distances that it may reach.
void LightGrid::addToSlice(const FrameView& view, const LightItem& light, std::uint8_t number,
                           int slice, vec2 depth) {
    const auto& p = view.projection.columns;
    const Axis x{p[0].x, -p[2].x, p[3].x, LIGHT_COLUMNS}, y{p[1].y, -p[2].y, p[3].y, LIGHT_ROWS};
    const vec3& at = light.position;
    const float away = std::max({depth.x + at.z, -at.z - depth.y, 0.0f});
    const float r = std::sqrt(std::max(light.reach * light.reach - away * away, 0.0f));
    const Range columns = x.cover(view, {at.x - r, at.x + r}, depth);
    const Range rows = y.cover(view, {at.y - r, at.y + r}, depth);
    const float mid = (depth.x + depth.y) / 2, far = depth.y;
    const float half = std::hypot(x.half(view, far), y.half(view, far));
    for (int row = rows.first; row <= rows.last; row++)
        for (int column = columns.first; column <= columns.last; column++) {
            const vec3 middle(x.middle(view, column, mid), y.middle(view, row, mid), -mid);
            const vec3 end(x.middle(view, column, far), y.middle(view, row, far), -far);
            const float radius = length(end - middle) + half;
            if (!LightList::reaches(light, middle, radius)) continue;
            const float square = length2(middle - at) + radius * radius;
            insert(static_cast<std::size_t>((slice * LIGHT_ROWS + row) * LIGHT_COLUMNS + column),
                   number, strongest(light.color) / square);
        }
}

/// Keeps a cell's strongest, in order.
void LightGrid::insert(std::size_t cell, std::uint8_t number, float strength) {
    Strengths& strengths = m_strengths[cell];
    std::size_t place = LIGHTS_A_CELL;
    while (place > 0 && strength > strengths[place - 1])
        place--;
    if (place == LIGHTS_A_CELL) return;
    const auto shift = static_cast<std::ptrdiff_t>(place);
    std::copy_backward(strengths.begin() + shift, strengths.end() - 1, strengths.end());
    std::copy_backward(m_cells[cell].begin() + shift, m_cells[cell].end() - 1, m_cells[cell].end());
    strengths[place] = strength;
    m_cells[cell][place] = number;
}

} // namespace ig
