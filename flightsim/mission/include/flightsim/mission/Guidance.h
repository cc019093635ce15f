// SPDX-License-Identifier: MIT
#pragma once

#include "flightsim/helicopter/Helicopter.h"
#include "flightsim/mission/Mission.h"

#include <optional>
#include <vector>

/// The pilot: turns the legs of a mission into controls, step by step.
///
/// Horizontally there are two ways to fly. Slowly, the wanted velocity is approached directly,
/// whatever the heading. Fast, speed and course are flown apart: the course error asks for a
/// lateral acceleration up to that of the greatest bank, the nose follows the airspeed, and the
/// turn is a coordinated one. Between 6 and 12 m/s over ground one blends into the other.
///
/// The way to a stop over a point follows the speed from which a constant deceleration ends there,
/// and a straight line in the last metres: v(d) = k d, or √(2a(d − a/2k²)) where that is less.
namespace flightsim {

class Guidance {
public:
    /// `legs`: as selected for the flight, at least one.
    Guidance(const Mission& mission, std::vector<Leg> legs);

    /// The controls for the next step. `wind` as in `Surroundings`; `time`: of flight, seconds.
    HelicopterControls update(const HelicopterState& state, const Enu& wind, double time);
    /// The channel has seen the ground at this altitude straight below. It is believed when the
    /// helicopter is over its point and the mission doesn't differ by more than 5 m, which tells a
    /// deck or a wave from a wrong scene.
    void takeSurface(double altitude, const HelicopterState& state, double time);

    bool isFinished() const { return m_finished; } ///< the last leg is done; it goes on hovering
    /// The leg takes so much longer than it should that its point will not be reached.
    bool isStuck(double time) const { return !m_finished && time - m_leg_time > m_patience; }
    const std::vector<Leg>& getLegs() const { return m_legs; }
    std::size_t getLegIndex() const { return m_index; }
    const Leg& getLeg() const { return m_legs[m_index]; }
    double getLegTime() const { return m_leg_time; } ///< time of flight at which it began
    /// Where the reference point would rest on the ground. Of that a mission knows only what lies
    /// around its points; elsewhere there is nothing to stand on.
    double restAltitude(const HelicopterState& state, double time) const;
    const Point& getPoint() const { return m_point; } ///< what lies below at the leg's end

private:
    void begin(const HelicopterState& state, double time);
    void beginPoint(const HelicopterState& state);
    void beginHeight(const HelicopterState& state, bool same_point);
    bool done(const HelicopterState& state, double time) const;
    bool stands(const HelicopterState& state);
    HelicopterControls groundControls(double time);
    Enu acceleration(const HelicopterState& state, double time) const;
    double travelSpeed(const HelicopterState& state) const;
    double wantedSpeed(const Enu& way, const HelicopterState& state) const;
    double verticalAcceleration(const HelicopterState& state, double distance) const;
    double landingSpeed(const HelicopterState& state, double distance) const;
    double targetAltitude(double distance) const;
    double pointRestAltitude() const { return m_surface + m_wheel_height; }
    double headingRate(const HelicopterState& state, const Enu& wind, double time);

    std::vector<Leg> m_legs;
    double m_wheel_height;
    std::size_t m_index = 0;
    bool m_begun = false;
    bool m_finished = false;
    double m_leg_time = 0;
    double m_patience = 0; ///< seconds that the leg may take

    Point m_point;                  ///< where the leg leads
    double m_surface;               ///< altitude below the point: the mission's, or as reported
    std::optional<double> m_height; ///< above the surface, or else
    double m_altitude = 0;          ///< above the ellipsoid
    double m_begin_altitude = 0;    ///< the helicopter's when the leg began
    double m_begin_rotor = 0;       ///< `m_rotor` likewise
    double m_hold_heading = 0;      ///< in the hover
    double m_rotor;                 ///< what the governor is set to on the ground
    bool m_sidestep = false;        ///< the way is so short that the nose doesn't turn to it
    bool m_in_the_air = false;      ///< or leaving the ground, until the wheels carry
    double m_report_time = 0;       ///< of the last surface that the channel reported
};

} // namespace flightsim
