// SPDX-License-Identifier: MIT
#include "GroundEyes.h"

#include <algorithm>
#include <cmath>

namespace ig {

namespace {

/// Samples from the eye that are read before anybody asks, and those that stay once they are read:
/// with pages of 1024 samples at most 40 MiB of each grid and eye.
constexpr int READ_AHEAD = 320, KEPT = 1024;
constexpr double LEAD = 10 / 0.25; ///< periods of flight that it looks ahead: 10 s
/// Degrees from frame to frame, of which 10 a second make 500 m/s; an eye that goes farther has
/// jumped, or is another.
constexpr double FASTEST = 0.0005;

} // namespace

void GroundEyes::lookFrom(double longitude, double latitude) {
    const auto distance = [&](const Eye& eye) {
        return eye.age >= FORGOTTEN
                   ? 360
                   : std::max(std::abs(std::remainder(longitude - eye.place.longitude, 360)),
                              std::abs(latitude - eye.place.latitude));
    };
    Eye* eye = &*std::ranges::min_element(m_eyes, {}, distance);
    const Place place{longitude, latitude};
    if (distance(*eye) > FASTEST) {
        eye = &*std::ranges::max_element(m_eyes, {}, &Eye::age);
        eye->before = place;
    }
    eye->place = place;
    eye->age = 0;
}

void GroundEyes::endPeriod() {
    for (Eye& eye : m_eyes) {
        eye.before = eye.place;
        eye.age = std::min(eye.age + 1, FORGOTTEN);
    }
}

HeightFile::Window GroundEyes::around(const TerrainGrid& grid, const Place& place, int reach) {
    const double column = grid.getColumn(place.longitude), row = grid.getRow(place.latitude);
    const auto limit = [](double at, int end) {
        return static_cast<int>(std::clamp(at, 0.0, static_cast<double>(end)));
    };
    return {limit(column - reach, grid.columns), limit(column + reach, grid.columns),
            limit(row - reach, grid.rows), limit(row + reach, grid.rows)};
}

void GroundEyes::fetch(const HeightStack& ground) const {
    for (const auto& [place, before, age] : m_eyes) {
        if (age >= FORGOTTEN) continue;
        const double east = std::remainder(place.longitude - before.longitude, 360);
        const double north = place.latitude - before.latitude;
        const Place ahead{place.longitude + east * LEAD, place.latitude + north * LEAD};
        for (const HeightStack::Layer& layer : ground.getLayers()) {
            const HeightFile* file = layer.field->getFile();
            if (!file) continue;
            file->fetch(around(layer.field->getGrid(), place, READ_AHEAD / 2));
            file->fetch(around(layer.field->getGrid(), ahead, READ_AHEAD));
        }
    }
}

void GroundEyes::release(const HeightStack& ground) const {
    for (const HeightStack::Layer& layer : ground.getLayers()) {
        const HeightFile* file = layer.field->getFile();
        if (!file) continue;
        std::vector<HeightFile::Window> keep;
        for (const Eye& eye : m_eyes)
            if (eye.age < FORGOTTEN)
                keep.push_back(around(layer.field->getGrid(), eye.place, KEPT));
        std::ranges::sort(keep, {}, &HeightFile::Window::column);
        file->release(keep);
    }
}

} // namespace ig
