// SPDX-License-Identifier: MIT
// exp, log, pow and cbrt of the process, their forms of base 2 and 10, and the hyperbolic
// functions, which projections of maps need. Why they are here: trigonometric.cpp.
//
// Method: a table brings the argument close to 0 or 1, where the series is short (P. T. P. Tang,
// "Table-driven implementation of the exponential function", 1989, and "... of the logarithm
// function", 1990); the logarithm comes in twice the precision, because pow multiplies its error.
#include "DoubleDouble.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>

namespace ig {
namespace {

constexpr DoubleDouble LN_2{0x1.62e42fefa39efp-1, 0x1.abc9e3b39803fp-56};
constexpr DoubleDouble PER_LN_2{0x1.71547652b82fep+0, 0x1.777d0ffda0d24p-56};
constexpr DoubleDouble PER_LN_10{0x1.bcb7b1526e50ep-2, 0x1.95355baaafad3p-57};

constexpr int STEPS = 128; ///< of the exponential's table between two powers of 2

/// 2^(j / STEPS), by the series of exp.
constexpr auto POWERS = [] {
    std::array<DoubleDouble, STEPS> powers;
    for (int j = 0; j < STEPS; j++) {
        const DoubleDouble x = LN_2 * DoubleDouble{double(j) / STEPS, 0};
        DoubleDouble term{1, 0}, power = term;
        for (int n = 1; n < 28; n++) {
            term = term * x / DoubleDouble{double(n), 0};
            power = power + term;
        }
        powers[static_cast<std::size_t>(j)] = power;
    }
    return powers;
}();

/// value · 2^e, `value` within [1/2, 2], for all e that make sense: also where it overflows, and
/// where it is subnormal.
double scale(double value, int e) {
    const auto shift = [](double x, int by) {
        return std::bit_cast<double>(std::bit_cast<std::int64_t>(x) + (std::int64_t(by) << 52));
    };
    if (e > 1000) return shift(value, e - 1000) * 0x1p1000;
    if (e < -1000) return shift(value, e + 1000) * 0x1p-1000;
    return shift(value, e);
}

/// 2^(k / STEPS) · e^r for small r, as a number within [1/2, 2] and a power of 2.
struct Raised {
    DoubleDouble number;
    int twos;
};

Raised raise(double k, double r) {
    const int whole = static_cast<int>(k), j = whole & (STEPS - 1);
    const DoubleDouble& power = POWERS[static_cast<std::size_t>(j)];
    const double z = r * r;
    const double beyond_one = r + z * (0.5 + r * (1.0 / 6)) + z * z * (1.0 / 24 + r * (1.0 / 120));
    return {sumOfOrdered(power.hi, power.lo + power.hi * beyond_one), (whole - j) / STEPS};
}

double getValue(const Raised& raised) { return scale(raised.number.getValue(), raised.twos); }

constexpr double ROUND = 0x1.8p52; ///< adding it leaves whole numbers

/// exp(x), from -746 to 710.
Raised raise(const DoubleDouble& x) {
    const double k = (x.hi * (STEPS * PER_LN_2.hi) + ROUND) - ROUND;
    // ln 2 / STEPS in two parts, the first of 35 bits, so that its multiples are exact.
    return raise(k, x.hi - k * 0x1.62e42fef8p-8 - (k * 0x1.1cf79abc9e3b4p-43 - x.lo));
}

/// exp(x), whatever x.
double getExponential(const DoubleDouble& x) {
    if (x.hi > 710) return HUGE_VAL;
    if (x.hi < -746) return 0;
    return getValue(raise(x));
}

/// A factor of few bits that brings a number close to 1, and minus its logarithm.
struct Anchor {
    double factor = 0;
    DoubleDouble logarithm;
};

/// Of the numbers around j / STEPS, for those from sqrt(1/2) to sqrt(2).
constexpr int FIRST_ANCHOR = 90;
constexpr auto ANCHORS = [] {
    std::array<Anchor, 92> anchors;
    for (int i = 0; i < int(anchors.size()); i++) {
        const int tenth_bits = (1024 * STEPS + (FIRST_ANCHOR + i) / 2) / (FIRST_ANCHOR + i);
        const DoubleDouble factor{tenth_bits / 1024.0, 0}, one{1, 0};
        // -log f = 2 artanh((1 - f) / (1 + f))
        const DoubleDouble x = (one - factor) / (one + factor), square = x * x;
        DoubleDouble power = x, half = x;
        for (int n = 3; n < 46; n += 2) {
            power = power * square;
            half = half + power / DoubleDouble{double(n), 0};
        }
        anchors[static_cast<std::size_t>(i)] = {factor.hi, half + half};
    }
    return anchors;
}();

/// Without the last 27 bits, so that its square, or its product with another such, is exact.
double shorten(double x) {
    return std::bit_cast<double>(std::bit_cast<std::int64_t>(x) & ~std::int64_t(0x7ffffff));
}

/// A finite positive number as 2^twos · (1 + r) / factor.
struct Anchored {
    double twos;
    const Anchor& anchor;
    DoubleDouble r; ///< exact
};

Anchored findAnchor(double x) {
    constexpr std::int64_t SQRT_HALF = 0x3fe6a09e667f3bcd; // as a double's bits
    double subnormal = 0;
    if (x < 0x1p-1022) {
        x *= 0x1p54;
        subnormal = 54;
    }
    const auto bits = std::bit_cast<std::int64_t>(x);
    const std::int64_t twos = (bits - SQRT_HALF) >> 52;
    const double m = std::bit_cast<double>(bits - twos * (std::int64_t(1) << 52));
    const Anchor& anchor = ANCHORS[static_cast<std::size_t>(int(m * STEPS + 0.5) - FIRST_ANCHOR)];
    const double m_short = shorten(m);
    const DoubleDouble r = sum(m_short * anchor.factor - 1, (m - m_short) * anchor.factor);
    return {double(twos) - subnormal, anchor, r};
}

/// ln 2 in two parts, the first of 32 bits, so that its multiples are exact.
constexpr DoubleDouble LN_2_SHORT{0x1.62e42feep-1, 0x1.a39ef35793c76p-33};

/// The series of log(1 + r) behind the square, divided by r³.
double getBehindSquare(double r) {
    const double z = r * r;
    return (1.0 / 3 + r * (-1.0 / 4)) + z * (1.0 / 5 + r * (-1.0 / 6)) +
           z * z * ((1.0 / 7 + r * (-1.0 / 8)) + z * (1.0 / 9));
}

/// The logarithm of a finite positive number, to about 2^-67 of itself.
DoubleDouble getLogarithm(double x) {
    const auto [twos, anchor, r] = findAnchor(x);
    const double r_short = shorten(r.hi), square = r_short * r_short;
    const double behind_square = -0.5 * (r.hi - r_short) * (r.hi + r_short) - r.hi * r.lo +
                                 r.hi * r.hi * r.hi * getBehindSquare(r.hi);
    const DoubleDouble whole = sumOfOrdered(twos * LN_2_SHORT.hi, anchor.logarithm.hi);
    const DoubleDouble first = sumOfOrdered(whole.hi, r.hi), second = sum(first.hi, -0.5 * square);
    const double rest = whole.lo + first.lo + second.lo + anchor.logarithm.lo +
                        (r.lo + behind_square) + twos * LN_2_SHORT.lo;
    return sumOfOrdered(second.hi, rest);
}

/// A logarithm in another base, `per` times the natural one, as the C standard has it.
double getLogarithm(double x, const DoubleDouble& per) {
    if (x == 0) return -HUGE_VAL;
    if (x < 0) return (x - x) / (x - x);
    if (!std::isfinite(x)) return x;
    return (getLogarithm(x) * per).getValue();
}

bool isWhole(double x) { return std::abs(x) >= 0x1p52 || std::floor(x) == x; }
bool isOdd(double x) { return isWhole(x) && !isWhole(x / 2); }

/// x^y for x from 0 to infinity and y not 0.
double getPower(double x, double y) {
    if (x == 0 || std::isinf(x)) return (x == 0) == (y < 0) ? HUGE_VAL : 0;
    if (std::isinf(y)) return x == 1 ? 1 : (x < 1) == (y < 0) ? HUGE_VAL : 0;
    const DoubleDouble logarithm = getLogarithm(x);
    const double exponent = logarithm.hi * y;
    if (std::abs(exponent) < 0x1p-60) return 1 + exponent;
    if (std::abs(exponent) > 1000) return exponent > 0 ? HUGE_VAL : 0;
    const double l_short = shorten(logarithm.hi), y_short = shorten(y);
    const DoubleDouble product =
        sumOfOrdered(l_short * y_short, l_short * (y - y_short) + (logarithm.hi - l_short) * y);
    return getExponential({product.hi, product.lo + logarithm.lo * y});
}

// ------------------------------------------------------------ hyperbolic functions

/// Where a series is short enough, and a difference of exponentials would lose digits.
constexpr double NEAR_0 = 0.125;

/// e^x / 2 and e^-x / 2 for x from 0 to 40.
struct Halves {
    DoubleDouble growing, falling;
};

Halves getHalves(double x) {
    const Raised raised = raise(DoubleDouble{x, 0} - LN_2);
    const DoubleDouble growing{scale(raised.number.hi, raised.twos),
                               std::ldexp(raised.number.lo, raised.twos)};
    return {growing, DoubleDouble{0.25, 0} / growing};
}

/// Of x from 0 to 40.
DoubleDouble getHyperbolicSine(double x) {
    if (x >= NEAR_0) {
        const auto [growing, falling] = getHalves(x);
        return growing - falling;
    }
    const double z = x * x;
    return sumOfOrdered(x, x * z *
                               (1.0 / 6 + z * (1.0 / 120 + z * (1.0 / 5040 + z * (1.0 / 362880)))));
}

DoubleDouble getHyperbolicCosine(double x) {
    const auto [growing, falling] = getHalves(x);
    return growing + falling;
}

/// The logarithm of a positive number of normal size.
double getLogarithm(const DoubleDouble& x) {
    const DoubleDouble logarithm = getLogarithm(x.hi);
    return logarithm.hi + (logarithm.lo + x.lo / x.hi);
}

/// log(x + sqrt(x² + square)), `square` 1 or -1, for x from NEAR_0 or 1 on.
double getAreaOf(double x, double square) {
    if (x > 0x1p30) return (getLogarithm(x) + LN_2).getValue();
    return getLogarithm(DoubleDouble{x, 0} + getRoot(product(x, x) + DoubleDouble{square, 0}));
}

} // namespace
} // namespace ig

