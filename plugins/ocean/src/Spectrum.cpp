// SPDX-License-Identifier: MIT
#include "Spectrum.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <numbers>

namespace ig {

namespace {

// Number 0 takes the period of number 1, so that between them only the height grows.
constexpr SeaState BEAUFORT[] = {
    {0, 1.6, 0},     {0.1, 1.6, 0.9},    {0.2, 2.2, 2.4},  {0.6, 3.9, 4.4},   {1, 5.0, 6.7},
    {2, 7.1, 9.4},   {3, 8.5, 12.3},     {4, 9.6, 15.5},   {5.5, 11.1, 19.0}, {7, 12.3, 22.6},
    {9, 13.8, 26.5}, {11.5, 15.4, 30.6}, {14, 16.8, 35.0},
};

/// Natural logarithm of JONSWAP's peak enhancement, DNV-RP-C205 section 3.5.5.
double logGamma(const SeaState& sea) {
    const double steepness = sea.peak_period / std::sqrt(sea.significant_height);
    return std::clamp(5.75 - 1.15 * steepness, 0.0, std::log(5.0));
}

/// ∫ cos²ˢ(θ/2) dθ over the circle is 2 √π Γ(s + ½) / Γ(s + 1); its inverse, with the ratio of the
/// gamma functions from its asymptotic series: within 0.06 % for s of 1 and more.
double spreadingNorm(double s) {
    const double ratio = std::sqrt(std::sqrt(s * s + s / 2 + 0.125));
    return ratio / (2 * std::sqrt(std::numbers::pi));
}

} // namespace

SeaState seaState(double beaufort) {
    const double b = std::clamp(beaufort, 0.0, 12.0);
    const int i = std::min(static_cast<int>(b), static_cast<int>(std::size(BEAUFORT)) - 2);
    const SeaState &low = BEAUFORT[i], &high = BEAUFORT[i + 1];
    const double w = b - i;
    return {std::lerp(low.significant_height, high.significant_height, w),
            std::lerp(low.peak_period, high.peak_period, w), std::lerp(low.wind, high.wind, w)};
}

double meanSquareSlope(double wind) { return 0.003 + 0.00512 * std::min(wind, 25.0); }

double whitecapCover(double wind) { return std::min(0.6, 3.84e-6 * std::pow(wind, 3.41)); }

WaveSpectrum::WaveSpectrum(const SeaState& sea, double direction_x, double direction_y)
    : m_peak_k(0), m_log_gamma(0), m_direction_x(direction_x), m_direction_y(direction_y) {
    if (!(sea.significant_height > 0)) return;
    const double peak_omega = 2 * std::numbers::pi / sea.peak_period;
    m_peak_k = peak_omega * peak_omega / GRAVITY;
    m_log_gamma = logGamma(sea);
}

double WaveSpectrum::density(double kx, double ky) const {
    const double k2 = kx * kx + ky * ky;
    if (!(k2 > 0) || !(m_peak_k > 0)) return 0;
    const double k = std::sqrt(k2);
    const double square = k / m_peak_k; // (ω / ωp)², deep water: ω² = g k
    const double x = std::sqrt(square);

    // S(ω) ∝ ω⁻⁵ exp(−1.25 (ωp / ω)⁴) γʳ, turned to wave vectors by dω / (k dk) = g / (2 ω k).
    const double width = x <= 1 ? 0.07 : 0.09;
    const double r = (x - 1) / width;
    const double enhancement = std::abs(r) < 6 ? m_log_gamma * std::exp(-0.5 * r * r) : 0;
    const double radial =
        std::exp(enhancement - 1.25 / (square * square)) / (square * square * square * k);

    const double s =
        std::clamp(10 * (x <= 1 ? square * square * x : 1 / (square * std::sqrt(x))), 1.0, 40.0);
    const double cosine = (kx * m_direction_x + ky * m_direction_y) / k;
    const double half_square = std::clamp((1 + cosine) / 2, 0.0, 1.0); // cos²(θ/2)
    return radial * spreadingNorm(s) * std::pow(half_square, s);
}

} // namespace ig
