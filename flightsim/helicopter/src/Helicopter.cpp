// SPDX-License-Identifier: MIT
#include "flightsim/helicopter/Helicopter.h"

#include <algorithm>

namespace flightsim {

namespace {

/// Deflection of the undercarriage under the full weight, metres.
constexpr double static_deflection = 0.1;

/// Turns an angle towards its command: the rate follows the error, up to a limit, and changes no
/// faster than another. A small error dies away without overshoot in about a second.
void follow(double command, double& angle, double& rate, double dt) {
    constexpr double error_gain = 2.2;       // 1/s
    constexpr double rate_lag = 0.11;        // s; critical damping is 1 / (4 error_gain)
    constexpr double rate_limit = 20;        // degrees/s
    constexpr double rate_change_limit = 80; // degrees/s²
    const double wanted = std::clamp(error_gain * (command - angle), -rate_limit, rate_limit);
    rate += std::clamp((wanted - rate) / rate_lag, -rate_change_limit, rate_change_limit) * dt;
    angle += rate * dt;
}

/// Direction of the thrust. The fuselage is turned by heading, then pitch, then roll.
Enu rotorAxis(const HelicopterState& s) {
    const double right = std::sin(s.roll * radians);
    const double forward = -std::sin(s.pitch * radians) * std::cos(s.roll * radians);
    const double up = std::cos(s.pitch * radians) * std::cos(s.roll * radians);
    const double sh = std::sin(s.heading * radians);
    const double ch = std::cos(s.heading * radians);
    return {right * ch + forward * sh, forward * ch - right * sh, up};
}

/// What the ground adds, m/s²: a spring that pushes harder while it is being compressed, and wheels
/// with their brakes on.
Enu groundAcceleration(const HelicopterState& s, const Enu& ground_velocity, double compression) {
    constexpr double damping = 2; // s/m: the wheels settle without bouncing
    constexpr double grip = 5;    // 1/s under the full weight
    if (compression <= 0) return {};
    const double spring = gravity / static_deflection * compression;
    // A mission with a hill where there is none must not shoot the helicopter into the sky.
    const double load = std::min(spring * std::max(0.0, 1 - damping * s.velocity.up), 4 * gravity);
    const double brake = grip * std::min(load / gravity, 2.0);
    const Enu slip = s.velocity - ground_velocity;
    return {-brake * slip.east, -brake * slip.north, load};
}

} // namespace

Enu dragAcceleration(const Enu& air_velocity) {
    constexpr double rotor_drag = 0.015;     // 1/s
    constexpr double fuselage_drag = 2.4e-4; // 1/m
    return air_velocity * -(rotor_drag + fuselage_drag * air_velocity.length());
}

HelicopterControls controlsFor(const Enu& acceleration, const HelicopterState& state,
                               const Enu& wind, const LeanLimits& limits) {
    constexpr double greatest_thrust = 1.4 * gravity;
    Enu force = acceleration + Enu{0, 0, gravity} - dragAcceleration(state.velocity - wind);
    force.up = std::max(force.up, 0.3 * gravity);
    const double sh = std::sin(state.heading * radians);
    const double ch = std::cos(state.heading * radians);
    const double forward = force.east * sh + force.north * ch;
    const double right = force.east * ch - force.north * sh;
    HelicopterControls controls;
    const double pitch = -std::atan2(forward, force.up) / radians;
    const double roll = std::atan2(right, std::hypot(forward, force.up)) / radians;
    controls.pitch = std::clamp(pitch, -limits.pitch, limits.pitch);
    controls.roll = std::clamp(roll, -limits.roll, limits.roll);
    // The height is held with the lean that there is, not with the one that is to come.
    controls.thrust = std::min(force.up / rotorAxis(state).up, greatest_thrust);
    controls.rotor = full_rotor;
    return controls;
}

void Helicopter::step(const HelicopterControls& controls, const Surroundings& around, double dt) {
    turn(controls, dt);
    drive(controls, dt);
    move(around, dt);
}

void Helicopter::turn(const HelicopterControls& controls, double dt) {
    constexpr double yaw_lag = 0.15;        // s
    constexpr double yaw_change_limit = 40; // degrees/s²
    // What the wheels carry can't lean or turn.
    const double freedom = std::clamp(1 - m_state.gear_load / gravity, 0.0, 1.0);
    follow(controls.pitch * freedom, m_state.pitch, m_state.pitch_rate, dt);
    follow(controls.roll * freedom, m_state.roll, m_state.roll_rate, dt);
    const double yaw = (controls.heading_rate * freedom - m_state.heading_rate) / yaw_lag;
    m_state.heading_rate += std::clamp(yaw, -yaw_change_limit, yaw_change_limit) * dt;
    m_state.heading += m_state.heading_rate * dt;
    m_state.heading -= 360 * std::floor(m_state.heading / 360);
}

void Helicopter::drive(const HelicopterControls& controls, double dt) {
    constexpr double thrust_lag = 0.3;      // s
    constexpr double thrust_rate_limit = 8; // m/s³
    constexpr double governor_lag = 0.5;    // s
    // Thrust goes with the square of the rotor's speed; the blades stall at 1.5 times the weight.
    const double speed = m_state.rotor / full_rotor;
    const double wanted = std::clamp(controls.thrust, 0.0, 1.5 * gravity * speed * speed);
    m_state.thrust +=
        std::clamp((wanted - m_state.thrust) / thrust_lag, -thrust_rate_limit, thrust_rate_limit) *
        dt;
    // The governor lets the rotor droop under load: 1.5 % in a hover, more when pulling.
    const double load = m_state.thrust / gravity;
    const double droop = 0.015 * load + 0.06 * std::max(0.0, load - 1);
    m_state.rotor += (controls.rotor * (1 - droop) - m_state.rotor) / governor_lag * dt;
}

void Helicopter::move(const Surroundings& around, double dt) {
    const double compression = around.rest_altitude + static_deflection - m_state.position.altitude;
    const Enu ground = groundAcceleration(m_state, around.ground_velocity, compression);
    m_state.gear_load = ground.up;
    // The air doesn't shift a helicopter that stands on its wheels.
    const double freedom = std::clamp(1 - ground.up / gravity, 0.0, 1.0);
    const Enu drag = dragAcceleration(m_state.velocity - around.wind) * freedom;
    m_state.acceleration = rotorAxis(m_state) * m_state.thrust - Enu{0, 0, gravity} + ground + drag;
    const Enu before = m_state.velocity;
    m_state.velocity += m_state.acceleration * dt;
    m_state.position = moved(m_state.position, (before + m_state.velocity) * (dt / 2));
}

} // namespace flightsim
