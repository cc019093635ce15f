// SPDX-License-Identifier: MIT
#include "render/scene/CardPictures.h"

#include "render/scene/ShaderConstants.h"
#include "render/scene/SurfaceLook.h"

#include <algorithm>
#include <cmath>

namespace ig {

namespace {

constexpr int FINE = 4 * CardPictures::EDGE; ///< edge of what a picture is the mean of, samples

/// One picture in samples: the nearest triangle's colour at each.
class Canvas {
public:
    Canvas() : m_texels(FINE * FINE), m_depths(FINE * FINE, EMPTY) {}

    /// Corners: x and y from 0 to `FINE`, z towards the eye.
    void draw(const vec3& a, const vec3& b, const vec3& c, const vec3& color) {
        const float area = (b.x - a.x) * (c.y - a.y) - (c.x - a.x) * (b.y - a.y);
        if (std::abs(area) < 1e-9f) return;
        const auto low = [](float p, float q, float r) {
            return std::max(static_cast<int>(std::min({p, q, r}) - 0.5f), 0);
        };
        const auto high = [](float p, float q, float r) {
            return std::min(static_cast<int>(std::max({p, q, r}) + 0.5f), FINE - 1);
        };
        for (int y = low(a.y, b.y, c.y); y <= high(a.y, b.y, c.y); y++)
            for (int x = low(a.x, b.x, c.x); x <= high(a.x, b.x, c.x); x++) {
                const float px = static_cast<float>(x) + 0.5f, py = static_cast<float>(y) + 0.5f;
                const float v = ((px - a.x) * (c.y - a.y) - (c.x - a.x) * (py - a.y)) / area;
                const float w = ((b.x - a.x) * (py - a.y) - (px - a.x) * (b.y - a.y)) / area;
                if (v < 0 || w < 0 || v + w > 1) continue;
                const auto i = static_cast<std::size_t>(y * FINE + x);
                const float depth = a.z + v * (b.z - a.z) + w * (c.z - a.z);
                if (depth < m_depths[i]) continue;
                m_depths[i] = depth;
                m_texels[i] = color;
            }
    }
    /// Mean colour of the covered samples in a texel of a picture of that edge; w: how many are.
    vec4 getMean(int edge, int x, int y) const {
        const int size = FINE / edge;
        vec3 sum;
        int covered = 0;
        for (int j = y * size; j < (y + 1) * size; j++)
            for (int i = x * size; i < (x + 1) * size; i++) {
                const auto n = static_cast<std::size_t>(j * FINE + i);
                if (m_depths[n] == EMPTY) continue;
                sum = sum + m_texels[n];
                covered++;
            }
        const float share = static_cast<float>(covered) / static_cast<float>(size * size);
        return {sum * (1 / static_cast<float>(std::max(covered, 1))), share};
    }

private:
    static constexpr float EMPTY = -1e9f;
    std::vector<vec3> m_texels;
    std::vector<float> m_depths;
};

void draw(Canvas& canvas, const SceneryKind& kind, float elevation_rad) {
    const BoundSphere& bounds = kind.mesh->getBounds();
    const vec3 middle(bounds.center);
    const float scale = FINE / 2 / static_cast<float>(bounds.radius);
    const float c = std::cos(elevation_rad), s = std::sin(elevation_rad);
    const auto place = [&](const vec3& p) { // from the south, looking down by the elevation
        const vec3 q = p - middle;
        return vec3(q.x * scale + FINE / 2, (q.z * c + q.y * s) * scale + FINE / 2,
                    q.z * s - q.y * c);
    };
    for (int i = 0; i < kind.mesh->getNumSurfaces(); i++) {
        const Mesh::Surface& surface = kind.mesh->getSurface(i);
        const SurfaceLook look = SurfaceLook::read(kind.materials[static_cast<std::size_t>(i)]);
        const vec3 color = look.color.xyz();
        for (std::size_t n = 0; n + 2 < surface.indices.size(); n += 3)
            canvas.draw(place(surface.positions[surface.indices[n]]),
                        place(surface.positions[surface.indices[n + 1]]),
                        place(surface.positions[surface.indices[n + 2]]), color);
    }
}

} // namespace

CardPictures CardPictures::make(std::span<const SceneryKind> kinds) {
    CardPictures pictures;
    pictures.kinds = static_cast<int>(kinds.size());
    pictures.levels.resize(LEVELS);
    const auto to_byte = [](float v) {
        return static_cast<std::uint8_t>(std::lround(std::clamp(v, 0.0f, 1.0f) * 255));
    };
    for (const SceneryKind& kind : kinds)
        for (int tile = 0; tile < TILES; tile++) {
            Canvas canvas;
            const float elevation = static_cast<float>(tile) / (TILES - 1) * PI / 2;
            if (kind.is_tree) draw(canvas, kind, elevation);
            for (int level = 0; level < LEVELS; level++)
                for (int y = 0; y < EDGE >> level; y++)
                    for (int x = 0; x < EDGE >> level; x++) {
                        const vec4 mean = canvas.getMean(EDGE >> level, x, y);
                        const auto root = [&](float v) { return std::sqrt(v) * mean.w; };
                        for (const float v : {root(mean.x), root(mean.y), root(mean.z), mean.w})
                            pictures.levels[static_cast<std::size_t>(level)].push_back(to_byte(v));
                    }
        }
    return pictures;
}

} // namespace ig
