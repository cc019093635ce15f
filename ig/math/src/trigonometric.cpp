// SPDX-License-Identifier: MIT
// sin, cos and tan of the process.
//
// The C library chooses among several variants of its elementary functions by what the processor
// can do, and they differ in the last bit: enough for a floating ship to be elsewhere after a
// minute. This library therefore defines those functions itself, under their names and as the C
// standard has them, in plain arithmetic that rounds alike on every machine and with every
// compiler. It stands before the C library in whatever links it, so that all of the process calls
// these: the engine, the physics library, plug-ins, programs. They err by less than a unit in the
// last place. Neither errno nor the exception flags are set as the standard has them. The float
// forms round the double's answer.
//
// Method: the argument is reduced to [-π/4, π/4] with more than double precision, where a
// polynomial follows (W. J. Cody, W. Waite, "Software Manual for the Elementary Functions", 1980;
// for large arguments M. H. Payne, R. N. Hanek, "Radian reduction for trigonometric functions",
// 1983). The coefficients are minimax, by Remez' exchange, to a relative error of 2^-58.
#include "DoubleDouble.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <numbers>

namespace ig {
namespace {

__extension__ typedef unsigned __int128 Wide;
__extension__ typedef __int128 SignedWide;

/// An angle less a number of quarter turns.
struct Reduced {
    DoubleDouble angle; ///< within [-π/4, π/4] but for roundings
    int quarters;       ///< modulo 4, in its last two bits
};

/// Up to 2^20 quarter turns, which times 33 bits of π/2 are exact.
constexpr double FEW = 0x1p20;

Reduced reduceFew(double x) {
    constexpr double ROUND = 0x1.8p52; // adding it leaves whole numbers
    const double n = (x * (2 / std::numbers::pi) + ROUND) - ROUND;
    const int quarters = static_cast<int>(n);
    const double left = x - n * 0x1.921fb544p+0, next = n * 0x1.0b4611a6p-34; // both exact
    if (std::abs(left) > 0x1p-10) { // else the digits behind show
        const DoubleDouble angle = sumOfOrdered(left, -next);
        return {sumOfOrdered(angle.hi, angle.lo - n * 0x1.3198a2e037073p-69), quarters};
    }
    const DoubleDouble first = sum(left, -next);
    const DoubleDouble second = sum(first.hi, -(n * 0x1.3198a2ep-69));
    const double rest = first.lo + second.lo - n * 0x1.b839a252049c1p-104;
    return {sumOfOrdered(second.hi, rest), quarters};
}

/// Binary digits of 2/π behind the point.
constexpr std::array<std::uint64_t, 20> TWO_OVER_PI = {
    0xa2f9836e4e441529, 0xfc2757d1f534ddc0, 0xdb6295993c439041, 0xfe5163abdebbc561,
    0xb7246e3a424dd2e0, 0x06492eea09d1921c, 0xfe1deb1cb129a73e, 0xe88235f52ebb4484,
    0xe99c7026b45f7e41, 0x3991d639835339f4, 0x9c845f8bbdf9283b, 0x1ff897ffde05980f,
    0xef2f118b5a0a6d1f, 0x6d367ecf27cb09b7, 0x4f463f669e5fea2d, 0x7527bac7ebe5f17b,
    0x3d0739f78a5292ea, 0x6bfb5fb11f8d5d08, 0x56033046fc7b6bab, 0xf0cfbc209af4361d};

/// 64 digits of 2/π from the one of weight 2^-(begin + 1) on; those before the point are 0.
std::uint64_t getDigits(int begin) {
    const auto word = [](int i) { return i < 0 ? 0 : TWO_OVER_PI[static_cast<std::size_t>(i)]; };
    const int i = begin >> 6, shift = begin & 63;
    return shift == 0 ? word(i) : word(i) << shift | word(i + 1) >> (64 - shift);
}

/// With x = m · 2^e, m whole, x · 2/π modulo 4 is m times the digits of 2/π from weight 2^(1 - e)
/// on, modulo 2^192: what precedes gives whole turns. 192 digits leave 66 good ones of the worst.
Reduced reduceMany(double x) {
    int e = 0;
    const auto m = static_cast<std::uint64_t>(std::ldexp(std::frexp(std::abs(x), &e), 53));
    e -= 53;
    const Wide low = static_cast<Wide>(m) * getDigits(e - 2 + 128);
    const Wide middle = static_cast<Wide>(m) * getDigits(e - 2 + 64) + (low >> 64);
    const Wide high = static_cast<Wide>(m * getDigits(e - 2)) + (middle >> 64);
    const Wide quarters = high << 64 | static_cast<std::uint64_t>(middle); // the point after two
    const Wide behind = quarters << 2 | static_cast<std::uint64_t>(low) >> 62;
    const auto fraction = static_cast<SignedWide>(behind); // to the nearest whole: [-0.5, 0.5)
    const auto hi = static_cast<double>(fraction);
    const auto lo = static_cast<double>(fraction - static_cast<SignedWide>(hi));
    const int n = static_cast<int>(quarters >> 126) + (fraction < 0 ? 1 : 0);
    const DoubleDouble angle = DoubleDouble{hi * 0x1p-128, lo * 0x1p-128} * PI_HALF;
    if (x < 0) return {{-angle.hi, -angle.lo}, -n};
    return {angle, n};
}

/// `x` is finite.
Reduced reduce(double x) {
    if (std::abs(x) <= std::numbers::pi / 4) return {{x, 0}, 0};
    return std::abs(x) < FEW ? reduceFew(x) : reduceMany(x);
}

DoubleDouble getSine(const DoubleDouble& angle) {
    const double x = angle.hi, z = x * x;
    const double head = 0x1.111111110f861p-7 + z * (-0x1.a01a019c0e4c7p-13);
    const double tail =
        0x1.71de3574baadfp-19 + z * (-0x1.ae5e63cdc44e5p-26 + z * 0x1.5d9246de707fap-33);
    const double cubed = (z * x) * (-0x1.5555555555549p-3 + z * (head + (z * z) * tail));
    return sumOfOrdered(x, cubed + angle.lo * (1 - 0.5 * z));
}

DoubleDouble getCosine(const DoubleDouble& angle) {
    const double x = angle.hi, z = x * x;
    const double head =
        0x1.555555555554cp-5 + z * (-0x1.6c16c16c15162p-10 + z * 0x1.a01a019caef38p-16);
    const double tail =
        -0x1.27e4f807d6290p-22 + z * (0x1.1ee9ea6cc2958p-29 + z * -0x1.8fadd06f33f4ap-37);
    const DoubleDouble start = sumOfOrdered(1, -0.5 * z);
    const double square = z * z;
    return sumOfOrdered(start.hi,
                        start.lo + (square * (head + (z * square) * tail) - x * angle.lo));
}

double getSine(const Reduced& x) {
    const double value = (x.quarters & 1 ? getCosine(x.angle) : getSine(x.angle)).getValue();
    return x.quarters & 2 ? -value : value;
}

double getCosine(Reduced x) {
    x.quarters++;
    return getSine(x);
}

/// Below this the sine and the tangent are the angle.
constexpr double TINY = 0x1p-27;

double notANumber(double x) { return x - x; } // also of what is infinite

} // namespace
} // namespace ig

