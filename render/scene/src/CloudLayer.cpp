// SPDX-License-Identifier: MIT
#include "render/scene/CloudLayer.h"

#include "ig/math/EllipsoidModel.h"
#include "render/scene/ShaderConstants.h"
#include "render/scene/SkyLight.h"
#include "render/scene/remainders.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace ig {

namespace {

constexpr double PERIOD = double{CLOUD_PERIOD};
constexpr double METRES = EllipsoidModel::MEAN_RADIUS * DEG_TO_RAD<double>; ///< per degree
constexpr double FARTHEST = 2; ///< degrees from the anchor: farther off the field is laid out anew
constexpr float SOFTNESS = 0.07f;
const dvec2 BEGINNING{
    6912, 9472}; ///< m: so that half covered, the sun shines on the demo's helipad at first

dvec2 anchorOf(const dvec3& geodetic) { return {std::floor(geodetic.x), std::floor(geodetic.y)}; }

} // namespace

CloudLayer::CloudLayer() : m_field(makeCloudPattern()) {
    // Thickness as it is seen: with the heaps laid on, which repeat more often.
    std::vector<float> values;
    constexpr int HEAPS = static_cast<int>(CLOUD_HEAPS);
    const int edge = m_field.edge;
    for (int y = 0; y < edge; y += 2)
        for (int x = 0; x < edge; x += 2) {
            const int heap = 4 * (y * HEAPS % edge * edge + x * HEAPS % edge) + 1;
            values.push_back(getThickness(x, y) +
                             (static_cast<float>(m_field.texels[heap]) / 255 - 0.5f) * CLOUD_FRAY);
        }
    std::sort(values.begin(), values.end());
    for (int i = 0; i <= STEPS; i++)
        m_thresholds[i] = values[(values.size() - 1) * (STEPS - i) / STEPS];
    m_thresholds[0] += 2 * SOFTNESS;
    m_thresholds[STEPS] -= 2 * SOFTNESS;
}

void CloudLayer::drift(const FrameInfo& frame) {
    const double dt = frame.time - m_time;
    m_time = frame.time;
    m_drift = {std::fmod(m_drift.x + frame.wind.x * dt, PERIOD),
               std::fmod(m_drift.y + frame.wind.y * dt, PERIOD)};
}

void CloudLayer::follow(const dvec3& geodetic) {
    if (!isNear(geodetic)) m_anchor = anchorOf(geodetic);
}

bool CloudLayer::isNear(const dvec3& geodetic) const {
    return std::abs(geodetic.x - m_anchor.x) < FARTHEST &&
           std::abs(geodetic.y - m_anchor.y) < FARTHEST;
}

void CloudLayer::forget() {
    m_anchor = {1e9, 1e9};
    m_drift = {};
    m_time = 0;
}

float CloudLayer::getCover(const FrameInfo& frame) {
    return std::lerp(std::clamp(frame.cloud_cover, 0.0f, 1.0f), 1.0f,
                     std::clamp(frame.overcast, 0.0f, 1.0f));
}

float CloudLayer::getThreshold(float cover) const {
    const float at = cover * STEPS;
    const int i = std::min(static_cast<int>(at), STEPS - 1);
    return std::lerp(m_thresholds[i], m_thresholds[i + 1], at - static_cast<float>(i));
}

float CloudLayer::getSoftness(float cover) {
    return SOFTNESS * std::clamp(6 * std::min(cover, 1 - cover), 0.1f, 1.0f);
}

vec2 CloudLayer::getPlace(const dvec3& geodetic) const {
    const dvec2 anchor = isNear(geodetic) ? m_anchor : anchorOf(geodetic);
    const double east = (geodetic.x - anchor.x) * METRES * std::cos(anchor.y * DEG_TO_RAD<double>);
    const double north = (geodetic.y - anchor.y) * METRES;
    return {fraction((BEGINNING.x + east - m_drift.x) / PERIOD),
            fraction((BEGINNING.y + north - m_drift.y) / PERIOD)};
}

float CloudLayer::getThickness(int x, int y) const {
    return static_cast<float>(m_field.texels[4 * (y * m_field.edge + x)]) / 255;
}

float CloudLayer::getDensity(vec2 place, float height, float cover) const {
    const int edge = m_field.edge;
    const float x = place.x * static_cast<float>(edge) - 0.5f + static_cast<float>(edge);
    const float y = place.y * static_cast<float>(edge) - 0.5f + static_cast<float>(edge);
    const int i = static_cast<int>(x), j = static_cast<int>(y);
    const float u = x - static_cast<float>(i), v = y - static_cast<float>(j);
    const auto at = [&](int a, int b) { return getThickness((i + a) % edge, (j + b) % edge); };
    const float here =
        std::lerp(std::lerp(at(0, 0), at(1, 0), u), std::lerp(at(0, 1), at(1, 1), u), v);
    const float soft = getSoftness(cover) + CLOUD_FRAY / 4, threshold = getThreshold(cover),
                rise = here - threshold;
    const float thin = 1 - std::clamp(rise / (CLOUD_THICKEST - threshold), 0.0f, 1.0f);
    const float top = 1 - thin * thin;
    return smoothStep(-soft, soft, rise) *
           std::max(smoothStep(height - 0.35f, height + 0.35f, top), smoothStep(0.2f, 0, height));
}

} // namespace ig
