// SPDX-License-Identifier: MIT
#include "Spectrum.h"

#include <cmath>
#include <gtest/gtest.h>
#include <numbers>

namespace ig {
namespace {

/// The energy of all directions at one frequency, as a density over frequency (up to a factor).
double overFrequency(const WaveSpectrum& spectrum, double omega) {
    constexpr int STEPS = 720;
    const double k = omega * omega / GRAVITY;
    double sum = 0;
    for (int i = 0; i < STEPS; i++) {
        const double angle = 2 * std::numbers::pi * i / STEPS;
        sum += spectrum.density(k * std::cos(angle), k * std::sin(angle));
    }
    return sum / STEPS * k * 2 * omega / GRAVITY; // k dk dθ = k (2 ω / g) dω dθ
}

TEST(Spectrum, AllDirectionsTogetherAreJonswap) {
    const SeaState sea{5.5, 11.1, 19};
    const WaveSpectrum spectrum(sea, 0.6, -0.8);
    const double peak = 2 * std::numbers::pi / sea.peak_period;
    const double gamma = std::exp(5.75 - 1.15 * sea.peak_period / std::sqrt(5.5));
    ASSERT_GT(gamma, 1.0); // or the peak would not be tested
    const auto jonswap = [&](double ratio) {
        const double sigma = ratio <= 1 ? 0.07 : 0.09;
        const double bump = std::exp(-std::pow((ratio - 1) / sigma, 2) / 2);
        return std::pow(ratio, -5) * std::exp(-1.25 * std::pow(ratio, -4)) * std::pow(gamma, bump);
    };
    const double unit = overFrequency(spectrum, peak) / jonswap(1);
    // The concentration of directions runs from 10 at the peak to 1 at the ends of this range: the
    // spreading must integrate to the same everywhere.
    for (double ratio : {0.6, 0.75, 0.9, 0.95, 1.05, 1.3, 2.0, 5.0, 12.0})
        EXPECT_NEAR(overFrequency(spectrum, ratio * peak) / unit / jonswap(ratio), 1, 2e-3)
            << ratio;
}

TEST(Spectrum, WavesRunWithTheWindAndHardlyAgainstIt) {
    const WaveSpectrum spectrum({2, 7.1, 9.4}, 0.6, -0.8);
    const double peak = 2 * std::numbers::pi / 7.1, k = peak * peak / GRAVITY;
    const double with = spectrum.density(0.6 * k, -0.8 * k);
    EXPECT_NEAR(spectrum.density(0.8 * k, 0.6 * k) / with, std::pow(0.5, 10), 1e-9); // abeam
    EXPECT_LT(spectrum.density(-0.6 * k, 0.8 * k), 1e-12 * with);
    EXPECT_EQ(spectrum.density(0, 0), 0);
}

TEST(Spectrum, SeaStatesGrowBetweenWholeBeaufortNumbersToo) {
    SeaState last = seaState(0);
    EXPECT_EQ(last.significant_height, 0);
    for (int quarter = 1; quarter <= 48; quarter++) {
        const double b = quarter / 4.0;
        const SeaState sea = seaState(b);
        EXPECT_GT(sea.significant_height, last.significant_height) << b;
        EXPECT_GT(sea.wind, last.wind) << b;
        EXPECT_GE(sea.peak_period, last.peak_period) << b;
        last = sea;
    }
    EXPECT_EQ(seaState(40).significant_height, seaState(12).significant_height);
}

} // namespace
} // namespace ig
