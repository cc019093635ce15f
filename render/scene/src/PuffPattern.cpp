// SPDX-License-Identifier: MIT
#include "render/scene/Patterns.h"

#include "ValueNoise.h"
#include "render/scene/shares.h"

#include <algorithm>
#include <vector>

namespace ig {

namespace {

constexpr int CELL = 64, CELLS = 4; ///< texels; shapes along an edge
constexpr int NO_PERIOD = 4096;     ///< cells of noise after which it repeats

float fbm(float x, float y) {
    float sum = 0, amplitude = 0.5f;
    for (int octave = 0; octave < 4; octave++) {
        sum += amplitude * valueNoise(x, y, NO_PERIOD);
        x = 2 * x + 17;
        y = 2 * y + 31;
        amplitude *= 0.5f;
    }
    return sum / 0.9375f;
}

/// Density at (x, y), −1 to 1, of the shape number `cell`; below 0 outside.
float puff(int cell, float x, float y) {
    const float seed = 20.0f * static_cast<float>(cell + 1);
    return 1 - 1.05f * std::hypot(x, y) + 1.5f * (fbm(2 * x + seed, 2 * y + seed) - 0.5f);
}
float flame(int cell, float x, float y) {
    const float seed = 20.0f * static_cast<float>(cell + 1);
    const float ragged = fbm(4 * x + seed, 1.7f * y + seed) - 0.5f;
    return 0.95f - std::hypot(1.25f * x * (1 + 0.35f * y), y) + 1.5f * ragged;
}
/// A cluster of drops: what a cell of scattered points holds, and a haze between them.
float drops(int cell, float x, float y) {
    constexpr float SPACING = 0.14f;
    const int i = static_cast<int>(std::floor(x / SPACING)),
              j = static_cast<int>(std::floor(y / SPACING));
    float most = 0;
    for (int b = j - 1; b <= j + 1; b++)
        for (int a = i - 1; a <= i + 1; a++) {
            const float u = hash(a + 71 * cell, b + 500), v = hash(a + 900, b + 37 * cell);
            const float dx = (static_cast<float>(a) + u) * SPACING - x;
            const float dy = (static_cast<float>(b) + v) * SPACING - y;
            const float size = SPACING * (0.15f + 0.4f * hash(a + 13 * cell, b + 77) * v);
            most = std::max(most, 1 - std::hypot(dx, dy) / size);
        }
    const float inside = 1 - std::hypot(x, y);
    return std::min(1.3f * most, 1.0f) * smoothStep(0, 0.5f, inside) + 0.25f * inside;
}

float density(int cell, float x, float y) {
    const float d = cell < 8 ? puff(cell, x, y) : cell < 12 ? flame(cell, x, y) : drops(cell, x, y);
    return smoothStep(0.02f, 0.85f, d) * smoothStep(1, 0.8f, std::hypot(x, y));
}

} // namespace

Pattern makePuffPattern() {
    std::vector<std::uint8_t> bytes;
    for (int j = 0; j < CELLS * CELL; j++)
        for (int i = 0; i < CELLS * CELL; i++) {
            const int cell = j / CELL * CELLS + i / CELL;
            const float x = (static_cast<float>(i % CELL) + 0.5f) / (CELL / 2) - 1;
            const float y = (static_cast<float>(j % CELL) + 0.5f) / (CELL / 2) - 1;
            const float here = density(cell, x, y),
                        towards_light = density(cell, x - 0.1f, y + 0.2f);
            bytes.push_back(toByte(here));
            bytes.push_back(toByte(0.5f + 0.9f * (here - towards_light)));
        }
    return {CELLS * CELL, std::move(bytes)};
}

} // namespace ig
