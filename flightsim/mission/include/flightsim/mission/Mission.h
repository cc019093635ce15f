// SPDX-License-Identifier: MIT
#pragma once

#include "flightsim/helicopter/Geodesy.h"
#include "flightsim/mission/RecordFields.h"

#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace flightsim {

/// A place that legs refer to. It may move, as a ship does.
struct Point {
    Geodetic position; ///< at the beginning of the flight; its altitude is that of the surface
    Enu velocity;      ///< horizontal, m/s

    Geodetic at(double time) const { return moved(position, velocity * time); }
    double getSurface() const { return position.altitude; }
};

enum class LegKind {
    spin_up,   ///< the rotor gathers speed
    take_off,  ///< straight up
    hover,     ///< stays where it is, or with the point of the leg before when that moves
    follow,    ///< goes to a point and stays with it
    turn_to,   ///< turns to a heading in the hover
    climb,     ///< straight up to a height
    descend,   ///< straight down to a height
    fly_to,    ///< passes a point
    approach,  ///< slows down to a hover over a point
    land,      ///< touches down where it hovers, or at a point nearby
    wait,      ///< on the ground or in a hover
    spin_down, ///< the rotor runs out
};

/// One leg of a mission, with everything that its kind uses. The defaults that differ between kinds
/// are those of the mission file.
struct Leg {
    LegKind kind = LegKind::wait;
    std::string name;               ///< for tables; that of its kind unless given
    int line = 0;                   ///< in the mission file, from 1
    int column = 0;                 ///< likewise
    std::optional<Point> point;     ///< where to; none: here
    std::optional<double> altitude; ///< above mean sea level; excludes `height`
    std::optional<double> height;   ///< above the surface at the point
    std::optional<double> heading;  ///< to hold in the hover; none: as it comes
    double seconds = 0;             ///< duration, for the kinds that have one
    double speed = 30;              ///< over ground, m/s
    double rate = 3;                ///< vertical speed, m/s
    double turn_rate = 20;          ///< in the hover, degrees/s
    double lean = 15;               ///< greatest pitch, and roll but in turns, degrees
    double bank = 15;               ///< greatest roll in turns, degrees
    double acceleration = 2;        ///< greatest along the track, m/s²
    double deceleration = 1.5;      ///< likewise
    double radius = 30;             ///< the point is reached when it is as close as this
    double stretch = 0;             ///< share in the time that a requested duration leaves over
    double optional_from = 0;       ///< flown when the duration is at least this
    double optional_below = std::numeric_limits<double>::infinity(); ///< and below this
    std::vector<Change> changes; ///< timed from the leg's beginning
};

/// A flight from beginning to end, as a mission file describes it.
struct Mission {
    std::string path; ///< of the file, for messages
    std::string name;
    Geodetic start;                 ///< of the reference point, standing on its wheels
    double heading = 0;             ///< at the start, degrees
    double rotor = 0;               ///< rotor speed at the start, record's unit, 0 to 270
    double wheel_height = 1.22;     ///< of the reference point above the ground it stands on
    bool reset = true;              ///< the first record resets the scene
    std::optional<double> duration; ///< seconds, unless the caller asks for another
    std::vector<Change> changes;    ///< timed from the beginning of the flight
    std::vector<Leg> legs;
};

/// The legs to fly for a duration; without one, those that `optional_from` names are flown and
/// those that `optional_below` names are not. Nothing, with `message`, when they don't follow from
/// each other: whoever isn't in the air can't land.
std::optional<std::vector<Leg>> selectLegs(const Mission& mission, std::optional<double> duration,
                                           std::string& message);

/// "path:line:column: what", the form of every message about a mission file.
std::string missionMessage(const std::string& path, int line, int column, const std::string& what);

} // namespace flightsim
