// SPDX-License-Identifier: MIT
#pragma once

#include "Cascade.h"
#include "SurfaceSampler.h"
#include "plugins/ocean/OceanFrame.h"

#include <array>

namespace ig {

/// What the sea is told to be.
struct SeaSettings {
    double beaufort = 3; ///< [0, 12]
    double wind = 0;     ///< over the sea, m/s, not negative
    double angle = 0;    ///< where the waves come from, degrees clockwise from north

    friend bool operator==(const SeaSettings&, const SeaSettings&) = default;
};

/// The one wave function of the sea over a plane, x east and y north in metres: four tiles of waves
/// from 1 km to 16 cm, evolved together to a moment. Evolving fills the arrays of an `OceanFrame`;
/// the sampler answers from these same arrays, of which it needs no slopes. The owner evolves it
/// once per frame.
///
/// The sea depends on nothing but the times at which it was evolved and the settings at each. New
/// settings take effect at the next evolution, at most ten times a second: the waves' energies then
/// ease to the new ones within 10 s, and since frequencies and phases belong to the modes for ever,
/// nothing jumps. The first evolution starts with the settings as they are.
///
/// The same bits everywhere: what happens per frame is exactly rounded arithmetic. Target energies
/// and easing need exp and pow, whose last bit differs between libraries; they are rounded to
/// single precision, which hides that but for about one wave in 10⁸, and moves that one by a
/// ten-millionth of its height.
class WaveField {
public:
    explicit WaveField(const SeaSettings& settings = {});
    WaveField(const WaveField&) = delete; // the frame record points into its owner
    WaveField& operator=(const WaveField&) = delete;

    void set(const SeaSettings& settings) { m_settings = settings; }
    const SeaSettings& get() const { return m_settings; }

    /// Brings the sea to `time` (s), forwards or backwards. Not finite: nothing happens.
    void evolve(double time);
    /// Brings the slopes, the finest tile among them, to where the sea was last evolved, once: only
    /// pictures read them, and a sea that nobody draws goes without.
    void evolveSlopes();

    /// Its slopes are those of the last call of `evolveSlopes`.
    const OceanFrame& getFrame() const { return m_frame; }
    const SurfaceSampler& getSurface() const { return m_surface; }
    const std::array<Cascade, OceanFrame::TILES>& getCascades() const { return m_cascades; }

    /// The place of the plane on the earth, see `OceanFrame`.
    void setAnchor(double longitude, double latitude, double metres_per_longitude,
                   double metres_per_latitude);

private:
    Easing easingAt(double time) const;
    void retarget(double time);
    void aimWaves();
    void updateFrame(double time);

    SeaSettings m_settings, m_aimed;
    bool m_started = false;
    double m_time = 0;
    bool m_has_slopes = true; ///< of the present moment; at the start they are zero as all is
    double m_blend_start = 0; ///< s
    bool m_settled = true;    ///< the amplitudes are those of the target
    Eased m_wind;             ///< m/s

    CascadeWorkspace m_workspace;
    std::array<Cascade, OceanFrame::TILES> m_cascades;
    OceanFrame m_frame;
    SurfaceSampler m_surface;
};

} // namespace ig