extern "C" {

double sin(double x) noexcept {
    if (std::abs(x) < ig::TINY) return x;
    if (!std::isfinite(x)) return ig::notANumber(x);
    return ig::getSine(ig::reduce(x));
}

double cos(double x) noexcept {
    if (!std::isfinite(x)) return ig::notANumber(x);
    return ig::getCosine(ig::reduce(x));
}

void sincos(double x, double* sine, double* cosine) noexcept {
    if (!std::isfinite(x)) {
        *sine = *cosine = ig::notANumber(x);
        return;
    }
    const ig::Reduced reduced = ig::reduce(x);
    *sine = std::abs(x) < ig::TINY ? x : ig::getSine(reduced);
    *cosine = ig::getCosine(reduced);
}

double tan(double x) noexcept {
    if (std::abs(x) < ig::TINY) return x;
    if (!std::isfinite(x)) return ig::notANumber(x);
    const ig::Reduced reduced = ig::reduce(x);
    const ig::DoubleDouble sine = ig::getSine(reduced.angle), cosine = ig::getCosine(reduced.angle);
    return reduced.quarters & 1 ? -(cosine / sine).getValue() : (sine / cosine).getValue();
}

float sinf(float x) noexcept { return static_cast<float>(sin(double(x))); }

float cosf(float x) noexcept { return static_cast<float>(cos(double(x))); }

void sincosf(float x, float* sine, float* cosine) noexcept {
    double exact_sine, exact_cosine;
    sincos(x, &exact_sine, &exact_cosine);
    *sine = static_cast<float>(exact_sine);
    *cosine = static_cast<float>(exact_cosine);
}

float tanf(float x) noexcept { return static_cast<float>(tan(double(x))); }

} // extern "C"
