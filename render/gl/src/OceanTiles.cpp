// SPDX-License-Identifier: MIT
#include "OceanTiles.h"

#include "plugins/ocean/OceanFrame.h"
#include "render/scene/ShaderConstants.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace ig {

namespace {

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

/// Four values, clamped to 0 to 1, as GL_UNSIGNED_INT_8_8_8_8_REV has them. Words instead of bytes,
/// clamping without comparisons, (|v| - |v - 1| + 1) / 2, and rounding without a call let the loops
/// around it run on vectors.
std::uint32_t packTexel(float r, float g, float b, float a) {
    const auto byte = [](float v) {
        return static_cast<int>(127.5f * (std::abs(v) - std::abs(v - 1) + 1) + 0.5f);
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

void OceanTiles::upload(const OceanFrame& frame) {
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
        for (Set& set : m_sets) {
            if (i < DISPLACED) makeTile(set.displacement[i], edge, GL_RGBA32F, GL_FLOAT);
            makeTile(set.slope[i], edge, GL_RGBA8, GL_UNSIGNED_BYTE);
        }
    }
    m_shown = 1 - m_shown;
    for (int i = 0; i < DISPLACED; i++)
        uploadDisplacement(frame, i);
    for (int i = 0; i < TILES; i++)
        uploadSlopes(frame, i);
}

void OceanTiles::forget() {
    m_uploaded = {};
    m_foam_cover = -1;
}

void OceanTiles::uploadDisplacement(const OceanFrame& frame, int tile) {
    const int n = frame.tiles[tile].resolution;
    const float* texels = frame.tiles[tile].displacement;
    glBindTexture(GL_TEXTURE_2D, m_sets[m_shown].displacement[tile].getId());
    m_levels.resize(static_cast<std::size_t>(n) * static_cast<std::size_t>(n)); // a quarter of it
    for (int edge = n, level = 0; edge >= 1; edge /= 2, level++) {
        glTexSubImage2D(GL_TEXTURE_2D, level, 0, 0, edge, edge, GL_RGBA, GL_FLOAT, texels);
        if (edge > 1) halve(texels, m_levels.data(), edge);
        texels = m_levels.data(); // later levels overwrite what they have read
    }
}

/// Slopes (128 is level), the share of the slopes' variance that the level has averaged away, foam.
void OceanTiles::uploadSlopes(const OceanFrame& frame, int tile) {
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

    glBindTexture(GL_TEXTURE_2D, m_sets[m_shown].slope[tile].getId());
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
void OceanTiles::calibrateFoam(const OceanFrame& frame) {
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

} // namespace ig
