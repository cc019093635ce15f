// SPDX-License-Identifier: MIT
#include "OceanPass.h"

#include "WakePass.h"
#include "ig/math/EllipsoidModel.h"
#include "ig/math/quat.h"
#include "plugins/ocean/OceanFrame.h"
#include "render/scene/remainders.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace ig {

namespace {

constexpr int BLOCK = 31; ///< cells of the grid along an edge whose vertices stay in the cache
/// Above these altitudes (m) waves move from geometry into the surface's roughness.
constexpr double FLATTEN_FROM = 500, FLATTEN_TO = 950;

constexpr int CHANNELS = 4; ///< values of a texel

/// Averages squares of four texels; in place when `to` is `from`.
void halve(const float* from, float* to, int edge) {
    const int half = edge / 2, row = edge * CHANNELS;
    for (int y = 0; y < half; y++)
        for (int x = 0; x < half; x++) {
            const float* p = from + 2 * (y * row + x * CHANNELS);
            float mean[CHANNELS]; // all are read before any is written: one vector instruction each
            for (int k = 0; k < CHANNELS; k++)
                mean[k] = 0.25f * (p[k] + p[CHANNELS + k] + p[row + k] + p[row + CHANNELS + k]);
            std::copy_n(mean, CHANNELS, to + (y * half + x) * CHANNELS);
        }
}

/// Four values, clamped to 0 to 1, as GL_UNSIGNED_INT_8_8_8_8_REV has them. Words instead of bytes
/// and clamping without comparisons, (|v| - |v - 1| + 1) / 2, let the loops around it run on
/// vectors.
std::uint32_t packTexel(float r, float g, float b, float a) {
    const auto byte = [](float v) {
        return static_cast<int>(std::lround(127.5f * (std::abs(v) - std::abs(v - 1) + 1)));
    };
    return byte(r) | byte(g) << 8 | byte(b) << 16 | byte(a) << 24;
}

/// The texels of level 0, which hides no variance.
void encodeSlopes(const OceanTile& tile, float encode, std::uint32_t* __restrict out) {
    const float *slope = tile.slope, *foam = tile.foam;
    const int count = tile.resolution * tile.resolution;
    for (int i = 0; i < count; i++)
        out[i] = packTexel(slope[2 * i] * encode + LEVEL_SLOPE,
                           slope[2 * i + 1] * encode + LEVEL_SLOPE, 0, foam ? foam[i] : 0);
}

/// The texels of a higher level, from means of x, y, square and foam; `share` is what variance is
/// multiplied with.
void encodeMeans(const float* means, int count, float encode, float share,
                 std::uint32_t* __restrict out) {
    for (int i = 0; i < count; i++) {
        const float x = means[4 * i], y = means[4 * i + 1];
        out[i] = packTexel(x * encode + LEVEL_SLOPE, y * encode + LEVEL_SLOPE,
                           (means[4 * i + 2] - x * x - y * y) * share, means[4 * i + 3]);
    }
}

/// Level 1 of those means.
void averageSlopes(const OceanTile& tile, float* __restrict means) {
    const int n = tile.resolution, half = n / 2;
    for (int y = 0; y < half; y++) {
        const float *a = tile.slope + 4 * y * n, *b = a + 2 * n; // two rows of (x, y)
        const float* f = tile.foam ? tile.foam + 2 * y * n : nullptr;
        for (int x = 0; x < half; x++, a += 4, b += 4, means += CHANNELS) {
            means[0] = 0.25f * (a[0] + a[2] + b[0] + b[2]);
            means[1] = 0.25f * (a[1] + a[3] + b[1] + b[3]);
            means[2] = 0.25f * (a[0] * a[0] + a[1] * a[1] + a[2] * a[2] + a[3] * a[3] +
                                b[0] * b[0] + b[1] * b[1] + b[2] * b[2] + b[3] * b[3]);
            const int i = 2 * x;
            means[3] = f ? 0.25f * (f[i] + f[i + 1] + f[n + i] + f[n + i + 1]) : 0;
        }
    }
}

/// A texture of a tile with all its levels.
void makeTile(gl::Texture& texture, int edge, GLint internal, GLenum type) {
    gl::makeTexture(texture, edge, edge,
                    {internal, GL_RGBA, type, GL_REPEAT, GL_LINEAR_MIPMAP_LINEAR});
    int level = 1;
    for (edge /= 2; edge >= 1; edge /= 2, level++)
        glTexImage2D(GL_TEXTURE_2D, level, internal, edge, edge, 0, GL_RGBA, type, nullptr);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAX_LEVEL, level - 1);
}

} // namespace

