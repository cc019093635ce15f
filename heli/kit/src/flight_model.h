// SPDX-License-Identifier: MIT
#pragma once

// The arithmetic of the keyboard flight model that needs no scene. Angles in degrees.

#include "ig/math/vec.h"

#include <algorithm>

inline constexpr float PITCH_FORCE = 1500; ///< N per unit of longitudinal input
inline constexpr float ROLL_FORCE = 500;   ///< N per unit of lateral input
inline constexpr float YAW_TORQUE = 3800;  ///< N·m per unit of yaw input
inline constexpr float LIFT = 3500;        ///< N at full collective
inline constexpr double MAX_ANGLE_X = 25;  ///< the attitude is clamped to these
inline constexpr double MAX_ANGLE_Y = 17;
inline constexpr double SLOW_ANGLE_X = 15; ///< beyond these the rotation is slowed down
inline constexpr double SLOW_ANGLE_Y = 7;

/// Keeps the attitude within its limits and levels it by 2 % per frame about each axis whose input
/// is neutral.
inline ig::dvec3 limitAttitude(ig::dvec3 angles, float roll, float pitch) {
    angles.x = std::clamp(angles.x, -MAX_ANGLE_X, MAX_ANGLE_X);
    angles.y = std::clamp(angles.y, -MAX_ANGLE_Y, MAX_ANGLE_Y);
    angles.z = std::clamp(angles.z, -1e9, 1e9);
    if (std::abs(roll * ROLL_FORCE) < 1e-6f) angles.x *= 0.98;
    if (std::abs(pitch * PITCH_FORCE) < 1e-6f) angles.y *= 0.98;
    return angles;
}

/// Slows a rotation that drives `angle` from `slow` towards `max`, to a stop at `max`. The angle is
/// that of the inverse attitude, so a negative rate makes it grow.
inline float limitRate(float rate, double angle, double slow, double max) {
    double t = 0;
    if (rate < 0 && angle > slow)
        t = (angle - slow) / (max - slow);
    else if (rate > 0 && angle < -slow)
        t = (-slow - angle) / (max - slow);
    return static_cast<float>(static_cast<double>(rate) * (1 - t * t * t));
}
