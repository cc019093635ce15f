// SPDX-License-Identifier: MIT
#pragma once

#include <cmath>
#include <cstdint>

namespace ig {

/// 0 to 1, by cell.
inline float hash(int x, int y) {
    auto h =
        static_cast<std::uint32_t>(x) * 374761393u + static_cast<std::uint32_t>(y) * 668265263u;
    h = (h ^ (h >> 13)) * 1274126177u;
    return static_cast<float>((h ^ (h >> 16)) & 0xffffffu) / 16777216.0f;
}

inline int wrap(int i, int cells) { return ((i % cells) + cells) % cells; }

/// Value noise of `cells` per period at (x, y) in cells.
inline float valueNoise(float x, float y, int cells) {
    const int i = static_cast<int>(std::floor(x)), j = static_cast<int>(std::floor(y));
    float u = x - static_cast<float>(i), v = y - static_cast<float>(j);
    u = u * u * (3 - 2 * u);
    v = v * v * (3 - 2 * v);
    const auto at = [cells](int a, int b) {
        return hash(wrap(a, cells) + 7 * cells, wrap(b, cells));
    };
    return std::lerp(std::lerp(at(i, j), at(i + 1, j), u),
                     std::lerp(at(i, j + 1), at(i + 1, j + 1), u), v);
}

} // namespace ig