void OceanPass::init(int columns, int rows) {
    m_columns = columns;
    m_rows = rows;
    std::vector<gl::Sampler> samplers;
    for (const char* name : {"uDisplacement0", "uDisplacement1", "uDisplacement2", "uSlope0",
                             "uSlope1", "uSlope2", "uSlope3", "uEffects", "uFarEffects"})
        samplers.push_back({name, gl::UNIT_FIRST_OWN + static_cast<int>(samplers.size())});
    m_program.start("ocean.vert", "shadow.glsl ocean.frag", {}, std::move(samplers));
    makeGrid();
}

void OceanPass::makeGrid() {
    std::vector<vec2> cells;
    for (int j = 0; j < m_rows; j++)
        for (int i = 0; i < m_columns; i++)
            cells.push_back({static_cast<float>(i) / static_cast<float>(m_columns - 1),
                             static_cast<float>(j) / static_cast<float>(m_rows - 1)});
    std::vector<std::uint32_t> indices;
    const auto addCell = [&](int i, int j) {
        const auto a = static_cast<std::uint32_t>(j * m_columns + i);
        const auto c = a + static_cast<std::uint32_t>(m_columns);
        for (const std::uint32_t index : {a, a + 1, c + 1, a, c + 1, c})
            indices.push_back(index);
    };
    for (int bj = 0; bj < m_rows - 1; bj += BLOCK)
        for (int bi = 0; bi < m_columns - 1; bi += BLOCK)
            for (int j = bj; j < std::min(bj + BLOCK, m_rows - 1); j++)
                for (int i = bi; i < std::min(bi + BLOCK, m_columns - 1); i++)
                    addCell(i, j);
    m_num_indices = static_cast<int>(indices.size());
    m_vertex_array.create();
    m_vertices.create();
    m_indices.create();
    glBindVertexArray(m_vertex_array.getId());
    glBindBuffer(GL_ARRAY_BUFFER, m_vertices.getId());
    glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(cells.size() * sizeof(vec2)),
                 cells.data(), GL_STATIC_DRAW);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, m_indices.getId());
    glBufferData(GL_ELEMENT_ARRAY_BUFFER,
                 static_cast<GLsizeiptr>(indices.size() * sizeof(std::uint32_t)), indices.data(),
                 GL_STATIC_DRAW);
    glEnableVertexAttribArray(0);
    glVertexAttribPointer(0, 2, GL_FLOAT, GL_FALSE, 0, nullptr);
}

// ------------------------------------------------------------------ waves to the device

void OceanPass::upload(const OceanFrame& frame) {
    const Stamp stamp{frame.tiles[0].displacement, frame.version, frame.time,
                      frame.significant_height, frame.wave_direction};
    if (stamp == m_uploaded) return;
    m_uploaded = stamp;
    calibrateFoam(frame);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glActiveTexture(GL_TEXTURE0 + gl::UNIT_FIRST_OWN);
    for (int i = 0; i < TILES; i++) {
        const int edge = frame.tiles[i].resolution;
        if (m_edges[i] == edge) continue;
        m_edges[i] = edge;
        if (i < DISPLACED) makeTile(m_displacement[i], edge, GL_RGBA32F, GL_FLOAT);
        makeTile(m_slope[i], edge, GL_RGBA8, GL_UNSIGNED_BYTE);
    }
    for (int i = 0; i < DISPLACED; i++)
        uploadDisplacement(frame, i);
    for (int i = 0; i < TILES; i++)
        uploadSlopes(frame, i);
}

void OceanPass::forget() {
    m_uploaded = {};
    m_foam_cover = -1;
}

