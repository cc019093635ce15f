// SPDX-License-Identifier: MIT
#include "render/scene/Patterns.h"

#include "ValueNoise.h"
#include "render/scene/ShaderConstants.h"
#include "render/scene/shares.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numeric>

namespace ig {

namespace {

constexpr int SIZE = NOISE_EDGE;

/// Walls between the cells of scattered points: 1 on a wall, 0 well inside.
float cellWalls(float x, float y, int cells) {
    const int i = static_cast<int>(std::floor(x)), j = static_cast<int>(std::floor(y));
    float nearest = 9, second = 9;
    for (int b = j - 1; b <= j + 1; b++)
        for (int a = i - 1; a <= i + 1; a++) {
            const int wa = wrap(a, cells), wb = wrap(b, cells);
            const float dx = static_cast<float>(a) + hash(wa + cells, wb) - x;
            const float dy = static_cast<float>(b) + hash(wa + 91, wb + 37 + cells) - y;
            const float d = std::sqrt(dx * dx + dy * dy);
            second = std::min(second, std::max(nearest, d));
            nearest = std::min(nearest, d);
        }
    return 1 - std::clamp((second - nearest) * 1.6f, 0.0f, 1.0f);
}

/// Replaces each value by its rank, so that all values are equally frequent.
void spreadEvenly(std::vector<float>& values) {
    std::vector<int> order(values.size());
    std::iota(order.begin(), order.end(), 0);
    std::sort(order.begin(), order.end(),
              [&values](int a, int b) { return values[a] < values[b]; });
    for (std::size_t i = 0; i < order.size(); i++)
        values[order[i]] = static_cast<float>(i) / static_cast<float>(order.size() - 1);
}

} // namespace

Pattern makeNoisePattern() {
    std::vector<float> lace, clouds;
    for (int y = 0; y < SIZE; y++)
        for (int x = 0; x < SIZE; x++) {
            const float u = static_cast<float>(x) / SIZE, v = static_cast<float>(y) / SIZE;
            float cloud = 0, amplitude = 0.5f;
            for (int cells = 5; cells <= 80; cells *= 2) {
                const auto n = static_cast<float>(cells);
                cloud += amplitude * valueNoise(u * n, v * n, cells);
                amplitude *= 0.55f;
            }
            // Cells pushed about a little, else their walls run too straight.
            const float wu = u + 0.02f * (valueNoise(u * 9, v * 9, 9) - 0.5f);
            const float wv = v + 0.02f * (valueNoise(v * 9 + 0.5f, u * 9, 9) - 0.5f);
            lace.push_back(0.45f * cellWalls(wu * 17, wv * 17, 17) +
                           0.3f * cellWalls(wu * 37, wv * 37, 37) +
                           0.15f * cellWalls(wu * 71, wv * 71, 71) + 0.9f * cloud);
            clouds.push_back(cloud);
        }
    spreadEvenly(lace);
    spreadEvenly(clouds);
    const auto cloudAt = [&clouds](int x, int y) {
        return clouds[wrap(y, SIZE) * SIZE + wrap(x, SIZE)];
    };
    std::vector<std::uint8_t> bytes;
    for (int y = 0; y < SIZE; y++)
        for (int x = 0; x < SIZE; x++) {
            bytes.push_back(toByte(lace[y * SIZE + x]));
            bytes.push_back(toByte(cloudAt(x, y)));
            // Over ten texels, as wide as what the light shall play on.
            bytes.push_back(toByte(0.5f + (cloudAt(x + 5, y) - cloudAt(x - 5, y)) / 2));
            bytes.push_back(toByte(0.5f + (cloudAt(x, y + 5) - cloudAt(x, y - 5)) / 2));
        }
    return {SIZE, std::move(bytes)};
}

} // namespace ig
