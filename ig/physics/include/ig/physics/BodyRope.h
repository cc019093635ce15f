// SPDX-License-Identifier: MIT
#pragma once

#include "ig/physics/Body.h"

#include <array>

namespace ig {

class PhysicsSurfaces;

/// A cable that hangs from an anchor and carries, through joints, a load.
///
/// The anchor moves as its node is posed: by a host that sends no, one or two poses in a frame.
/// Followed as it is, that motion would shake the load with hundreds of m/s². So the load is a
/// pendulum in the frame of the anchor (position r relative to it, |r| ≤ L), and what the anchor
/// does enters only as the acceleration of a smooth follower of it: a critically damped filter
///
///   a = ω² (anchor − p) − 2 ω v,   p and v the follower's position and velocity,
///
/// with a limited to a hard manoeuvre. Per substep of at most 1/120 s the load then obeys
/// r" = g − a − c r', projected back to the length of the cable. Towards an observer at the anchor
/// the load is smooth; in the world it moves exactly as the anchor is drawn.
///
/// The follower starts on the straight line that fits the anchor's first second, with its velocity
/// v and at the distance 2 v / ω that it keeps behind an even motion, so that a load put out in
/// flight does not fall behind as if it had been at rest. An anchor that moves more than 15 m in
/// one step has been put elsewhere: everything is carried along and keeps its attitude to the local
/// vertical.
///
/// A load whose body lands is held up by the surface below it and stands there, upright, as long as
/// the cable is slack. It then keeps its place below the anchor: nobody says how fast a deck steams
/// ahead, and one that is lowered onto is followed by what carries the cable.
///
/// The cable itself is a chain of points without mass, pinned at the anchor and at the load.
class BodyRope : public Body {
public:
    static constexpr int SEGMENTS = 16;
    static constexpr double MIN_LENGTH = 0.3; ///< of the hanging cable, m

    /// `length` as `setLength`; the cable hangs `length` × `factor` metres long.
    BodyRope(float length, float factor);
    ~BodyRope() override;

    Type getType() const override { return BODY_ROPE; }
    void setEnabled(bool enabled) override { m_enabled = enabled; }
    /// At the anchor, axes east, north, up.
    dmat4 getTransform() const override { return m_frame; }
    /// Moves the anchor of a rope that has no anchor body.
    void setTransform(const dmat4& transform) override;
    void setPreserveTransform(const dmat4& transform) override { setTransform(transform); }

    /// The length value. Stored at once; the cable reels in or out after it at no more than 8 m/s
    /// and 5 m/s². A non-finite one is refused, with one warning a rope.
    float getLength() const { return m_length; }
    void setLength(float length);
    /// How long the cable hangs at present, m.
    double getHangingLength() const { return m_hanging; }

    /// The body whose place is the cable's upper end; null: the rope's own place. Not owned; must
    /// live as long as the rope is in a world.
    void setAnchor(const Body* anchor) { m_anchor = anchor; }

    dvec3 getEnd() const { return m_frame.getTranslate() + m_load; } ///< lower end, world
    vec3 getEndVelocity() const { return vec3(m_load_velocity + m_follower_velocity); }
    /// Point `i` of the cable, 0 at the anchor to SEGMENTS at the lower end, in the rope's frame.
    dvec3 getPoint(int i) const;

    /// Advances by `dt` seconds, over what `surfaces`, which may be null, hold. Called by the
    /// physics.
    void step(double dt, const PhysicsSurfaces* surfaces = nullptr);
    /// Starts to hold a load where it is.
    void catchLoad(const dvec3& place);

private:
    bool isLoaded() const;
    void start(const dvec3& anchor);
    void jump(const dmat3& before, const dvec3& target);
    void findGround(const PhysicsSurfaces* surfaces, bool placed);
    void followAnchor(const dvec3& anchor, double h);
    void startFollower(const dvec3& anchor, double h);
    void reel(double h);
    void swing(const dvec3& up, double h);
    bool settle(dvec3& load, const dvec3& up) const;
    void brakeOnGround(const dvec3& up, double h);
    void moveChain(const dvec3& up, double h);
    void carryLoads();

    float m_length;
    float m_factor;
    bool m_warned = false;
    const Body* m_anchor = nullptr;
    dmat4 m_frame;
    bool m_started = false;
    struct Fit { // sums over the anchor's places since the start: time, place
        double time = 0, n = 0, t = 0, tt = 0;
        dvec3 x, tx;
    } m_fit;
    dvec3 m_first_place; // the anchor's at the start
    dvec3 m_place;       // the anchor's as of the last substep
    dvec3 m_follower, m_follower_velocity, m_follower_acceleration;
    double m_hanging, m_reel_speed = 0;
    dvec3 m_load, m_load_velocity;                           // relative to the anchor, world axes
    std::array<dvec3, SEGMENTS + 1> m_points, m_last_points; // likewise
    bool m_over_ground = false, m_resting = false;
    dvec3 m_ground;     // below the load as of this step, world
    double m_reach = 0; // of the load below the cable's end, m
};

} // namespace ig
