// SPDX-License-Identifier: MIT
#include "render/scene/GlassFilm.h"

#include "ig/app/Renderer.h"
#include "render/scene/shares.h"

#include <algorithm>
#include <cmath>

namespace ig {

namespace {

constexpr int BLADE = 4;              ///< bins on either side that the blade itself keeps clear
constexpr float REFILL = 2.2f;        ///< s in which heavy rain brings back two thirds of the drops
constexpr float GATHERING = 25;       ///< s in which heavy snow covers an open pane
constexpr float MELTING = 40;         ///< s in which a covered pane is clear again
constexpr float BLOWN_OFF = 0.6f;     ///< share of the snow that the airstream takes at speed
constexpr float HANGING = 22;         ///< m/s of air at which drops neither run down nor up
constexpr float STREAKING = 40;       ///< m/s from which all of them are driven
constexpr float SLOWEST_DOWN = 8;     ///< m/s up to which gravity alone counts
constexpr float DOWN_SPEED = 0.07f;   ///< m/s of a drop that runs down
constexpr float DRIVEN_SPEED = 0.2f;  ///< m/s of one that the air just drives
constexpr float DRIVEN_GAIN = 0.03f;  ///< m/s more for each m/s of air
constexpr double TRAVEL_PERIOD = 256; ///< m after which drops begin anew: floats stay exact

/// Share that is back after so many seconds.
float refilled(float seconds, float rain) { return 1 - std::exp(-seconds * rain / REFILL); }

} // namespace

float GlassFilm::toTurn(float angle_rad) {
    const float x = std::cos(angle_rad), y = std::sin(angle_rad);
    const float t = y / (std::abs(x) + std::abs(y));
    return 0.25f * (x < 0 ? 2 - t : t);
}

void GlassFilm::update(const std::vector<BladeItem>& blades, const FrameView& view,
                       const FrameInfo& frame) {
    if (m_begun && frame.time < m_time) forget();
    const auto dt = m_begun ? static_cast<float>(frame.time - m_time) : 0.0f;
    m_begun = true;
    m_time = frame.time;
    m_air = vec3(frame.wind.x, frame.wind.y, 0) - vec3(view.toFrameDirection(frame.eye_velocity));
    m_airspeed = length(m_air);

    const float stays = 1 - BLOWN_OFF * smoothStep(HANGING, STREAKING, m_airspeed);
    const float gathers = frame.snow > 0 ? frame.snow / GATHERING : -1 / MELTING;
    const Weather weather{dt, frame.rain, stays * frame.snow, gathers * dt};
    m_snow = std::clamp(m_snow + weather.snow_change, 0.0f, std::max(stays, 0.0f));
    run(dt, frame.rain);
    const Blades of_sectors = match(blades);
    for (std::size_t i = 0; i < m_sectors.size(); i++) {
        Sector& sector = m_sectors[i];
        const BladeItem* blade = of_sectors[i];
        if (!blade) {
            sector.blade = nullptr;
            m_places[3 * i + 2].w = 0;
            continue;
        }
        if (sector.blade != blade->node) begin(sector, *blade);
        refill(sector, weather);
        wipe(sector, toTurn(blade->angle), weather);
        place(i, *blade);
    }
}

/// A sector keeps its blade; one that has none gets a blade that is new.
GlassFilm::Blades GlassFilm::match(const std::vector<BladeItem>& blades) const {
    Blades matched{};
    const std::size_t count = std::min(blades.size(), matched.size());
    for (std::size_t b = 0; b < count; b++)
        for (std::size_t i = 0; i < matched.size(); i++)
            if (m_sectors[i].blade == blades[b].node) matched[i] = &blades[b];
    for (std::size_t b = 0; b < count; b++)
        if (std::find(matched.begin(), matched.end(), &blades[b]) == matched.end())
            *std::find(matched.begin(), matched.end(), nullptr) = &blades[b];
    return matched;
}

void GlassFilm::begin(Sector& sector, const BladeItem& blade) const {
    sector.blade = blade.node;
    sector.turn = toTurn(blade.angle);
    sector.water.fill(1);
    sector.snow.fill(m_snow);
}

void GlassFilm::refill(Sector& sector, const Weather& weather) const {
    const float share = refilled(weather.dt, weather.rain);
    for (float& water : sector.water)
        water += (1 - water) * share;
    for (float& snow : sector.snow)
        snow = std::clamp(snow + weather.snow_change, 0.0f, m_snow);
}

/// The bins between the last place and this one, each as long ago as the blade was there.
void GlassFilm::wipe(Sector& sector, float turn, const Weather& weather) {
    const float step = std::remainder(turn - sector.turn, 1.0f) * BINS;
    if (step == 0) return;
    const int from = static_cast<int>(std::floor(sector.turn * BINS));
    const int count = static_cast<int>(std::ceil(std::abs(step)));
    for (int i = 0; i <= count; i++) {
        const auto bin = static_cast<std::size_t>((from + (step > 0 ? i : -i)) & (BINS - 1));
        const float way = static_cast<float>(i) / std::abs(step);
        const float ago = weather.dt * std::max(1 - way, 0.0f);
        sector.water[bin] = std::min(sector.water[bin], refilled(ago, weather.rain));
        sector.snow[bin] = std::min(sector.snow[bin], ago * weather.snow / GATHERING);
    }
    const int at = static_cast<int>(std::floor(turn * BINS));
    for (int i = at - BLADE; i <= at + BLADE; i++)
        sector.water[static_cast<std::size_t>(i & (BINS - 1))] = 0;
    sector.turn = turn;
}

/// Drops run down by their weight until the air holds them, and are driven by it beyond.
void GlassFilm::run(float dt, float rain) {
    const float held = std::min(m_airspeed / HANGING, 1.0f);
    const float speed = m_airspeed < HANGING ? DOWN_SPEED * (1 - held * held) * (0.5f + 0.5f * rain)
                                             : DRIVEN_SPEED + DRIVEN_GAIN * (m_airspeed - HANGING);
    m_travel = std::fmod(m_travel + static_cast<double>(speed * dt), TRAVEL_PERIOD);
}

vec4 GlassFilm::getFlow() const {
    const bool driven = m_airspeed >= HANGING;
    const float running = driven ? smoothStep(HANGING, STREAKING, m_airspeed)
                                 : 1 - smoothStep(SLOWEST_DOWN, HANGING, m_airspeed);
    return {static_cast<float>(m_travel), driven ? 1.0f : 0.0f, running, m_snow};
}

void GlassFilm::place(std::size_t i, const BladeItem& blade) {
    m_places[3 * i] = vec4(blade.pivot, blade.inner);
    m_places[3 * i + 1] = vec4(blade.ahead, blade.outer);
    m_places[3 * i + 2] = vec4(blade.aside, 1);
    const Sector& sector = m_sectors[i];
    for (std::size_t b = 0; b < BINS; b++) {
        m_texels[2 * (i * BINS + b)] = toByte(sector.water[b]);
        m_texels[2 * (i * BINS + b) + 1] = toByte(sector.snow[b]);
    }
}

} // namespace ig
