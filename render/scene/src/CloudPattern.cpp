// SPDX-License-Identifier: MIT
#include "render/scene/Patterns.h"
#include "render/scene/ShaderConstants.h"

#include "ValueNoise.h"
#include "render/scene/shares.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace ig {

namespace {

constexpr int SIZE = 512; ///< texels
constexpr int REACH = static_cast<int>(CLOUD_RISE / CLOUD_PERIOD * SIZE / 2);

struct Octave {
    int cells;
    float amplitude;
};
/// Groups of clouds 6 km wide, clouds of 2 km, and what makes them ragged.
constexpr Octave FIELD[] = {{5, 0.25f}, {14, 0.40f}, {28, 0.35f}, {56, 0.20f}, {112, 0.10f}};
constexpr Octave HEAPS[] = {{9, 0.55f}, {19, 0.30f}, {41, 0.15f}};
constexpr Octave WISPS[] = {{26, 0.45f}, {57, 0.40f}, {113, 0.28f}}; ///< between 80 and 18 m

/// Distance to the nearest of points scattered one to a cell, at most 1.
float toNearest(float x, float y, int cells) {
    const int i = static_cast<int>(std::floor(x)), j = static_cast<int>(std::floor(y));
    float nearest = 1;
    for (int b = j - 1; b <= j + 1; b++)
        for (int a = i - 1; a <= i + 1; a++) {
            const int wa = wrap(a, cells), wb = wrap(b, cells);
            const float dx = static_cast<float>(a) + hash(wa + cells, wb) - x;
            const float dy = static_cast<float>(b) + hash(wa + 53, wb + 71 + cells) - y;
            nearest = std::min(nearest, dx * dx + dy * dy);
        }
    return std::sqrt(nearest);
}

/// Puts each value of 0 to 1 at its rank, so that all are equally frequent.
void spreadEvenly(std::vector<float>& values) {
    constexpr int STEPS = 4096;
    std::array<int, STEPS + 1> below{};
    const auto step = [](float value) {
        return static_cast<int>(std::clamp(value, 0.0f, 1.0f) * (STEPS - 1));
    };
    for (const float value : values)
        below[step(value) + 1]++;
    for (int i = 0; i < STEPS; i++)
        below[i + 1] += below[i];
    for (float& value : values) {
        const int i = step(value);
        value =
            static_cast<float>(below[i] + below[i + 1]) / (2 * static_cast<float>(values.size()));
    }
}

} // namespace

Pattern makeCloudPattern() {
    std::vector<float> field, heaps;
    for (int y = 0; y < SIZE; y++)
        for (int x = 0; x < SIZE; x++) {
            const float u = static_cast<float>(x) / SIZE, v = static_cast<float>(y) / SIZE;
            // Pushed about, else the noise's grid shows.
            const float wu = u + 0.03f * (valueNoise(u * 18, v * 18, 18) - 0.5f);
            const float wv = v + 0.03f * (valueNoise(v * 18 + 0.5f, u * 18, 18) - 0.5f);
            float cloud = 0, heap = 0;
            for (const Octave& o : FIELD) {
                const auto n = static_cast<float>(o.cells);
                cloud += o.amplitude * valueNoise(wu * n, wv * n, o.cells);
            }
            for (const Octave& o : HEAPS) {
                const auto n = static_cast<float>(o.cells);
                heap += o.amplitude * (1 - toNearest(u * n, v * n, o.cells));
            }
            for (const Octave& o : WISPS) {
                const auto n = static_cast<float>(o.cells);
                heap += o.amplitude * (valueNoise(wu * n, wv * n, o.cells) - 0.5f);
            }
            field.push_back(cloud / 1.3f);
            heaps.push_back(heap);
        }
    spreadEvenly(field);
    spreadEvenly(heaps);
    const auto at = [&field](int x, int y) { return field[wrap(y, SIZE) * SIZE + wrap(x, SIZE)]; };
    std::vector<std::uint8_t> bytes;
    bytes.reserve(static_cast<std::size_t>(SIZE) * SIZE * 4);
    for (int y = 0; y < SIZE; y++)
        for (int x = 0; x < SIZE; x++) {
            bytes.push_back(toByte(at(x, y)));
            bytes.push_back(toByte(heaps[y * SIZE + x]));
            bytes.push_back(toByte(0.5f + (at(x + REACH, y) - at(x - REACH, y)) / 2));
            bytes.push_back(toByte(0.5f + (at(x, y + REACH) - at(x, y - REACH)) / 2));
        }
    return {SIZE, std::move(bytes)};
}

} // namespace ig
