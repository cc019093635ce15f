// SPDX-License-Identifier: MIT
#include "render/scene/Patterns.h"

#include "ValueNoise.h"
#include "render/scene/shares.h"

#include <algorithm>
#include <cmath>

namespace ig {

namespace {

constexpr int EDGE = 512;      ///< texels
constexpr float ROOM = 1.15f;  ///< radii around a drop that are its own
constexpr float SPREAD = 1.3f; ///< radii that know its number: filtering must not meet another's

/// Sizes from large to small: radius in texels, how many are tried.
struct Kind {
    float radius;
    int tries;
};
constexpr Kind KINDS[] = {{13, 26}, {9, 90}, {6, 260}, {4, 900}, {2.7f, 2600}};

struct Drop {
    float x, y, radius;
    int number;
};

int wrap(int i) { return i & (EDGE - 1); }

/// Distance over the pattern's seam.
float apart(float a, float b) { return std::remainder(a - b, static_cast<float>(EDGE)); }

/// Outlines are no circles, the larger the less.
float outline(const Drop& drop, float angle) {
    const float odd = 0.05f + 0.012f * drop.radius;
    const float a = 6.3f * hash(drop.number, 1), b = 6.3f * hash(drop.number, 2);
    return drop.radius * (1 + odd * (std::cos(2 * angle + a) + 0.6f * std::cos(3 * angle + b)));
}

std::vector<Drop> scatter() {
    std::vector<Drop> drops;
    int number = 0;
    for (const Kind& kind : KINDS)
        for (int i = 0; i < kind.tries; i++) {
            number++;
            Drop drop{EDGE * hash(number, 11), EDGE * hash(number, 23),
                      kind.radius * (0.75f + 0.5f * hash(number, 37)), number};
            const auto meets = [&drop](const Drop& other) {
                return std::hypot(apart(drop.x, other.x), apart(drop.y, other.y)) <
                       ROOM * (drop.radius + other.radius);
            };
            if (std::none_of(drops.begin(), drops.end(), meets)) drops.push_back(drop);
        }
    return drops;
}

void paint(const Drop& drop, std::vector<std::uint8_t>& texels) {
    const int reach = static_cast<int>(std::ceil(SPREAD * drop.radius * 1.3f));
    const int left = static_cast<int>(drop.x), low = static_cast<int>(drop.y);
    for (int j = low - reach; j <= low + reach; j++)
        for (int i = left - reach; i <= left + reach; i++) {
            const float x = static_cast<float>(i) + 0.5f - drop.x;
            const float y = static_cast<float>(j) + 0.5f - drop.y;
            const float edge = outline(drop, std::atan2(y, x)), r = std::hypot(x, y) / edge;
            if (r > SPREAD) continue;
            std::uint8_t* texel =
                &texels[std::size_t{4} * static_cast<std::size_t>(wrap(j) * EDGE + wrap(i))];
            if (r < 1) {
                texel[0] = toByte(0.5f + 0.5f * x / edge);
                texel[1] = toByte(0.5f + 0.5f * y / edge);
                texel[2] = toByte(1 - r * r);
            }
            texel[3] = toByte(hash(drop.number, 5));
        }
}

} // namespace

Pattern makeDropPattern() {
    std::vector<std::uint8_t> texels(std::size_t{4} * EDGE * EDGE);
    for (std::size_t i = 0; i < texels.size(); i++)
        texels[i] = i % 4 < 2 ? 128 : 0;
    for (const Drop& drop : scatter())
        paint(drop, texels);
    return {EDGE, std::move(texels)};
}

} // namespace ig