void OceanPass::uploadDisplacement(const OceanFrame& frame, int tile) {
    const int n = frame.tiles[tile].resolution;
    const float* texels = frame.tiles[tile].displacement;
    glBindTexture(GL_TEXTURE_2D, m_displacement[tile].getId());
    m_levels.resize(static_cast<std::size_t>(n) * static_cast<std::size_t>(n)); // a quarter of it
    for (int edge = n, level = 0; edge >= 1; edge /= 2, level++) {
        glTexSubImage2D(GL_TEXTURE_2D, level, 0, 0, edge, edge, GL_RGBA, GL_FLOAT, texels);
        if (edge > 1) halve(texels, m_levels.data(), edge);
        texels = m_levels.data(); // later levels overwrite what they have read
    }
}

/// Slopes (128 is level), the share of the slopes' variance that the level has averaged away, foam.
void OceanPass::uploadSlopes(const OceanFrame& frame, int tile) {
    const OceanTile& t = frame.tiles[tile];
    const int n = t.resolution;
    const std::size_t count = static_cast<std::size_t>(n) * static_cast<std::size_t>(n);
    m_slope_scale[tile] = std::max(0.02f, 6 * std::sqrt(t.slope_variance / 2));
    const float encode = 0.5f / m_slope_scale[tile];
    // Level after level, four values a texel: together a third more than the first, which has as
    // many values as the tile has texels.
    m_levels.resize(count + count / 2);
    float* last = m_levels.data();
    averageSlopes(t, last);
    for (int edge = n / 2; edge > 1; edge /= 2) {
        halve(last, last + edge * edge * CHANNELS, edge);
        last += edge * edge * CHANNELS;
    }
    const float mean_square = last[2], share = mean_square > 0 ? 1 / mean_square : 0;

    glBindTexture(GL_TEXTURE_2D, m_slope[tile].getId());
    m_texels.resize(count);
    encodeSlopes(t, encode, m_texels.data());
    const float* means = m_levels.data();
    for (int edge = n, level = 0; edge >= 1; edge /= 2, level++) {
        if (level > 0) {
            encodeMeans(means, edge * edge, encode, share, m_texels.data());
            means += edge * edge * CHANNELS;
        }
        glTexSubImage2D(GL_TEXTURE_2D, level, 0, 0, edge, edge, GL_RGBA,
                        GL_UNSIGNED_INT_8_8_8_8_REV, m_texels.data());
    }
}

/// Finds the threshold of the breaking measure above which as much of the sea is white as the wind
/// asks for, from a sample of the measure itself. Seas change slowly: seldom is enough.
void OceanPass::calibrateFoam(const OceanFrame& frame) {
    if (std::abs(frame.whitecap_cover - m_foam_cover) < 0.05 * frame.whitecap_cover &&
        std::abs(frame.time - m_foam_time) < 5 && m_foam_cover >= 0)
        return;
    m_foam_cover = frame.whitecap_cover;
    m_foam_time = frame.time;
    constexpr int SAMPLES = 4096;
    m_measure.assign(SAMPLES, 0);
    double sum = 0, squares = 0, mean_fine = 0;
    std::uint32_t random = 1;
    for (float& m : m_measure) {
        for (int i = 0; i < DISPLACED; i++) {
            random = random * 1664525u + 1013904223u; // independent places in each tile
            const float foam = std::clamp(
                frame.tiles[i]
                    .foam[(random >> 8) % static_cast<std::uint32_t>(frame.tiles[i].resolution *
                                                                     frame.tiles[i].resolution)],
                0.0f, 1.0f);
            m += BREAKING_WEIGHTS[i] * foam;
            if (i == 2) mean_fine += static_cast<double>(foam);
        }
        sum += static_cast<double>(m);
        squares += static_cast<double>(m) * static_cast<double>(m);
    }
    const double mean = sum / SAMPLES;
    m_foam_mean = static_cast<float>(mean_fine / SAMPLES);
    m_foam_spread = std::max(
        static_cast<float>(std::sqrt(std::max(squares / SAMPLES - mean * mean, 0.0))), 0.01f);
    m_foam_width = 0.33f * m_foam_spread;
    float low = 0, high = 5;
    for (int step = 0; step < 24; step++) {
        m_foam_threshold = (low + high) / 2;
        float cover = 0;
        for (const float m : m_measure)
            cover +=
                std::clamp(WHITECAP_GAIN / (1 + std::exp(-(m - m_foam_threshold) / m_foam_width)) -
                               WHITECAP_LOSS,
                           0.0f, 1.0f);
        (cover / SAMPLES > static_cast<float>(frame.whitecap_cover) ? low : high) =
            m_foam_threshold;
    }
}

