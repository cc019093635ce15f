// SPDX-License-Identifier: MIT
#pragma once

#include <cmath>

/// Numbers of twice the precision of a double, as the unevaluated sum of two, for the few steps of
/// the elementary functions that a single one would spoil, and for their tables, which the compiler
/// reckons. Exact where it says so; all arguments finite and between 2^-500 and 2^500, or 0.
/// Source: T. J. Dekker, "A floating-point technique for extending the available precision" (1971).
namespace ig {

struct DoubleDouble {
    double hi = 0, lo = 0; ///< |lo| is at most half a unit in the last place of hi

    /// The nearest double.
    constexpr double getValue() const { return hi + lo; }
};

/// a + b, exact, if |a| >= |b| or a is 0.
constexpr DoubleDouble sumOfOrdered(double a, double b) {
    const double sum = a + b;
    return {sum, b - (sum - a)};
}

/// a + b, exact.
constexpr DoubleDouble sum(double a, double b) {
    const double sum = a + b, part = sum - a;
    return {sum, (a - (sum - part)) + (b - part)};
}

/// a · b, exact: each factor is cut in two halves, whose products are.
constexpr DoubleDouble product(double a, double b) {
    constexpr double CUT = 0x1p27 + 1;
    const double a_hi = a * CUT - (a * CUT - a), a_lo = a - a_hi;
    const double b_hi = b * CUT - (b * CUT - b), b_lo = b - b_hi;
    const double p = a * b;
    return {p, ((a_hi * b_hi - p) + a_hi * b_lo + a_lo * b_hi) + a_lo * b_lo};
}

constexpr DoubleDouble operator+(const DoubleDouble& a, const DoubleDouble& b) {
    const DoubleDouble s = sum(a.hi, b.hi);
    return sumOfOrdered(s.hi, s.lo + (a.lo + b.lo));
}

constexpr DoubleDouble operator-(const DoubleDouble& a, const DoubleDouble& b) {
    return a + DoubleDouble{-b.hi, -b.lo};
}

constexpr DoubleDouble operator*(const DoubleDouble& a, const DoubleDouble& b) {
    const DoubleDouble p = product(a.hi, b.hi);
    return sumOfOrdered(p.hi, p.lo + (a.hi * b.lo + a.lo * b.hi));
}

constexpr DoubleDouble operator/(const DoubleDouble& a, const DoubleDouble& b) {
    const double quotient = a.hi / b.hi;
    const DoubleDouble p = product(quotient, b.hi);
    return sumOfOrdered(quotient, (a.hi - p.hi - p.lo + a.lo - quotient * b.lo) / b.hi);
}

/// The square root; `x` is positive.
inline DoubleDouble getRoot(const DoubleDouble& x) {
    const double root = std::sqrt(x.hi);
    const DoubleDouble square = product(root, root);
    return sumOfOrdered(root, (x.hi - square.hi - square.lo + x.lo) / (2 * root));
}

constexpr DoubleDouble PI_HALF{0x1.921fb54442d18p+0, 0x1.1a62633145c07p-54};
constexpr DoubleDouble PI{2 * PI_HALF.hi, 2 * PI_HALF.lo};

} // namespace ig
