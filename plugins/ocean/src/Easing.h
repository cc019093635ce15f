// SPDX-License-Identifier: MIT
#pragma once

#include <cmath>

namespace ig {

/// How far a value that started at S with the rate of change R has come towards T: the critically
/// damped oscillator of angular frequency 1/s, with 99.95 % of the way done after 10 s. Value and
/// rate are continuous when a new way begins at any moment of the old one, which lets a target that
/// changes with every record be followed without standing still and without jerks: a straight line
/// would start a wave of no energy with an infinite speed, as its height is the root of its energy.
struct Easing {
    float way_left = 0;      ///< share of S − T in the value
    float momentum = 0;      ///< share of R in the value, s
    float way_left_rate = 0; ///< share of S − T in the rate, 1/s
    float momentum_rate = 0; ///< share of R in the rate

    static constexpr double SETTLED = 20; ///< s; what is left of the way by then is dropped: 4e-8

    /// `time` in seconds since the start, not negative.
    static Easing after(double time) {
        if (time >= SETTLED) return {};
        const double decay = std::exp(-time);
        return {static_cast<float>((1 + time) * decay), static_cast<float>(time * decay),
                static_cast<float>(-time * decay), static_cast<float>((1 - time) * decay)};
    }
    bool isSettled() const { return way_left == 0; }

    float value(float start, float rate, float target) const {
        return target + (start - target) * way_left + rate * momentum;
    }
    float rate(float start, float rate, float target) const {
        return (start - target) * way_left_rate + rate * momentum_rate;
    }
};

/// One value on its way.
struct Eased {
    float start = 0, rate = 0, target = 0;

    float value(const Easing& easing) const { return easing.value(start, rate, target); }
    /// Makes value and rate as they are now the start of a new way to the same target.
    void hold(const Easing& easing) {
        const float now = value(easing);
        rate = easing.rate(start, rate, target);
        start = now;
    }
};

} // namespace ig