// ------------------------------------------------------------------ drawing

/// The azimuths that the view can see, with a margin for crests that come in from the side, and its
/// depression angles. The whole circle when it sees what is straight below.
OceanPass::Fan OceanPass::fitFan(const FrameView& view, const OceanFrame& frame) {
    const auto altitude = static_cast<float>(view.geodetic.z);
    const auto waves = static_cast<float>(frame.significant_height);
    Fan fan{};
    fan.row_height = std::max(altitude, 4 + 4 * waves);
    const float horizon =
        1.02f *
        (std::sqrt(2 * static_cast<float>(EllipsoidModel::MEAN_RADIUS) * std::max(altitude, 1.0f)) +
         4000);
    fan.flattest = fan.row_height / horizon;
    fan.azimuth = -PI;
    fan.azimuth_range = 2 * PI;
    fan.steepest = 1.5706f;
    if (view.orthographic) return fan;

    const auto& p = view.projection.columns;
    const auto direction = [&](float x, float y) { // of a place in the picture, −1 to 1
        const vec3 ray((x + p[2].x) / p[0].x, (y + p[2].y) / p[1].y, -1);
        const auto& c = view.view.columns; // E to eye; its transpose leads back
        return normalize(vec3(dot(c[0].xyz(), ray), dot(c[1].xyz(), ray), dot(c[2].xyz(), ray)));
    };
    const vec3 middle = direction(0, 0);
    bool below = true; // whether the nadir is in the picture, or nearly
    for (int i = 0; i < 4; i++)
        below &= -view.side_normals[i].z > -0.35f;
    if (below || std::hypot(middle.x, middle.y) < 0.05f) return fan;

    const float center = std::atan2(middle.x, middle.y);
    float half_width = 0, depression = 0.05f;
    for (const float x : {-1.0f, 0.0f, 1.0f})
        for (const float y : {-1.0f, 0.0f, 1.0f}) {
            const vec3 d = direction(x, y);
            half_width = std::max(half_width,
                                  std::abs(std::remainder(std::atan2(d.x, d.y) - center, 2 * PI)));
            depression = std::max(depression, -std::asin(std::clamp(d.z, -1.0f, 1.0f)));
        }
    half_width += 0.06f + std::min(0.9f, 0.9f * waves / std::max(altitude, 1.0f));
    if (half_width >= PI) return fan;
    fan.azimuth = center - half_width;
    fan.azimuth_range = 2 * half_width;
    const float nearest = std::max(
        1.0f, altitude / std::tan(std::min(depression + 0.05f, 1.5f)) * 0.75f - 6 - 2 * waves);
    fan.steepest = std::min(std::atan(fan.row_height / nearest) + 0.02f, 1.5706f);
    return fan;
}

