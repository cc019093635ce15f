// SPDX-License-Identifier: MIT
#include "flightsim/helicopter/Helicopter.h"

#include <algorithm>

namespace flightsim {

namespace {

/// Deflection of the undercarriage under the full weight, metres.
constexpr double STATIC_DEFLECTION = 0.1;

/// Turns an angle towards its command: the rate follows the error, up to a limit, and changes no
/// faster than another. A small error dies away without overshoot in about a second.
void follow(double command, double& angle, double& rate, double dt) {
    constexpr double ERROR_GAIN = 2.2;       // 1/s
    constexpr double RATE_LAG = 0.11;        // s; critical damping is 1 / (4 ERROR_GAIN)
    constexpr double RATE_LIMIT = 20;        // degrees/s
    constexpr double RATE_CHANGE_LIMIT = 80; // degrees/s²
    const double wanted = std::clamp(ERROR_GAIN * (command - angle), -RATE_LIMIT, RATE_LIMIT);
    rate += std::clamp((wanted - rate) / RATE_LAG, -RATE_CHANGE_LIMIT, RATE_CHANGE_LIMIT) * dt;
    angle += rate * dt;
}

/// Direction of the thrust. The fuselage is turned by heading, then pitch, then roll.
Enu rotorAxis(const HelicopterState& s) {
    const double right = std::sin(s.roll * RADIANS);
    const double forward = -std::sin(s.pitch * RADIANS) * std::cos(s.roll * RADIANS);
    const double up = std::cos(s.pitch * RADIANS) * std::cos(s.roll * RADIANS);
    const double sh = std::sin(s.heading * RADIANS);
    const double ch = std::cos(s.heading * RADIANS);
    return {right * ch + forward * sh, forward * ch - right * sh, up};
}

/// What the ground adds, m/s²: a spring that pushes harder while it is being compressed, and wheels
/// with their brakes on.
Enu groundAcceleration(const HelicopterState& s, const Enu& ground_velocity, double compression) {
    constexpr double DAMPING = 2; // s/m: the wheels settle without bouncing
    constexpr double GRIP = 5;    // 1/s under the full weight
    if (compression <= 0) return {};
    const double spring = GRAVITY / STATIC_DEFLECTION * compression;
    // A mission with a hill where there is none must not shoot the helicopter into the sky.
    const double load = std::min(spring * std::max(0.0, 1 - DAMPING * s.velocity.up), 4 * GRAVITY);
    const double brake = GRIP * std::min(load / GRAVITY, 2.0);
    const Enu slip = s.velocity - ground_velocity;
    return {-brake * slip.east, -brake * slip.north, load};
}

} // namespace

Enu dragAcceleration(const Enu& air_velocity) {
    constexpr double ROTOR_DRAG = 0.015;     // 1/s
    constexpr double FUSELAGE_DRAG = 2.4e-4; // 1/m
    return air_velocity * -(ROTOR_DRAG + FUSELAGE_DRAG * air_velocity.length());
}

HelicopterControls controlsFor(const Enu& acceleration, const HelicopterState& state,
                               const Enu& wind, const LeanLimits& limits) {
    constexpr double GREATEST_THRUST = 1.4 * GRAVITY;
    Enu force = acceleration + Enu{0, 0, GRAVITY} - dragAcceleration(state.velocity - wind);
    force.up = std::max(force.up, 0.3 * GRAVITY);
    const double sh = std::sin(state.heading * RADIANS);
    const double ch = std::cos(state.heading * RADIANS);
    const double forward = force.east * sh + force.north * ch;
    const double right = force.east * ch - force.north * sh;
    HelicopterControls controls;
    const double pitch = -std::atan2(forward, force.up) / RADIANS;
    const double roll = std::atan2(right, std::hypot(forward, force.up)) / RADIANS;
    controls.pitch = std::clamp(pitch, -limits.pitch, limits.pitch);
    controls.roll = std::clamp(roll, -limits.roll, limits.roll);
    // The height is held with the lean that there is, not with the one that is to come.
    controls.thrust = std::min(force.up / rotorAxis(state).up, GREATEST_THRUST);
    controls.rotor = FULL_ROTOR;
    return controls;
}

void Helicopter::step(const HelicopterControls& controls, const Surroundings& around, double dt) {
    turn(controls, dt);
    drive(controls, dt);
    move(around, dt);
}

void Helicopter::turn(const HelicopterControls& controls, double dt) {
    constexpr double YAW_LAG = 0.15;        // s
    constexpr double YAW_CHANGE_LIMIT = 40; // degrees/s²
    // What the wheels carry can't lean or turn.
    const double freedom = std::clamp(1 - m_state.gear_load / GRAVITY, 0.0, 1.0);
    follow(controls.pitch * freedom, m_state.pitch, m_state.pitch_rate, dt);
    follow(controls.roll * freedom, m_state.roll, m_state.roll_rate, dt);
    const double yaw = (controls.heading_rate * freedom - m_state.heading_rate) / YAW_LAG;
    m_state.heading_rate += std::clamp(yaw, -YAW_CHANGE_LIMIT, YAW_CHANGE_LIMIT) * dt;
    m_state.heading += m_state.heading_rate * dt;
    m_state.heading -= 360 * std::floor(m_state.heading / 360);
}

void Helicopter::drive(const HelicopterControls& controls, double dt) {
    constexpr double THRUST_LAG = 0.3;      // s
    constexpr double THRUST_RATE_LIMIT = 8; // m/s³
    constexpr double GOVERNOR_LAG = 0.5;    // s
    // Thrust goes with the square of the rotor's speed; the blades stall at 1.5 times the weight.
    const double speed = m_state.rotor / FULL_ROTOR;
    const double wanted = std::clamp(controls.thrust, 0.0, 1.5 * GRAVITY * speed * speed);
    m_state.thrust +=
        std::clamp((wanted - m_state.thrust) / THRUST_LAG, -THRUST_RATE_LIMIT, THRUST_RATE_LIMIT) *
        dt;
    // The governor lets the rotor droop under load: 1.5 % in a hover, more when pulling.
    const double load = m_state.thrust / GRAVITY;
    const double droop = 0.015 * load + 0.06 * std::max(0.0, load - 1);
    m_state.rotor += (controls.rotor * (1 - droop) - m_state.rotor) / GOVERNOR_LAG * dt;
}

void Helicopter::move(const Surroundings& around, double dt) {
    const double compression = around.rest_altitude + STATIC_DEFLECTION - m_state.position.altitude;
    const Enu ground = groundAcceleration(m_state, around.ground_velocity, compression);
    m_state.gear_load = ground.up;
    // The air doesn't shift a helicopter that stands on its wheels.
    const double freedom = std::clamp(1 - ground.up / GRAVITY, 0.0, 1.0);
    const Enu drag = dragAcceleration(m_state.velocity - around.wind) * freedom;
    m_state.acceleration = rotorAxis(m_state) * m_state.thrust - Enu{0, 0, GRAVITY} + ground + drag;
    const Enu before = m_state.velocity;
    m_state.velocity += m_state.acceleration * dt;
    m_state.position = moved(m_state.position, (before + m_state.velocity) * (dt / 2));
}

} // namespace flightsim
