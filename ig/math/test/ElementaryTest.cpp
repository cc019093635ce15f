// SPDX-License-Identifier: MIT
// The elementary functions that this library defines for the whole process.
#include "ig/math/jMath.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numbers>
#include <random>
#include <string>
#include <vector>

#include <dlfcn.h>
#include <gtest/gtest.h>

namespace {

/// A function of one argument, or of two, with its model in the processor's extended precision.
struct Function {
    const char* name;
    double (*one)(double);
    double (*two)(double, double);
    long double (*model_one)(long double);
    long double (*model_two)(long double, long double);
    double widest; ///< arguments on both sides of 0 up to this
};

const Function FUNCTIONS[] = {
    {"sin", std::sin, nullptr, std::sin, nullptr, 1e300},
    {"cos", std::cos, nullptr, std::cos, nullptr, 1e300},
    {"tan", std::tan, nullptr, std::tan, nullptr, 1e300},
    {"asin", std::asin, nullptr, std::asin, nullptr, 1},
    {"acos", std::acos, nullptr, std::acos, nullptr, 1},
    {"atan", std::atan, nullptr, std::atan, nullptr, 1e300},
    {"exp", std::exp, nullptr, std::exp, nullptr, 745},
    {"exp2", std::exp2, nullptr, std::exp2, nullptr, 1074},
    {"log", std::log, nullptr, std::log, nullptr, 1e308},
    {"log2", std::log2, nullptr, std::log2, nullptr, 1e308},
    {"log10", std::log10, nullptr, std::log10, nullptr, 1e308},
    {"cbrt", std::cbrt, nullptr, std::cbrt, nullptr, 1e308},
    {"sinh", std::sinh, nullptr, std::sinh, nullptr, 711},
    {"cosh", std::cosh, nullptr, std::cosh, nullptr, 711},
    {"tanh", std::tanh, nullptr, std::tanh, nullptr, 711},
    {"asinh", std::asinh, nullptr, std::asinh, nullptr, 1e300},
    {"acosh", std::acosh, nullptr, std::acosh, nullptr, 1e300},
    {"atanh", std::atanh, nullptr, std::atanh, nullptr, 1},
    {"atan2", nullptr, std::atan2, nullptr, std::atan2, 1e300},
    {"hypot", nullptr, std::hypot, nullptr, std::hypot, 1e308},
    {"pow", nullptr, std::pow, nullptr, std::pow, 1e300},
};

/// Arguments that meet what a function does: most of the size of angles and of numbers around 1,
/// others of any size, some a hair from what it maps to 0 or 1.
double getArgument(std::mt19937_64& random, double widest) {
    const double share = static_cast<double>(random() >> 11) * 0x1p-52 - 1;
    const int places = static_cast<int>(random() % 600);
    double x = share;
    switch (random() % 6) {
    case 0:
        x = share * std::min(widest, 10.0);
        break;
    case 1:
        x = share * std::min(widest, 1e3);
        break;
    case 2:
        x = share * std::min(widest, 1e7);
        break;
    case 3:
        x = std::ldexp(share, places * (share < 0 ? 1 : -1));
        break;
    case 4:
        x = 1 + std::ldexp(share, -places % 54);
        break;
    default:
        x = static_cast<double>(random() % 99) * std::numbers::pi / 4;
        break;
    }
    return std::abs(x) > widest ? widest * share : x;
}

/// Of the double nearest to an exact value, in units of its last place.
double getError(double value, long double exact) {
    const double nearest = static_cast<double>(exact);
    if (value == nearest || (std::isnan(value) && std::isnan(nearest))) return 0;
    if (!std::isfinite(value) || !std::isfinite(nearest)) return HUGE_VAL;
    const int place = std::max(std::ilogb(nearest) - 52, -1074);
    return static_cast<double>(std::abs(value - exact) / std::ldexp(1.0L, place));
}

// Otherwise the tests below would test the C library.
TEST(Elementary, IsWhatTheProcessCalls) {
    Dl_info engine, found;
    ASSERT_TRUE(dladdr(reinterpret_cast<void*>(&ig::jMath::linearToShock), &engine));
    for (const Function& f : FUNCTIONS)
        for (const std::string& name : {std::string(f.name), std::string(f.name) + "f"}) {
            if (name.ends_with("hf")) continue; // nothing calls the hyperbolic ones' float forms
            ASSERT_TRUE(dladdr(dlsym(RTLD_DEFAULT, name.c_str()), &found)) << name;
            EXPECT_EQ(found.dli_fbase, engine.dli_fbase) << name << " of " << found.dli_fname;
        }
}

TEST(Elementary, ErrsByLessThanOneInTheLastPlace) {
    for (const Function& f : FUNCTIONS) {
        std::mt19937_64 random(7);
        double worst = 0, worst_x = 0, worst_y = 0;
        for (int i = 0; i < 300000; i++) {
            const double x = getArgument(random, f.widest), y = getArgument(random, f.widest);
            const double error = f.one ? getError(f.one(x), f.model_one(x))
                                       : getError(f.two(x, y), f.model_two(x, y));
            if (!(error <= worst)) {
                worst = error;
                worst_x = x;
                worst_y = y;
            }
        }
        EXPECT_LT(worst, 1) << f.name << " of " << worst_x << ", " << worst_y;
    }
}

TEST(Elementary, KeepsTheStandardAtTheEdges) {
    constexpr double INF = HUGE_VAL, QNAN = std::numeric_limits<double>::quiet_NaN();
    const double edges[] = {0,      0.5,        1,     2,    3,         709.8,
                            746,    1023.5,     1024,  1075, 0x1p-1074, 0x1p-1022,
                            0x1p52, 0x1p53 + 2, 1e308, INF,  QNAN};
    std::vector<double> all;
    for (double edge : edges) {
        all.push_back(edge);
        all.push_back(-edge);
    }
    for (const Function& f : FUNCTIONS)
        for (double x : all)
            for (double y : all) {
                const double value = f.one ? f.one(x) : f.two(x, y);
                const long double exact = f.one ? f.model_one(x) : f.model_two(x, y);
                EXPECT_LT(getError(value, exact), 1) << f.name << " of " << x << ", " << y;
                if (!std::isnan(value)) {
                    EXPECT_EQ(std::signbit(value), std::signbit(static_cast<double>(exact)))
                        << f.name << " of " << x << ", " << y;
                }
            }
}

TEST(Elementary, FormsAgree) {
    std::mt19937_64 random(11);
    for (int i = 0; i < 20000; i++) {
        const double x = getArgument(random, 1e18); // its square is a float too
        double sine, cosine;
        ::sincos(x, &sine, &cosine);
        EXPECT_EQ(sine, std::sin(x));
        EXPECT_EQ(cosine, std::cos(x));
        const auto narrow = static_cast<float>(x);
        EXPECT_EQ(std::sin(narrow), static_cast<float>(std::sin(double(narrow))));
        EXPECT_EQ(std::pow(std::abs(narrow), 2.0f), narrow * narrow);
        float narrow_sine, narrow_cosine;
        ::sincosf(narrow, &narrow_sine, &narrow_cosine);
        EXPECT_EQ(narrow_sine, std::sin(narrow)) << narrow;
        EXPECT_EQ(narrow_cosine, std::cos(narrow)) << narrow;
    }
}

// Whatever the compiler, its optimisation and the processor: with a hash that differs, a recorded
// flight no longer plays back as it was.
TEST(Elementary, BitsAreTheSameEverywhere) {
    std::uint64_t hash = 0;
    for (const Function& f : FUNCTIONS) {
        std::mt19937_64 random(23);
        for (int i = 0; i < 10000; i++) {
            const double x = getArgument(random, f.widest), y = getArgument(random, f.widest);
            const double value = f.one ? f.one(x) : f.two(x, y);
            if (std::isnan(value)) continue; // has no one sign
            hash = (hash ^ std::bit_cast<std::uint64_t>(value)) * 0x9e3779b97f4a7c15;
            hash ^= hash >> 29;
        }
    }
    EXPECT_EQ(hash, 16424997535461719451u);
}

} // namespace
