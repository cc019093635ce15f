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

TEST(Fft, IsTheDirectSumOfTheBandAtEverySize) {
    constexpr int BAND = 32, SIDE = 2 * BAND + 1;
    std::mt19937 random(7);
    std::uniform_real_distribution<float> amplitude(-1, 1);
    std::vector<float> re(SIDE * SIDE), im(SIDE * SIDE);
    for (auto* array : {&re, &im})
        for (float& value : *array)
            value = amplitude(random);
    for (const int size : {128, 256}) {
        Fft fft(size, BAND);
        std::vector<float> out(static_cast<std::size_t>(3 * size * size), 7);
        for (int time = 0; time < 2; time++) // the input is not consumed
            fft.inverse(re.data(), im.data(), out.data(), 3);
        for (int sample = 0; sample < 40; sample++) {
            const int x = static_cast<int>(random()) & (size - 1);
            const int y = static_cast<int>(random()) & (size - 1);
            std::complex<double> sum = 0;
            for (int m = -BAND; m <= BAND; m++)
                for (int n = -BAND; n <= BAND; n++) {
                    const int i = (n + BAND) * SIDE + m + BAND;
                    sum += std::complex<double>(static_cast<double>(re.data()[i]),
                                                static_cast<double>(im.data()[i])) *
                           std::polar(1.0, 2 * std::numbers::pi * (m * x + n * y) / size);
                }
            // 4225 unit terms in single precision: the sum is about 50, its rounding about 1e-5.
            const float* found = out.data() + 3 * (y * size + x);
            EXPECT_NEAR(static_cast<double>(found[0]), sum.real(), 1e-4) << x << ' ' << y;
            EXPECT_NEAR(static_cast<double>(found[1]), sum.imag(), 1e-4) << x << ' ' << y;
            EXPECT_EQ(found[2], 7); // what lies between is left alone
        }
    }
}

} // namespace
} // namespace ocean
