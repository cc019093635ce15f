// SPDX-License-Identifier: MIT
#include "WaveField.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace ig {

namespace {

constexpr double RETARGET_PERIOD = 0.1; ///< s; a new spectrum costs more than a frame
/// Wind below this share of the Beaufort number's does not smooth the sea: the waves that the
/// number stands for were raised by some wind.
constexpr double LEAST_WIND_SHARE = 0.6;
/// Ripples keep at least this share of Cox and Munk's slopes, however much the tiles resolve.
constexpr double LEAST_RIPPLE_SHARE = 0.3;

/// Each tile takes over at the wave number where the coarser one's lattice ends, with its own waves
/// beginning at 5 to 6 to the edge. The edges have no small common multiples, so that repetitions
/// of one tile don't coincide with another's. The two coarse tiles, which make up nearly all of the
/// height, have 8 texels to their shortest wave, to keep the interpolated surface within 2 cm of
/// the waves' exact sum at moderate seas; the others 4.
std::array<Cascade, OceanFrame::TILES> makeCascades(const Lattice& lattice) {
    const auto last = [](double tile) { return 2 * std::numbers::pi / tile * Lattice::BAND; };
    return {Cascade({0, 1024, 256, 0, last(1024), false, 6.0}, lattice),
            Cascade({1, 176, 256, last(1024), last(176), false, 3.0}, lattice),
            Cascade({2, 30.25, 128, last(176), last(30.25), false, 1.2}, lattice),
            Cascade({3, 5.2, 128, last(30.25), last(5.2), true, 1.0}, lattice)};
}

} // namespace

WaveField::WaveField(const SeaSettings& settings)
    : m_settings(settings), m_cascades(makeCascades(m_workspace.lattice)) {}

void WaveField::setAnchor(double longitude, double latitude, double metres_per_longitude,
                          double metres_per_latitude) {
    m_frame.anchor_longitude = longitude;
    m_frame.anchor_latitude = latitude;
    m_frame.metres_per_longitude = metres_per_longitude;
    m_frame.metres_per_latitude = metres_per_latitude;
}

void WaveField::evolve(double time) {
    if (!std::isfinite(time)) return;
    if (m_started) m_blend_start = std::min(m_blend_start, time); // went back: blend from here on
    const bool due = !m_started || time >= m_blend_start + RETARGET_PERIOD;
    if (!m_started || (due && m_settings != m_aimed)) retarget(time);

    if (!m_settled) {
        const Easing easing = m_started ? easingAt(time) : Easing();
        for (Cascade& cascade : m_cascades)
            cascade.blend(easing);
        m_frame.wind = m_wind.value(easing);
        m_settled = easing.isSettled();
    }
    const double dt = m_started ? std::max(0.0, time - m_time) : 0;
    for (Cascade& cascade : m_cascades)
        cascade.evolve(time, dt, m_workspace);
    m_started = true;
    m_time = time;
    m_has_slopes = false;
    updateFrame(time);
    m_surface.setFrame(m_frame);
}

void WaveField::evolveSlopes() {
    if (m_has_slopes) return;
    for (Cascade& cascade : m_cascades)
        cascade.evolveSlopes(m_time, m_workspace);
    m_has_slopes = true;
}

Easing WaveField::easingAt(double time) const {
    return m_settled ? Easing() : Easing::after(time - m_blend_start);
}

/// Begins a new way from the sea as it is at `time` to the one that the settings ask for.
void WaveField::retarget(double time) {
    const Easing easing = easingAt(time);
    for (Cascade& cascade : m_cascades)
        cascade.hold(easing);
    m_wind.hold(easing);

    if (!m_started || m_settings.beaufort != m_aimed.beaufort || m_settings.angle != m_aimed.angle)
        aimWaves();
    const double least = LEAST_WIND_SHARE * seaState(m_settings.beaufort).wind;
    m_wind.target = static_cast<float>(std::max(m_settings.wind, least));
    m_aimed = m_settings;
    m_blend_start = time;
    m_settled = false;
}

void WaveField::aimWaves() {
    const SeaState sea = seaState(m_settings.beaufort);
    double variance = 0;
    for (int i = 0; i < OceanFrame::TILES; i++) {
        // Tile 0 counts once as it is and once turned clockwise: half the turn ahead of the wind.
        const double ahead = i == 0 ? OceanFrame::SECOND_TURN / 2 : 0;
        const double towards = (m_settings.angle + 180 - ahead) * std::numbers::pi / 180;
        const WaveSpectrum spectrum(sea, std::sin(towards), std::cos(towards));
        const double sum = m_cascades[i].aim(spectrum, m_workspace.lattice);
        if (!m_cascades[i].isSlopesOnly()) variance += sum;
    }
    const double wanted = sea.significant_height * sea.significant_height / 16;
    for (Cascade& cascade : m_cascades)
        cascade.scaleTarget(variance > 0 ? wanted / variance : 0);
}

void WaveField::updateFrame(double time) {
    double highest = 0, variance = 0, resolved = 0, mean_level = 0;
    for (int i = 0; i < OceanFrame::TILES; i++) {
        const Cascade& cascade = m_cascades[i];
        const Cascade::Measures& measures = cascade.getMeasures();
        const bool moves = !cascade.isSlopesOnly();
        m_frame.tiles[i] = {cascade.getTile(),
                            cascade.getResolution(),
                            cascade.isActive(),
                            moves ? cascade.getDisplacement() : nullptr,
                            cascade.getSlope(),
                            moves ? cascade.getFoam() : nullptr,
                            static_cast<float>(measures.slope_variance)};
        resolved += measures.slope_variance;
        if (!moves) continue;
        highest += cascade.getHighest() * (i == 0 ? std::numbers::sqrt2 : 1);
        variance += measures.variance;
        // Choppy waves spend less of the plane on crests than on troughs, which lowers the mean
        // level by ⟨h div D⟩ = −Σ k E; the surface is raised by as much.
        mean_level += measures.level_drop;
    }
    m_frame.version++;
    m_frame.time = time;
    m_frame.mean_level = mean_level;
    m_frame.highest_crest = highest + mean_level;
    m_frame.significant_height = 4 * std::sqrt(variance);
    m_frame.wave_direction = m_aimed.angle;
    const double slopes = meanSquareSlope(m_frame.wind);
    m_frame.ripple_slope_variance = std::max(LEAST_RIPPLE_SHARE * slopes, slopes - resolved) / 2;
    m_frame.whitecap_cover = whitecapCover(m_frame.wind);
}

} // namespace ig