extern "C" {

double exp(double x) noexcept {
    if (std::isnan(x)) return x;
    return ig::getExponential({x, 0});
}

double exp2(double x) noexcept {
    if (std::isnan(x)) return x;
    if (x >= 1024) return HUGE_VAL;
    if (x < -1076) return 0;
    const double k = (x * ig::STEPS + ig::ROUND) - ig::ROUND;
    return ig::getValue(ig::raise(k, (x - k / ig::STEPS) * ig::LN_2.hi));
}

double log(double x) noexcept {
    if (!(x > 0) || !std::isfinite(x)) return ig::getLogarithm(x, {1, 0});
    const auto [twos, anchor, exact] = ig::findAnchor(x);
    const double r = exact.hi;
    const ig::DoubleDouble whole = ig::sumOfOrdered(twos * ig::LN_2_SHORT.hi, anchor.logarithm.hi);
    const ig::DoubleDouble first = ig::sumOfOrdered(whole.hi, r);
    const double rest = whole.lo + first.lo + anchor.logarithm.lo + twos * ig::LN_2_SHORT.lo;
    return first.hi + (rest + exact.lo + r * r * (-0.5 + r * ig::getBehindSquare(r)));
}

double log2(double x) noexcept { return ig::getLogarithm(x, ig::PER_LN_2); }

double log10(double x) noexcept { return ig::getLogarithm(x, ig::PER_LN_10); }

double pow(double x, double y) noexcept {
    if (x == 1 || y == 0) return 1;
    if (std::isnan(x) || std::isnan(y)) return x + y;
    if (y == 2) return x * x; // which compilers make of it
    if (x < 0 && std::isfinite(x) && !ig::isWhole(y)) return (x - x) / (x - x);
    const double power = ig::getPower(std::abs(x), y);
    return std::signbit(x) && ig::isOdd(y) ? -power : power;
}

/// Halley's iteration, which triples the digits (J. F. Traub, "Iterative Methods for the Solution
/// of Equations", 1964), from the one of a straight line, and a last one of Newton's with the cube
/// in twice the precision.
double cbrt(double x) noexcept {
    if (!std::isfinite(x) || x == 0) return x;
    int twos = 0;
    double m = std::frexp(std::abs(x), &twos);
    const int rest = ((twos % 3) + 3) % 3;
    m = std::ldexp(m, rest); // from 1/2 to 4
    double root = 0.68 + 0.25 * m;
    for (int i = 0; i < 3; i++) {
        const double cube = root * root * root;
        root *= (cube + 2 * m) / (2 * cube + m);
    }
    const ig::DoubleDouble cube = ig::product(root, root) * ig::DoubleDouble{root, 0};
    root -= (cube - ig::DoubleDouble{m, 0}).getValue() / (3 * root * root);
    return std::copysign(std::ldexp(root, (twos - rest) / 3), x);
}

double sinh(double x) noexcept {
    const double size = std::abs(x);
    if (!std::isfinite(x)) return x;
    if (size <= 40) return std::copysign(ig::getHyperbolicSine(size).getValue(), x);
    // The falling half has no share.
    return std::copysign(ig::getExponential(ig::DoubleDouble{size, 0} - ig::LN_2), x);
}

double cosh(double x) noexcept {
    const double size = std::abs(x);
    if (!std::isfinite(x)) return size;
    if (size <= 40) return ig::getHyperbolicCosine(size).getValue();
    return ig::getExponential(ig::DoubleDouble{size, 0} - ig::LN_2);
}

double tanh(double x) noexcept {
    const double size = std::abs(x);
    if (std::isnan(x)) return x;
    if (size > 40) return std::copysign(1.0, x);
    if (size < 0x1p-27) return x;
    return std::copysign((ig::getHyperbolicSine(size) / ig::getHyperbolicCosine(size)).getValue(),
                         x);
}

double asinh(double x) noexcept {
    const double size = std::abs(x), z = x * x;
    if (!std::isfinite(x) || x == 0) return x;
    if (size >= ig::NEAR_0) return std::copysign(ig::getAreaOf(size, 1), x);
    const double tail =
        -63.0 / 2816 + z * (231.0 / 13312 + z * (-143.0 / 10240 + z * (6435.0 / 557056)));
    return x +
           x * z * (-1.0 / 6 + z * (3.0 / 40 + z * (-5.0 / 112 + z * (35.0 / 1152 + z * tail))));
}

double acosh(double x) noexcept {
    if (!(x >= 1)) return (x - x) / (x - x);
    if (x == 1 || std::isinf(x)) return x - 1;
    return ig::getAreaOf(x, -1);
}

double atanh(double x) noexcept {
    const double size = std::abs(x), z = x * x;
    if (!(size <= 1)) return (x - x) / (x - x);
    if (x == 0) return x;
    if (size == 1) return std::copysign(HUGE_VAL, x);
    if (size >= ig::NEAR_0)
        return std::copysign(0.5 * ig::getLogarithm(ig::sum(1, size) / ig::sum(1, -size)), x);
    const double tail = 1.0 / 11 + z * (1.0 / 13 + z * (1.0 / 15 + z * (1.0 / 17)));
    return x + x * z * (1.0 / 3 + z * (1.0 / 5 + z * (1.0 / 7 + z * (1.0 / 9 + z * tail))));
}

float expf(float x) noexcept { return static_cast<float>(exp(double(x))); }

float exp2f(float x) noexcept { return static_cast<float>(exp2(double(x))); }

float logf(float x) noexcept { return static_cast<float>(log(double(x))); }

float log2f(float x) noexcept { return static_cast<float>(log2(double(x))); }

float log10f(float x) noexcept { return static_cast<float>(log10(double(x))); }

float powf(float x, float y) noexcept { return static_cast<float>(pow(double(x), double(y))); }

float cbrtf(float x) noexcept { return static_cast<float>(cbrt(double(x))); }

} // extern "C"
