// SPDX-License-Identifier: MIT
// atan2 of the process, and what follows from it: atan, asin and acos; and hypot. Why they are
// here: trigonometric.cpp.
//
// Method: the quotient's distance from the nearest tangent k/16 known beforehand, by the theorem of
// addition atan(y/x) = atan(c) + atan((y - c x) / (x + c y)), and the series of what remains.
#include "DoubleDouble.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>

namespace ig {
namespace {

/// atan(k / 16), summed up from the steps atan(16 / (256 + k (k - 1))).
constexpr auto ARCS = [] {
    std::array<DoubleDouble, 17> arcs;
    for (int k = 1; k <= 16; k++) {
        const DoubleDouble step = DoubleDouble{16, 0} / DoubleDouble{256.0 + k * (k - 1), 0};
        const DoubleDouble square = step * step;
        DoubleDouble power = step, arc = step;
        for (int n = 3; n < 30; n += 2) {
            power = power * square;
            power = {-power.hi, -power.lo};
            arc = arc + power / DoubleDouble{double(n), 0};
        }
        arcs[static_cast<std::size_t>(k)] = arcs[static_cast<std::size_t>(k - 1)] + arc;
    }
    return arcs;
}();

/// The series of atan(t) beyond its first term, for |t| <= 1/8.
double getBeyondFirst(double t) {
    const double z = t * t, zz = z * z;
    const double head = (-1.0 / 3 + z * (1.0 / 5)) + zz * (-1.0 / 7 + z * (1.0 / 9));
    const double tail = (-1.0 / 11 + z * (1.0 / 13)) + zz * (-1.0 / 15 + z * (1.0 / 17));
    return t * z * (head + zz * zz * tail);
}

/// Without the last 27 bits, so that it can be multiplied by a short number exactly.
double shorten(double x) {
    return std::bit_cast<double>(std::bit_cast<std::uint64_t>(x) & ~std::uint64_t(0x7ffffff));
}

/// atan(y / x) for 0 <= y <= x, x between 2^-500 and 2^500, y / x 0 or at least 2^-400.
DoubleDouble getSmallArc(const DoubleDouble& y, const DoubleDouble& x) {
    const double ratio = y.hi / x.hi;
    if (ratio < 1.0 / 8) {
        const DoubleDouble quotient = y / x;
        return sumOfOrdered(quotient.hi, quotient.lo + getBeyondFirst(quotient.hi));
    }
    const int k = static_cast<int>(ratio * 16 + 0.5);
    const double c = k / 16.0, x_short = shorten(x.hi);
    const double left = (y.hi - c * x_short) - c * (x.hi - x_short) + (y.lo - c * x.lo);
    const double t = left / (x.hi + c * y.hi);
    const DoubleDouble& known = ARCS[static_cast<std::size_t>(k)];
    return sumOfOrdered(known.hi, known.lo + (t + getBeyondFirst(t)));
}

/// The angle of (x, y) in the first quadrant, ranges as above.
DoubleDouble getArc(const DoubleDouble& y, const DoubleDouble& x) {
    return y.hi <= x.hi ? getSmallArc(y, x) : PI_HALF - getSmallArc(x, y);
}

/// The other side of a right-angled triangle with hypotenuse 1; `x` within (-1, 1).
DoubleDouble getOther(double x) {
    const DoubleDouble square = product(x, x);
    return getRoot(DoubleDouble{1, 0} - square);
}

/// A power of 2 that brings a length to where its square neither overflows nor loses digits.
double getScale(double length) {
    return length > 0x1p400 ? 0x1p-600 : length < 0x1p-400 ? 0x1p600 : 1;
}

/// Quotients below this are their own arc, and add nothing to a longer side.
constexpr double TINY = 0x1p-60;

/// The angle of (x, y), x and y positive or 0 but not both; infinity counts as a number.
DoubleDouble getQuadrantArc(double y, double x) {
    if (std::isinf(x) && std::isinf(y)) x = y = 1;
    if (y < x * TINY) return {y / x, 0};
    if (x < y * TINY) return PI_HALF;
    const double scale = getScale(std::max(x, y));
    return getArc({y * scale, 0}, {x * scale, 0});
}

} // namespace
} // namespace ig

extern "C" {

double atan2(double y, double x) noexcept {
    if (std::isnan(x) || std::isnan(y)) return x + y;
    ig::DoubleDouble arc;
    if (y != 0) arc = ig::getQuadrantArc(std::abs(y), std::abs(x));
    if (std::signbit(x)) arc = ig::PI - arc;
    return std::copysign(arc.getValue(), y);
}

double atan(double x) noexcept {
    if (std::isnan(x) || x == 0) return x;
    return std::copysign(ig::getQuadrantArc(std::abs(x), 1).getValue(), x);
}

double asin(double x) noexcept {
    if (!(std::abs(x) <= 1)) return (x - x) / (x - x);
    if (std::abs(x) == 1) return std::copysign(ig::PI_HALF.hi, x);
    if (std::abs(x) < 0x1p-27) return x;
    return std::copysign(ig::getArc({std::abs(x), 0}, ig::getOther(x)).getValue(), x);
}

double acos(double x) noexcept {
    if (!(std::abs(x) <= 1)) return (x - x) / (x - x);
    if (std::abs(x) == 1) return x < 0 ? ig::PI.hi : 0;
    if (std::abs(x) < ig::TINY) return ig::PI_HALF.hi;
    const ig::DoubleDouble arc = ig::getArc(ig::getOther(x), {std::abs(x), 0});
    return (x < 0 ? ig::PI - arc : arc).getValue();
}

double hypot(double x, double y) noexcept {
    if (std::isinf(x) || std::isinf(y)) return HUGE_VAL;
    if (std::isnan(x) || std::isnan(y)) return x + y;
    const double longer = std::max(std::abs(x), std::abs(y));
    const double shorter = std::min(std::abs(x), std::abs(y));
    if (shorter <= longer * ig::TINY) return longer + shorter;
    const double scale = ig::getScale(longer), a = longer * scale, b = shorter * scale;
    return ig::getRoot(ig::product(a, a) + ig::product(b, b)).getValue() / scale;
}

float atan2f(float y, float x) noexcept { return static_cast<float>(atan2(double(y), double(x))); }

float atanf(float x) noexcept { return static_cast<float>(atan(double(x))); }

float asinf(float x) noexcept { return static_cast<float>(asin(double(x))); }

float acosf(float x) noexcept { return static_cast<float>(acos(double(x))); }

float hypotf(float x, float y) noexcept { return static_cast<float>(hypot(double(x), double(y))); }

} // extern "C"
