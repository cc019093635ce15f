// SPDX-License-Identifier: MIT
#pragma once

#include "Easing.h"
#include "Fft.h"
#include "Spectrum.h"

#include <vector>

namespace ig {

/// The wave vectors that every tile holds: whole multiples (m, n) of 2π / tile with length up to
/// BAND, one of each pair ±(m, n), and where the pair stands in a spectrum as `Fft` takes it.
struct Lattice {
    static constexpr int BAND = 32;
    static constexpr int SIDE = 2 * BAND + 1; ///< a spectrum has SIDE × SIDE values

    struct Pair {
        int m, n;
        int plus, minus; ///< index of (m, n) and of (−m, −n)
    };
    std::vector<Pair> pairs;

    Lattice();
};

/// One wave of a tile: √(2 energy) · cos(2π (phase − frequency · t) + kx x + ky y).
struct Wave {
    double kx, ky;    ///< rad/m
    double frequency; ///< Hz
    double phase;     ///< turns, [0, 1)
    double energy;    ///< variance, m²
};

/// What all tiles share while they evolve, one after the other: arrays for two spectra.
struct CascadeWorkspace {
    struct Spectrum {
        std::vector<float> re, im; ///< zero off the lattice

        Fft::Band getBand() const { return {re.data(), im.data()}; }
    };
    Lattice lattice;
    std::vector<Fft> transforms; ///< one of each size: buffers that stay in the cache
    Spectrum first, second;
    std::vector<float> wave_re, wave_im; ///< complex amplitude of each pair's (m, n)

    CascadeWorkspace();
    /// The transform of a size, made when it is asked for first.
    Fft& getTransform(int size);
};

/// The waves of one tile: the modes with wave numbers in [k_min, k_max), each with a frequency and
/// a phase of its own for ever, and an energy that eases from a start to a target value. Because
/// settings change energies only, the surface stays continuous whatever is set and however often.
class Cascade {
public:
    struct Settings {
        int id;         ///< seeds the phases
        double tile;    ///< m
        int resolution; ///< texels along the edge, a power of two above 2 BAND
        double k_min, k_max;
        bool slopes_only;  ///< too low to float on: tilts the surface, doesn't move it
        double foam_decay; ///< time constant, s
    };
    Cascade(const Settings& settings, const Lattice& lattice);

    /// Makes the energies as they are now on their way, and their rates, the start of a new way.
    void hold(const Easing& easing);
    /// Sets the target energies from a spectrum, not yet scaled. Returns their sum.
    double aim(const WaveSpectrum& spectrum, const Lattice& lattice);
    void scaleTarget(double factor);
    /// Sets the amplitudes for the energies as they are now on their way.
    void blend(const Easing& easing);

    /// Sums over the waves as last blended, E their energies.
    struct Measures {
        double variance = 0;       ///< Σ E, m²
        double level_drop = 0;     ///< Σ k E, m
        double slope_variance = 0; ///< Σ k² E
    };
    const Measures& getMeasures() const { return m_measures; }

    /// Fills displacement, height and divergence with the surface at `time`, s. Ages the foam by
    /// `dt` seconds and adds that of the present crests.
    void evolve(double time, double dt, CascadeWorkspace& workspace);
    /// Fills the slopes, which only pictures read: a third of the work, of the finest tile all.
    void evolveSlopes(double time, CascadeWorkspace& workspace);

    double getTile() const { return m_settings.tile; }
    int getResolution() const { return m_settings.resolution; }
    bool isSlopesOnly() const { return m_settings.slopes_only; }
    bool isActive() const { return m_measures.variance > 0; } ///< whether any wave carries energy
    const float* getDisplacement() const { return m_displacement.data(); }
    const float* getSlope() const { return m_slope.data(); }
    const float* getFoam() const { return m_foam.data(); }
    double getHighest() const { return m_highest; } ///< greatest |height| of a texel, m

    /// The waves with energy as last blended, for tests and for tools that need the sea as a sum.
    std::vector<Wave> listWaves() const;

private:
    void computeWaves(double time, CascadeWorkspace& workspace) const;
    void finishTexels(std::size_t begin, std::size_t end, float decay);
    void scatterSlopes(CascadeWorkspace& workspace) const;
    void scatterDisplacement(CascadeWorkspace& workspace) const;
    void scatterHeight(CascadeWorkspace& workspace) const;

    Settings m_settings;
    Measures m_measures;
    double m_highest = 0;
    // One element a pair of the lattice; [0] is the wave towards +(m, n), [1] the one against it.
    std::vector<float> m_kx, m_ky, m_k;
    std::vector<double> m_frequency;
    /// What the waves are raised by against bilinear interpolation, see `compensate`.
    std::vector<float> m_compensation;
    std::vector<float> m_share[2]; ///< how much of the mode's cell lies in [k_min, k_max)
    std::vector<double> m_phase[2];
    std::vector<float> m_start[2], m_rate[2], m_target[2]; ///< energies, m², and m²/s
    std::vector<float> m_amplitude[2]; ///< half the wave's amplitude, compensated
    std::vector<float> m_displacement, m_slope, m_foam;
};

} // namespace ig
