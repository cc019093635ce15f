// SPDX-License-Identifier: MIT
#pragma once

#include "flightsim/helicopter/Geodesy.h"

/// A medium helicopter as a point mass with an attitude. The rotor pulls along the fuselage's
/// vertical axis, so acceleration comes from leaning and nothing else:
///
///     acceleration = thrust · z − g · up + drag + ground
///
/// with everything per unit of mass (m/s²). z follows from heading, pitch and roll; attitude and
/// thrust follow their commands with the lags and limits of a real machine, which keeps every
/// acceleration smooth. Tail-rotor side force and the tilt of the rotor mast are left out.
namespace flightsim {

inline constexpr double GRAVITY = 9.80665;
inline constexpr double FULL_ROTOR = 270; ///< rotor speed of flight, in the record's unit

struct HelicopterState {
    Geodetic position;       ///< of the reference point, which stands above the wheels
    Enu velocity;            ///< over ground
    Enu acceleration;        ///< of the last step
    double heading = 0;      ///< degrees clockwise from north, in [0, 360)
    double pitch = 0;        ///< degrees, nose up
    double roll = 0;         ///< degrees, right side down
    double heading_rate = 0; ///< degrees/s, and so on
    double pitch_rate = 0;
    double roll_rate = 0;
    double thrust = 0;    ///< per unit of mass, m/s²
    double rotor = 0;     ///< rotor speed, in the record's unit
    double gear_load = 0; ///< what the wheels carry, per unit of mass: 0 in the air, g at rest
};

/// What the pilot's hands and feet ask for.
struct HelicopterControls {
    double pitch = 0;        ///< degrees
    double roll = 0;         ///< degrees
    double heading_rate = 0; ///< degrees/s
    double thrust = 0;       ///< per unit of mass, m/s²
    double rotor = 0;        ///< rotor speed that the governor holds
};

struct Surroundings {
    Enu wind;                 ///< velocity of the air over ground
    Enu ground_velocity;      ///< of what the wheels may stand on: a ship's deck moves
    double rest_altitude = 0; ///< of the reference point, with the helicopter at rest on the ground
};

/// Deceleration by the air, m/s², at a velocity relative to it: the rotor's share grows linearly,
/// that of 4.3 m² of drag area on 11 t with the square.
Enu dragAcceleration(const Enu& air_velocity);

/// How far the pilot leans, degrees.
struct LeanLimits {
    double pitch = 0, roll = 0;
};

/// The controls that give the helicopter an acceleration over ground, were it in the air. The lean
/// stays within `limits` and the thrust within the rotor's reach, so not every demand is met.
HelicopterControls controlsFor(const Enu& acceleration, const HelicopterState& state,
                               const Enu& wind, const LeanLimits& limits);

/// Lift-off and touchdown need no modes: the undercarriage is a spring below the reference point,
/// and a helicopter whose wheels carry it can't lean.
class Helicopter {
public:
    explicit Helicopter(const HelicopterState& state) : m_state(state) {}
    /// Moves on by `dt`, at most 0.005 s.
    void step(const HelicopterControls& controls, const Surroundings& around, double dt);
    const HelicopterState& getState() const { return m_state; }

private:
    void turn(const HelicopterControls& controls, double dt);
    void drive(const HelicopterControls& controls, double dt);
    void move(const Surroundings& around, double dt);

    HelicopterState m_state;
};

} // namespace flightsim
