// SPDX-License-Identifier: MIT
#include "Fft.h"

#include <cmath>
#include <complex>
#include <gtest/gtest.h>
#include <numbers>
#include <random>
#include <vector>

namespace ocean {
namespace {

TEST(Fft, IsTheDirectSumOfABandLimitedSpectrum) {
    constexpr int N = Fft::SIZE, BAND = 32;
    std::mt19937 random(7);
    std::uniform_real_distribution<float> amplitude(-1, 1);
    std::vector<float> re(N * N), im(N * N), out_re(N * N), out_im(N * N);
    for (int m = -BAND; m <= BAND; m++)
        for (int n = -BAND; n <= BAND; n++) {
            const int i = (m + N) % N * N + (n + N) % N;
            re.data()[i] = amplitude(random);
            im.data()[i] = amplitude(random);
        }
    Fft fft(BAND);
    fft.inverse(re.data(), im.data(), out_re.data(), out_im.data());
    fft.inverse(re.data(), im.data(), out_re.data(), out_im.data()); // the input is not consumed
    for (int sample = 0; sample < 40; sample++) {
        const int x = static_cast<int>(random() % N), y = static_cast<int>(random() % N);
        std::complex<double> sum = 0;
        for (int m = 0; m < N; m++)
            for (int n = 0; n < N; n++) {
                const std::size_t i = static_cast<std::size_t>(m * N + n);
                sum +=
                    std::complex<double>(static_cast<double>(re[i]), static_cast<double>(im[i])) *
                    std::polar(1.0, 2 * std::numbers::pi * (m * x + n * y) / N);
            }
        // 4225 unit terms in single precision: the sum is about 50, its rounding about 1e-5.
        EXPECT_NEAR(static_cast<double>(out_re.data()[y * N + x]), sum.real(), 1e-4)
            << x << ' ' << y;
        EXPECT_NEAR(static_cast<double>(out_im.data()[y * N + x]), sum.imag(), 1e-4)
            << x << ' ' << y;
    }
}

} // namespace
} // namespace ocean