void OceanPass::setWaveUniforms(const FrameView& view, const OceanFrame& frame) {
    const double altitude = view.geodetic.z, latitude = view.geodetic.y * DEG_TO_RAD<double>;
    const double t = std::clamp((altitude - FLATTEN_FROM) / (FLATTEN_TO - FLATTEN_FROM), 0.0, 1.0);
    const double amplitude = 1 - t * t * (3 - 2 * t);
    m_program.set("uWaves", vec4(static_cast<float>(altitude), static_cast<float>(amplitude),
                                 static_cast<float>(frame.mean_level),
                                 static_cast<float>(frame.significant_height)));

    // The plane of the waves around the eye, to the second order: radii of curvature at its place
    // against the metres per degree at the anchor.
    const auto [meridian, prime] = EllipsoidModel().getRadii(view.geodetic.y);
    const double cosine = std::max(std::cos(latitude), 1e-3), tangent = std::tan(latitude);
    const double kx = frame.metres_per_longitude / (prime * cosine * DEG_TO_RAD<double>);
    const double ky = frame.metres_per_latitude / (meridian * DEG_TO_RAD<double>);
    m_program.set("uPlane", vec4(static_cast<float>(kx), static_cast<float>(ky),
                                 static_cast<float>(tangent / meridian),
                                 static_cast<float>(tangent / (2 * prime))));

    const dvec2 nadir = frame.toPlane(view.geodetic.x, view.geodetic.y);
    vec4 tiles[TILES], scale, variance;
    float* scales[] = {&scale.x, &scale.y, &scale.z, &scale.w};
    float* variances[] = {&variance.x, &variance.y, &variance.z, &variance.w};
    for (int i = 0; i < TILES; i++) {
        const double edge = frame.tiles[i].tile;
        const int n = frame.tiles[i].resolution;
        tiles[i] = {static_cast<float>(1 / edge), fraction(nadir.x / edge + 0.5 / n),
                    fraction(nadir.y / edge + 0.5 / n), static_cast<float>(edge / n)};
        *scales[i] = m_slope_scale[i];
        *variances[i] = frame.tiles[i].slope_variance / 2;
    }
    m_program.set("uTile", tiles, TILES);
    m_program.set("uSlopeScale", scale);
    m_program.set("uSlopeVariance", variance);
    constexpr double C = OceanFrame::SECOND_COSINE, S = OceanFrame::SECOND_SINE;
    const double edge = frame.tiles[0].tile;
    const int n = frame.tiles[0].resolution;
    const double x = C * nadir.x - S * nadir.y + OceanFrame::SECOND_OFFSET_X;
    const double y = S * nadir.x + C * nadir.y + OceanFrame::SECOND_OFFSET_Y;
    m_program.set("uTurned", vec4(static_cast<float>(C), static_cast<float>(S),
                                  fraction(x / edge + 0.5 / n), fraction(y / edge + 0.5 / n)));

    const double towards = (frame.wave_direction + 180) * DEG_TO_RAD<double>;
    const double wx = std::sin(towards), wy = std::cos(towards);
    m_program.set("uWind", vec4(static_cast<float>(wx), static_cast<float>(wy),
                                static_cast<float>(frame.ripple_slope_variance),
                                std::clamp(static_cast<float>(frame.wind - 8) / 10, 0.0f, 1.3f)));
    m_program.set("uFoam", vec4(m_foam_threshold, m_foam_width, m_foam_spread, m_foam_mean));
    m_program.set("uPatch", vec2{toNoise(nadir.x), toNoise(nadir.y)});
    m_program.set("uFoamOrigin",
                  vec4(toNoise(nadir.x * wx + nadir.y * wy), toNoise(nadir.y * wx - nadir.x * wy),
                       static_cast<float>(frame.significant_height), 0));
}

void OceanPass::draw(const FrameView& view, const OceanFrame& frame,
                     const std::vector<vec4>& downdraughts, const WakePass& wakes) {
    m_program.use();
    const Fan fan = fitFan(view, frame);
    m_program.set("uFan", vec4(fan.azimuth, fan.azimuth_range, fan.steepest, fan.flattest));
    m_program.set("uFanSize",
                  vec4(static_cast<float>(m_columns - 1), static_cast<float>(m_rows - 1),
                       fan.row_height, static_cast<float>(1 / (2 * EllipsoidModel::MEAN_RADIUS))));
    setWaveUniforms(view, frame);
    const int winds = std::min(static_cast<int>(downdraughts.size()), MOST_DOWNDRAUGHTS);
    m_program.set("uNumDowndraughts", winds);
    if (winds > 0) m_program.set("uDowndraughts", downdraughts.data(), winds);
    const WakePass::Map &near = wakes.getNear(), &far = wakes.getFar();
    m_program.set("uEffectsPlace", vec4(near.corner.x, near.corner.y, 1 / near.edge, 0));
    m_program.set("uFarEffectsPlace", vec4(far.corner.x, far.corner.y, 1 / far.edge, 0));
    for (int i = 0; i < DISPLACED; i++)
        gl::bindTexture(gl::UNIT_FIRST_OWN + i, m_displacement[i]);
    for (int i = 0; i < TILES; i++)
        gl::bindTexture(gl::UNIT_FIRST_OWN + DISPLACED + i, m_slope[i]);
    gl::bindTexture(gl::UNIT_FIRST_OWN + DISPLACED + TILES, near.texture);
    gl::bindTexture(gl::UNIT_FIRST_OWN + DISPLACED + TILES + 1, far.texture);
    glBindVertexArray(m_vertex_array.getId());
    glDrawElements(GL_TRIANGLES, m_num_indices, GL_UNSIGNED_INT, nullptr);
}

} // namespace ig
