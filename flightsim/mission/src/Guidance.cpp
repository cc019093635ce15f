// SPDX-License-Identifier: MIT
#include "flightsim/mission/Guidance.h"

#include <algorithm>

namespace flightsim {

namespace {

constexpr double VELOCITY_GAIN = 0.9;  // 1/s: acceleration per error of the velocity
constexpr double POSITION_GAIN = 0.45; // 1/s: speed per distance in the last metres
constexpr double HEIGHT_GAIN = 0.6;    // 1/s: likewise, vertically
constexpr double SLOW = 6;             // m/s over ground: the velocity is flown directly
constexpr double FAST = 12;            // m/s: speed and course are flown apart
constexpr double SIDESTEP_DISTANCE = 100;

double smoothStep(double from, double to, double x) {
    const double t = std::clamp((x - from) / (to - from), 0.0, 1.0);
    return t * t * (3 - 2 * t);
}

/// The speed from which a deceleration ends at a distance, linear near the end.
double stoppingSpeed(double distance, double deceleration, double gain) {
    const double linear = deceleration / (gain * gain);
    return distance < linear ? gain * distance
                             : std::sqrt(2 * deceleration * (distance - linear / 2));
}

/// How fast that speed changes, m/s², for whoever closes in.
double stoppingRate(double speed, double closing, double deceleration, double gain) {
    return -closing * (gain * speed < deceleration ? gain : deceleration / speed);
}

bool samePlace(const Point& a, const Point& b) {
    return a.position.longitude == b.position.longitude &&
           a.position.latitude == b.position.latitude && a.position.altitude == b.position.altitude;
}

/// The deceleration that a leg is flown with: what its lean gives, and a little to spare for a wind
/// from behind.
double braking(const Leg& leg) {
    return std::min(leg.deceleration, 0.97 * GRAVITY * std::tan(leg.lean * RADIANS));
}

double lateralLimit(const Leg& leg) { return GRAVITY * std::tan(leg.bank * RADIANS); }

} // namespace

Guidance::Guidance(const Mission& mission, std::vector<Leg> legs)
    : m_legs(std::move(legs)), m_wheel_height(mission.wheel_height),
      m_surface(mission.start.altitude - mission.wheel_height), m_rotor(mission.rotor) {
    m_point.position = mission.start;
    m_point.position.altitude = m_surface;
}

HelicopterControls Guidance::update(const HelicopterState& state, const Enu& wind, double time) {
    if (!m_begun) begin(state, time);
    while (!m_finished && done(state, time)) {
        if (m_index + 1 == m_legs.size()) {
            m_finished = true;
        } else {
            m_index++;
            begin(state, time);
        }
    }
    if (stands(state)) return groundControls(time);
    HelicopterControls controls =
        controlsFor(acceleration(state, time), state, wind,
                    {getLeg().lean, std::max(getLeg().lean, getLeg().bank)});
    controls.heading_rate = headingRate(state, wind, time);
    return controls;
}

void Guidance::begin(const HelicopterState& state, double time) {
    m_begun = true;
    m_leg_time = time;
    m_begin_altitude = state.position.altitude;
    m_begin_rotor = m_rotor;
    m_hold_heading = getLeg().heading.value_or(state.heading);
    beginPoint(state);
    const Enu way = offset(state.position, m_point.at(time));
    const bool may_sidestep = getLeg().kind == LegKind::follow || getLeg().heading;
    m_sidestep = may_sidestep && way.horizontal() < SIDESTEP_DISTANCE;
    const double climb = std::abs(targetAltitude(0) - state.position.altitude);
    m_patience =
        60 + getLeg().seconds + 3 * way.horizontal() / getLeg().speed + 3 * climb / getLeg().rate;
}

/// A leg without a point stays with that of the leg before; from a fast flight, it stops first.
void Guidance::beginPoint(const HelicopterState& state) {
    constexpr double STOPPED = 2; // m/s
    const Point before = m_point;
    const Enu over_point = state.velocity - m_point.velocity;
    if (getLeg().point) {
        m_point = *getLeg().point;
    } else if (over_point.horizontal() > STOPPED) {
        const double speed = state.velocity.horizontal();
        const double way = speed * speed / (2 * braking(getLeg())) + speed / VELOCITY_GAIN;
        const Enu stop = Enu::ofCourse(state.velocity.course(), way);
        m_point = {moved(state.position, stop), {}};
        m_point.position.altitude = before.getSurface();
    }
    // What the channel reported about a place stays true as long as the place is the same.
    const bool same = samePlace(before, m_point);
    if (!same) m_surface = m_point.getSurface();
    beginHeight(state, same);
}

void Guidance::beginHeight(const HelicopterState& state, bool same_point) {
    if (getLeg().height || getLeg().altitude) {
        m_height = getLeg().height;
        m_altitude = getLeg().altitude.value_or(0);
    } else if (!same_point || !m_height) {
        m_height.reset();
        m_altitude = state.position.altitude;
    }
}

bool Guidance::done(const HelicopterState& state, double time) const {
    const Enu way = offset(state.position, m_point.at(time));
    const Enu over_point = state.velocity - m_point.velocity;
    const double elapsed = time - m_leg_time;
    const bool level = std::abs(targetAltitude(0) - state.position.altitude) < 0.5 &&
                       std::abs(state.velocity.up) < 0.4;
    const bool turned =
        std::abs(wrap180(m_hold_heading - state.heading)) < 1 && std::abs(state.heading_rate) < 1.5;
    switch (getLeg().kind) {
    case LegKind::spin_up:
    case LegKind::spin_down:
    case LegKind::hover:
    case LegKind::follow:
    case LegKind::wait:
        return elapsed >= getLeg().seconds;
    case LegKind::turn_to:
        return turned;
    case LegKind::take_off:
        return m_in_the_air && targetAltitude(0) - state.position.altitude < 1;
    case LegKind::climb:
    case LegKind::descend:
        return level;
    case LegKind::fly_to:
        return way.horizontal() < getLeg().radius;
    case LegKind::approach:
        // As slow as a helicopter that comes to a stop is at that distance, and a little to spare.
        return way.horizontal() < getLeg().radius && (turned || !getLeg().heading) && level &&
               over_point.horizontal() < 1.3 * POSITION_GAIN * getLeg().radius;
    case LegKind::land:
        return !m_in_the_air && state.gear_load > 0.95 * GRAVITY;
    }
    return true;
}

/// The wheels carry, or are meant to: the collective is down. Notices lift-off and touchdown.
bool Guidance::stands(const HelicopterState& state) {
    if (getLeg().kind == LegKind::take_off && state.rotor > 0.95 * FULL_ROTOR) m_in_the_air = true;
    if (getLeg().kind == LegKind::land && state.gear_load > 0.15 * GRAVITY) m_in_the_air = false;
    return !m_in_the_air;
}

HelicopterControls Guidance::groundControls(double time) {
    const double share = smoothStep(0, getLeg().seconds, time - m_leg_time);
    if (getLeg().kind == LegKind::spin_up) m_rotor = std::lerp(m_begin_rotor, FULL_ROTOR, share);
    if (getLeg().kind == LegKind::take_off) m_rotor = FULL_ROTOR;
    if (getLeg().kind == LegKind::spin_down) m_rotor = std::lerp(m_begin_rotor, 0.0, share);
    HelicopterControls controls;
    controls.rotor = m_rotor;
    return controls;
}

Enu Guidance::acceleration(const HelicopterState& state, double time) const {
    const Enu way = offset(state.position, m_point.at(time));
    const double distance = way.horizontal();
    const double wanted_speed = wantedSpeed(way, state);
    const Enu wanted = m_point.velocity + Enu::ofCourse(way.course(), wanted_speed);
    const Enu toward = Enu::ofCourse(way.course(), 1);
    const Enu over_point = state.velocity - m_point.velocity;
    const double closing = over_point.east * toward.east + over_point.north * toward.north;
    // On the way to a stop the wanted speed itself falls; to follow it without lag, so must ours.
    const bool stopping = getLeg().kind != LegKind::fly_to && wanted_speed < getLeg().speed;
    const double slowing =
        stopping ? stoppingRate(wanted_speed, closing, braking(getLeg()), POSITION_GAIN) : 0;

    const double most = std::max(getLeg().acceleration, braking(getLeg()));
    Enu direct = (wanted - state.velocity) * VELOCITY_GAIN + toward * slowing;
    direct.up = 0;
    if (direct.horizontal() > most) direct = direct * (most / direct.horizontal());

    const double speed = state.velocity.horizontal();
    const double course = state.velocity.course();
    const double error = wrap180(wanted.course() - course);
    const double along = std::clamp(VELOCITY_GAIN * (wanted.horizontal() - speed) + slowing,
                                    -1.3 * braking(getLeg()), getLeg().acceleration);
    const double across =
        std::clamp(0.8 * speed * error * RADIANS, -lateralLimit(getLeg()), lateralLimit(getLeg()));
    const Enu turning = Enu::ofCourse(course, along) + Enu::ofCourse(course + 90, across);

    const double share = m_sidestep ? 0 : smoothStep(SLOW, FAST, travelSpeed(state));
    Enu result = turning * share + direct * (1 - share);
    result.up = verticalAcceleration(state, distance);
    return result;
}

/// The speed that tells flight from hover: a helicopter that keeps station with a ship hovers,
/// however fast she is.
double Guidance::travelSpeed(const HelicopterState& state) const {
    const Enu over_point = state.velocity - m_point.velocity;
    return std::min(state.velocity.horizontal(), over_point.horizontal());
}

/// Speed over the point towards it.
double Guidance::wantedSpeed(const Enu& way, const HelicopterState& state) const {
    constexpr double STEP_SPEED = 8;    // m/s, sideways
    constexpr double TURNING_SPEED = 5; // m/s, until the nose points the way
    const double distance = way.horizontal();
    double speed = getLeg().speed;
    if (getLeg().kind != LegKind::fly_to)
        speed = std::min(speed, stoppingSpeed(distance, braking(getLeg()), POSITION_GAIN));
    if (m_sidestep) return std::min(speed, STEP_SPEED);
    const double ground_speed = state.velocity.horizontal();
    if (ground_speed < SLOW) {
        const double off = std::abs(wrap180(way.course() - state.heading));
        return off > 40 && distance > 30 ? std::min(speed, TURNING_SPEED) : speed;
    }
    // The circle that leads from this course to the point has the radius d / (2 sin error). With
    // four fifths of the bank for it the point is reached, never orbited.
    const double error = wrap180(way.course() - state.velocity.course()) * RADIANS;
    const double bend = std::max(std::abs(std::sin(error)), 1e-3);
    return std::min(speed,
                    std::max(std::sqrt(0.4 * lateralLimit(getLeg()) * distance / bend), SLOW));
}

double Guidance::verticalAcceleration(const HelicopterState& state, double distance) const {
    constexpr double GAIN = 1.4;    // 1/s
    constexpr double GREATEST = 2;  // m/s²
    constexpr double LEVELLING = 1; // m/s²: how briskly a climb or descent ends
    const double error = targetAltitude(distance) - state.position.altitude;
    double wanted = std::min(getLeg().rate, stoppingSpeed(std::abs(error), LEVELLING, HEIGHT_GAIN));
    if (error < 0) wanted = -wanted;
    if (getLeg().kind == LegKind::land) wanted = landingSpeed(state, distance);
    return std::clamp(GAIN * (wanted - state.velocity.up), -GREATEST, GREATEST);
}

/// Vertical speed of a landing: slower and slower, waiting just above while it isn't over the
/// point.
double Guidance::landingSpeed(const HelicopterState& state, double distance) const {
    constexpr double TOUCHDOWN = 0.25; // m/s
    constexpr double WAITING_HEIGHT = 3;
    constexpr double OVER_POINT = 0.35; // metres
    const double height = state.position.altitude - pointRestAltitude();
    const double above = distance > OVER_POINT ? WAITING_HEIGHT : 0;
    const double down = stoppingSpeed(std::abs(height - above), 0.5, 0.3);
    if (height < above) return std::min(down, 1.0);
    return -std::min(getLeg().rate, above > 0 ? down : down + TOUCHDOWN);
}

double Guidance::targetAltitude(double distance) const {
    constexpr double LEAST_HEIGHT = 1; // of the wheels, except to take off and land
    constexpr double GLIDE = 0.12;     // 7 degrees
    constexpr double LEVEL_DISTANCE = 15;
    double altitude = m_height ? m_surface + *m_height : m_altitude;
    altitude = std::max(altitude, pointRestAltitude() + LEAST_HEIGHT);
    if (getLeg().kind == LegKind::approach && m_begin_altitude > altitude)
        altitude =
            std::min(m_begin_altitude, altitude + GLIDE * std::max(0.0, distance - LEVEL_DISTANCE));
    return altitude;
}

double Guidance::headingRate(const HelicopterState& state, const Enu& wind, double time) {
    constexpr double GAIN = 1.2;      // 1/s
    constexpr double NOSE_GAIN = 2;   // 1/s: an airstream from the side turns the nose quickly
    constexpr double FAR_ENOUGH = 30; // metres: nearer, the point's direction means nothing
    constexpr double GREATEST = 20;   // degrees/s, to follow the airspeed
    const Enu air = state.velocity - wind;
    const double along = m_sidestep ? 0 : smoothStep(SLOW - 1, FAST, travelSpeed(state));
    const Enu way = offset(state.position, m_point.at(time));
    const bool travels = getLeg().kind == LegKind::fly_to || getLeg().kind == LegKind::approach;
    if (along > 0.5 && !getLeg().heading)
        m_hold_heading = state.heading;
    else if (travels && !m_sidestep && way.horizontal() > FAR_ENOUGH)
        m_hold_heading = way.course();
    else if (getLeg().heading)
        m_hold_heading = *getLeg().heading;

    const double hold = wrap180(m_hold_heading - state.heading);
    const double nose = wrap180(air.course() - state.heading);
    const double air_speed2 = std::max(air.horizontal() * air.horizontal(), 1.0);
    const Enu& a = state.acceleration;
    const double air_turn = (a.east * air.north - a.north * air.east) / air_speed2 / RADIANS;
    const double in_hover = std::clamp(GAIN * hold, -getLeg().turn_rate, getLeg().turn_rate);
    const double in_flight = std::clamp(NOSE_GAIN * nose, -GREATEST, GREATEST) + air_turn;
    return std::lerp(in_hover, in_flight, along);
}

double Guidance::restAltitude(const HelicopterState& state, double time) const {
    constexpr double AROUND = 50; // metres
    constexpr double NOTHING = -1e5;
    const Enu way = offset(state.position, m_point.at(time));
    return way.horizontal() < AROUND ? pointRestAltitude() : NOTHING;
}

void Guidance::takeSurface(double altitude, const HelicopterState& state, double time) {
    constexpr double OVER_POINT = 5; // metres
    constexpr double TOLERANCE = 5;  // metres from the mission's own surface
    constexpr double SMOOTHING = 2;  // s: waves pass below, and a report is a frame old
    constexpr double SLEW = 1;       // m/s
    const double dt = std::clamp(time - m_report_time, 0.0, 0.2);
    m_report_time = time;
    if (!m_in_the_air || getLeg().kind == LegKind::fly_to || state.gear_load > 0) return;
    const Enu way = offset(state.position, m_point.at(time));
    if (way.horizontal() > OVER_POINT || std::abs(altitude - m_point.getSurface()) > TOLERANCE)
        return;
    const double change = (altitude - m_surface) * std::min(dt / SMOOTHING, 1.0);
    m_surface += std::clamp(change, -SLEW * dt, SLEW * dt);
}

} // namespace flightsim
