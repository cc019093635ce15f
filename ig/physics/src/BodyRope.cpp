// SPDX-License-Identifier: MIT
#include "ig/physics/BodyRope.h"

#include "ig/base/jLog.h"
#include "ig/math/EllipsoidModel.h"
#include "ig/physics/Joint.h"
#include "ig/physics/PhysicsSurfaces.h"

#include <algorithm>
#include <cmath>

namespace ig {

namespace {

const EllipsoidModel EARTH;
LogLimiter g_length_report; // a host can make new ropes with every datagram

constexpr double SUBSTEP = 1.0 / 120;
constexpr double FOLLOWER_RATE = 2;     ///< ω, rad/s: slower than record jitter, as fast as flight
constexpr double MAX_ACCELERATION = 6;  ///< m/s², of the follower; a hard manoeuvre
constexpr double START_TIME = 1;        ///< s of the first line through the anchor
constexpr double JUMP = 15;             ///< m in one step: faster than anything that carries a load
constexpr double LOAD_DAMPING = 0.4;    ///< 1/s, the air's; lets a swing die away in seconds
constexpr double MAX_REEL_SPEED = 8;    ///< m/s
constexpr double REEL_ACCELERATION = 5; ///< m/s²
constexpr double REEL_BRAKING_RESERVE = 1.2; ///< so that braking follows its speed limit closely
constexpr double CHAIN_DAMPING = 2;          ///< 1/s
constexpr int CHAIN_PASSES = 6;              ///< enough for the eye; the load doesn't hang on it
constexpr double GROUND_LIFT = 0.5;     ///< m; a deck that heaves this much in a frame is still met
constexpr double GROUND_SEARCH = 4;     ///< m below the load: more than it can sink in one step
constexpr double GROUND_HOLD = 0.3;     ///< m; ground that gives way by more in a substep is left
constexpr double GROUND_FRICTION = 0.6; ///< of a steel frame on a deck
constexpr double UPRIGHT_SLACK = 0.3;   ///< m of slack in which a standing load rights itself

/// How far a load reaches below the cable's end, along its own Z axis. Round shapes count as the
/// boxes around them.
double reachBelow(const Body& load) {
    double reach = 0;
    for (int i = 0; i < load.getNumShapes(); i++) {
        const Shape& shape = *load.getShape(i);
        dvec3 size(shape.getSize());
        if (shape.getType() == Shape::SHAPE_SPHERE || shape.getType() == Shape::SHAPE_CAPSULE)
            size.z += size.x; // the round ends
        const dmat4 place(load.getShapeTransform(i));
        const double half = (std::abs(place.getX().z) * size.x + std::abs(place.getY().z) * size.y +
                             std::abs(place.getZ().z) * size.z) /
                            2;
        reach = std::max(reach, half - place.getTranslate().z);
    }
    return reach;
}

} // namespace

BodyRope::BodyRope(float length, float factor)
    : m_length(length), m_factor(factor),
      m_hanging(std::max(MIN_LENGTH, static_cast<double>(length * factor))) {}

BodyRope::~BodyRope() { leavePhysics(); }

void BodyRope::setTransform(const dmat4& transform) {
    if (isFinite(transform) && !m_anchor) m_frame = EARTH.getWGSTransform(transform.getTranslate());
}

void BodyRope::setLength(float length) {
    if (std::isfinite(length)) {
        m_length = length;
    } else if (!m_warned) {
        m_warned = true;
        if (g_length_report.allow())
            jLog::warning("BodyRope::setLength: a length that is not finite is refused");
    }
}

dvec3 BodyRope::getPoint(int i) const { return transpose(m_frame.getMat3()) * m_points[i]; }

bool BodyRope::isLoaded() const {
    return std::any_of(m_joints.begin(), m_joints.end(),
                       [](const Joint* joint) { return !joint->isBroken(); });
}

void BodyRope::catchLoad(const dvec3& place) {
    if (!m_started) return;
    m_load = place - m_frame.getTranslate();
    m_load_velocity = {};
    m_hanging = std::max(m_hanging, length(m_load)); // reels it in from where it is
}

void BodyRope::step(double dt, const PhysicsSurfaces* surfaces) {
    const dmat4 before = m_frame;
    const dvec3 target =
        m_anchor ? m_anchor->getTransform().getTranslate() : m_frame.getTranslate();
    m_frame = EARTH.getWGSTransform(target);
    const bool jumps = m_started && length(target - m_place) > JUMP;
    const bool placed = jumps || !m_started;
    if (!m_started) start(target);
    if (jumps) jump(before.getMat3(), target);
    findGround(surfaces, placed);
    const int steps = std::max(1, static_cast<int>(std::ceil(dt / SUBSTEP - 1e-3)));
    const double h = dt / steps;
    const dvec3 from = m_place, up = m_frame.getZ();
    for (int i = 1; i <= steps; i++) {
        m_place = from + (target - from) * (static_cast<double>(i) / steps);
        followAnchor(m_place, h);
        reel(h);
        swing(up, h);
        moveChain(up, h);
    }
    carryLoads();
}

/// Hangs at rest below the anchor.
void BodyRope::start(const dvec3& anchor) {
    m_started = true;
    m_first_place = m_place = m_follower = anchor;
    m_load = -m_frame.getZ() * m_hanging;
    for (std::size_t i = 0; i <= SEGMENTS; i++)
        m_points[i] = m_last_points[i] = m_load * (static_cast<double>(i) / SEGMENTS);
}

/// Carries everything along to where the anchor was put.
void BodyRope::jump(const dmat3& before, const dvec3& target) {
    const dmat3 turn = m_frame.getMat3() * transpose(before);
    for (dvec3* v : {&m_load, &m_load_velocity, &m_follower_velocity})
        *v = turn * *v;
    for (dvec3& point : m_points)
        point = turn * point;
    m_last_points = m_points;
    m_follower += target - m_place;
    m_first_place += target - m_place;
    m_place = target;
}

/// Looks for what a landing load would stand on: once a step, from its foot, or from the anchor
/// when that was `placed` anew and the load may be below the ground.
void BodyRope::findGround(const PhysicsSurfaces* surfaces, bool placed) {
    bool lands = false, floats = false;
    m_reach = 0;
    for (const Joint* joint : m_joints) {
        const BodyRigid& load = *joint->getLoad();
        if (joint->isBroken() || !load.isLanding()) continue;
        lands = true;
        floats = floats || load.isFloating();
        m_reach = std::max(m_reach, reachBelow(load));
    }
    const dvec3 up = m_frame.getZ(), foot = getEnd() - up * m_reach;
    const double lift = placed ? dot(-m_load, up) + m_reach : GROUND_LIFT;
    m_over_ground = surfaces && lands &&
                    surfaces->meet(foot + up * lift, foot - up * GROUND_SEARCH, floats, &m_ground);
    m_resting = m_resting && m_over_ground;
}

void BodyRope::followAnchor(const dvec3& anchor, double h) {
    if (m_fit.time < START_TIME) {
        startFollower(anchor, h);
        return;
    }
    dvec3 a = (anchor - m_follower) * (FOLLOWER_RATE * FOLLOWER_RATE) -
              m_follower_velocity * (2 * FOLLOWER_RATE);
    m_follower_velocity += a * h;
    m_follower += m_follower_velocity * h;
    const double size = length(a);
    m_follower_acceleration = size > MAX_ACCELERATION ? a * (MAX_ACCELERATION / size) : a;
}

/// Lays a straight line through the anchor's places so far, and the follower at its distance
/// behind.
void BodyRope::startFollower(const dvec3& anchor, double h) {
    Fit& f = m_fit;
    const dvec3 x = anchor - m_first_place;
    f.time += h;
    f.n++;
    f.t += f.time;
    f.tt += f.time * f.time;
    f.x += x;
    f.tx += x * f.time;
    const double spread = f.n * f.tt - f.t * f.t;
    const dvec3 velocity = spread > 0 ? (f.tx * f.n - f.x * f.t) / spread : dvec3();
    const dvec3 place = (f.x - velocity * f.t) / f.n + velocity * f.time;
    m_follower_velocity = velocity;
    m_follower = m_first_place + place - velocity * (2 / FOLLOWER_RATE);
}

void BodyRope::reel(double h) {
    const double rest = std::max(MIN_LENGTH, static_cast<double>(m_length * m_factor)) - m_hanging;
    // The speed from which braking still ends at the wanted length.
    const double speed = std::copysign(
        std::min(MAX_REEL_SPEED, std::sqrt(2 * REEL_ACCELERATION * std::abs(rest))), rest);
    const double change = REEL_ACCELERATION * REEL_BRAKING_RESERVE * h;
    m_reel_speed += std::clamp(speed - m_reel_speed, -change, change);
    if (m_reel_speed * rest > 0 && std::abs(m_reel_speed * h) > std::abs(rest)) {
        m_hanging += rest;
        m_reel_speed = 0;
    } else {
        m_hanging = std::max(MIN_LENGTH, m_hanging + m_reel_speed * h);
    }
}

void BodyRope::swing(const dvec3& up, double h) {
    m_load_velocity +=
        (-up * GRAVITY - m_follower_acceleration - m_load_velocity * LOAD_DAMPING) * h;
    dvec3 next = m_load + m_load_velocity * h;
    const bool stands = m_over_ground && settle(next, up);
    const double distance = length(next);
    if (distance > m_hanging) next = next * (m_hanging / distance); // lifts it
    m_load_velocity = (next - m_load) / h;
    m_load = next;
    m_resting = stands && distance <= m_hanging;
    if (m_resting) brakeOnGround(up, h);
}

/// Puts a load that is in the ground onto it, and one that stood on it as well, so that it doesn't
/// hop while the anchor climbs; whether it did. Never above the anchor.
bool BodyRope::settle(dvec3& load, const dvec3& up) const {
    const double floor = std::min(dot(m_ground - m_place, up) + m_reach, -MIN_LENGTH);
    const double gap = dot(load, up) - floor;
    if (gap > (m_resting ? GROUND_HOLD : 0)) return false;
    load -= up * gap;
    return true;
}

/// The ground is at rest in height, so that it sinks away from a climbing anchor; over the ground
/// the load comes to rest relative to the anchor.
void BodyRope::brakeOnGround(const dvec3& up, double h) {
    const dvec3 along = m_load_velocity - up * dot(m_load_velocity, up);
    const double speed = length(along), brake = GROUND_FRICTION * GRAVITY * h;
    m_load_velocity =
        along * (speed > brake ? 1 - brake / speed : 0) - up * dot(m_follower_velocity, up);
}

void BodyRope::moveChain(const dvec3& up, double h) {
    const bool loaded = isLoaded();
    const std::size_t last = loaded ? SEGMENTS - 1 : SEGMENTS; // the last point that is free
    for (std::size_t i = 1; i <= last; i++) {
        const dvec3 move = (m_points[i] - m_last_points[i]) / (1 + CHAIN_DAMPING * h);
        m_last_points[i] = m_points[i];
        m_points[i] += move - up * (GRAVITY * h * h);
    }
    if (loaded) {
        m_last_points[SEGMENTS] = m_points[SEGMENTS];
        m_points[SEGMENTS] = m_load;
    }
    const double segment = m_hanging / SEGMENTS, segment2 = segment * segment;
    for (int pass = 0; pass < CHAIN_PASSES; pass++)
        for (std::size_t i = 0; i < SEGMENTS; i++) {
            const dvec3 link = m_points[i + 1] - m_points[i];
            const double size2 = length2(link);
            if (size2 <= segment2) continue;
            const double first = i > 0, second = i + 1 <= last; // whether each end gives way
            if (first + second == 0) continue;
            // (s − l) / s to the first order about s = l, without a root
            const dvec3 pull =
                link * ((size2 - segment2) / ((size2 + segment2) * (first + second)));
            m_points[i] += pull * first;
            m_points[i + 1] -= pull * second;
        }
    if (!m_resting) return;
    const double ring = dot(m_load, up);
    for (std::size_t i = 1; i < SEGMENTS; i++) // slack cable gathers on the load
        m_points[i] += up * std::max(0.0, ring - dot(m_points[i], up));
}

/// Poses the loads at the lower end, their Z axis along the cable or, the slacker it is, upright; X
/// towards the east.
void BodyRope::carryLoads() {
    const dvec3 cable = -normalize(m_load), up = m_frame.getZ();
    const double slack = std::clamp((m_hanging - length(m_load)) / UPRIGHT_SLACK, 0.0, 1.0);
    const dvec3 z = normalize(cable + (up - cable) * slack);
    dvec3 x = m_frame.getX() - z * dot(m_frame.getX(), z);
    if (length2(x) < 1e-6) x = m_frame.getY() - z * dot(m_frame.getY(), z);
    x = normalize(x);
    const dmat4 pose(dmat3(x, cross(z, x), z), getEnd());
    for (const Joint* joint : m_joints)
        if (!joint->isBroken() && joint->getLoad()->isEnabled())
            joint->getLoad()->setHeldTransform(pose);
}

} // namespace ig
