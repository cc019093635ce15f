// SPDX-License-Identifier: MIT
#pragma once

namespace ig {

constexpr double GRAVITY = 9.80665; ///< standard gravity, m/s²

/// A wind sea by its integral measures.
struct SeaState {
    double significant_height = 0; ///< m
    double peak_period = 0;        ///< s; meaningless in still water
    double wind = 0;               ///< mean speed at 10 m, m/s
};

/// The sea of a Beaufort number in [0, 12], whole or between two: wind at the middle of the
/// number's range and probable wave height of the World Meteorological Organization's scale; the
/// peak period is that of the JONSWAP growth laws (Hasselmann et al. 1973) for this wind and
/// height, within 3.9 to 5 times the root of the height.
SeaState seaState(double beaufort);

/// Mean square slope of the sea, both axes together, under a wind in m/s: Cox and Munk 1954, clean
/// surface. Their winds ended at 14 m/s; the law is held above 25 m/s.
double meanSquareSlope(double wind);

/// Share of the sea covered by whitecaps under a wind in m/s: Monahan and O'Muircheartaigh 1980,
/// held at 0.6.
double whitecapCover(double wind);

/// Distribution of a wind sea's energy over wave vectors, up to a common factor: JONSWAP frequency
/// spectrum (Hasselmann et al. 1973) with the peak enhancement of DNV-RP-C205, and directional
/// spreading of Mitsuyasu et al. 1975 with the greatest concentration 10 (Goda and Suzuki's value
/// for wind waves). Whoever samples it scales the sum to the variance Hs² / 16.
class WaveSpectrum {
public:
    /// `direction_x`, `direction_y`: unit vector that the waves run towards.
    WaveSpectrum(const SeaState& sea, double direction_x, double direction_y);

    /// Energy per unit of wave-vector plane at (kx, ky), rad/m. 0 at the origin and in still water.
    double density(double kx, double ky) const;

private:
    double m_peak_k; ///< wave number of the peak, 0 in still water
    double m_log_gamma;
    double m_direction_x, m_direction_y;
};

} // namespace ig
