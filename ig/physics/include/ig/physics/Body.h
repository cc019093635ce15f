// SPDX-License-Identifier: MIT
#pragma once

#include "ig/base/jAllocator.h"
#include "ig/base/jVector.h"
#include "ig/math/mat.h"
#include "ig/physics/Shape.h"

#include <memory>

namespace ig {

class BodyContactCallbackBase;
class BodyRigid;
class Joint;
class Physics;

/// The physical side of a scene object: shapes and a pose. An object owns its body and adds it to
/// its world's `Physics`; the scene carries poses across in both directions. The body knows its
/// object only as an opaque owner.
///
/// An enabled dynamic body moves its object. A disabled one, or one outside a world, follows its
/// object: forces and `setPreserveTransform` then never move the object.
class Body : public jObject {
public:
    enum Type { BODY_RIGID = 1, BODY_ROPE = 4 };
    static constexpr float GRAVITY = 9.80665f; ///< standard gravity, m/s²

    ~Body() override;
    virtual Type getType() const = 0;

    void setOwner(void* owner) { m_owner = owner; }
    void* getOwner() const { return m_owner; }

    bool isEnabled() const { return m_enabled; }
    virtual void setEnabled(bool enabled) = 0;

    /// The pose of the body's frame, which is its object's: earth-centred, without scale.
    virtual dmat4 getTransform() const = 0;
    /// Moves the body and stops it.
    virtual void setTransform(const dmat4& transform) = 0;
    /// Moves the body and preserves its velocities. Ignored while the body is disabled.
    virtual void setPreserveTransform(const dmat4& transform) = 0;

    /// Takes ownership. Shapes are added before the body first enters a world.
    void addShape(Shape* shape) {
        shape->m_body = this;
        m_shapes.append(shape);
    }
    int getNumShapes() const { return m_shapes.size(); }
    /// Null when out of range.
    Shape* getShape(int i) const { return i >= 0 && i < m_shapes.size() ? m_shapes[i] : nullptr; }
    /// Placement of shape `i` in the body's frame; the identity when out of range.
    mat4 getShapeTransform(int i) const;

    /// The joints that hold the body or that it holds, broken ones included.
    int getNumJoints() const { return m_joints.size(); }
    Joint* getJoint(int i) const { return m_joints[i]; }

    /// Who is told when the body runs into something (see `Physics`); null: nobody. Not owned, and
    /// must outlive the body.
    void setContactCallback(BodyContactCallbackBase* callback) { m_contact_callback = callback; }
    BodyContactCallbackBase* getContactCallback() const { return m_contact_callback; }

protected:
    /// A shape was given a mass of its own.
    virtual void changeShapeMass(Shape&, float) {}
    /// The destructor of a body that a world has says so, while it is still whole.
    void leavePhysics();

    bool m_enabled = true;
    Physics* m_physics = nullptr; ///< the world's, while the body is in one
    jVector<Joint*> m_joints;     ///< shared with the body at the other end
    jVector<Shape*> m_shapes;

private:
    friend class Joint;
    friend class Physics;
    friend class Shape;
    void* m_owner = nullptr;
    BodyContactCallbackBase* m_contact_callback = nullptr;
};

/// A rigid body, dynamic when its mass is positive and static when it is 0.
///
/// Forces and torques collect until the next physics step and are cleared after it. They belong to
/// the pose at its beginning: held through its substeps they would lag behind the motion and pump
/// energy into whatever is springy (a floating box of 4 rad/s starts to jump at steps of 0.1 s). So
/// a body that was pushed gets the whole step's change of velocity, gravity and damping included,
/// at once; then it is stable up to steps of 2 / ω. Any other body gets it substep by substep.
///
/// Damping d (1/s) divides the velocity by 1 + d·h after h seconds, so that any d from 0 up is
/// stable; others are ignored. Velocities and forces are in world axes; m/s, rad/s, N, N·m.
///
/// A body that a joint ties to a rope is carried by the rope and takes part again when the joint
/// breaks.
class BodyRigid : public Body {
public:
    /// `mass` in kg, negative or non-finite values count as 0 (static).
    BodyRigid(float mass, const vec3& center_of_mass);
    ~BodyRigid() override;

    Type getType() const override { return BODY_RIGID; }
    void setEnabled(bool enabled) override;
    dmat4 getTransform() const override;
    void setTransform(const dmat4& transform) override;
    void setPreserveTransform(const dmat4& transform) override;

    float getMass() const { return m_mass; }
    /// Centre of mass in the body's frame.
    const vec3& getCenterOfMass() const { return m_center; }
    vec3 getLinearVelocity() const; ///< of the centre of mass
    void setLinearVelocity(const vec3& velocity);
    vec3 getAngularVelocity() const;
    void setAngularVelocity(const vec3& velocity);

    void setLinearDamping(float damping) { setDamping(m_linear_damping, damping); }
    float getLinearDamping() const { return m_linear_damping; }
    void setAngularDamping(float damping) { setDamping(m_angular_damping, damping); }
    float getAngularDamping() const { return m_angular_damping; }
    /// Whether the body may fall asleep when it hardly moves; default true.
    void setFreezable(bool freezable);

    void addForce(const vec3& force); ///< at the centre of mass
    /// At a point given relative to the centre of mass, in world axes.
    void addForce(const vec3& relative_point, const vec3& force);
    /// At a point of the world.
    void addWorldForce(const dvec3& point, const vec3& force);
    void addTorque(const vec3& torque);
    /// Velocity of the body's matter at a point of the world.
    vec3 getWorldVelocity(const dvec3& point) const;
    /// Changes the velocities at once, N·s, at a point of the body's frame. Given before the body
    /// is in a world, it waits until then; `setTransform` takes it back.
    void addImpulse(const vec3& local_point, const vec3& impulse);

    /// Drag area (coefficient × area, m²) of what brakes the body in still air, such as an open
    /// parachute: force ½·ρ·area·v² against the motion. Default 0; negative or non-finite: ignored.
    void setDragArea(float area) { setDamping(m_drag_area, area); }
    /// A sensor passes through everything and only reports what it meets. Default false; set before
    /// the body first enters a world.
    void setSensor(bool sensor) { m_sensor = sensor; }
    /// Whether the body comes to rest where it meets ground that has no body of its own
    /// (`PhysicsSurfaces`), also while it hangs from a rope. Default false.
    void setLanding(bool landing) { m_landing = landing; }
    bool isLanding() const { return m_landing; }
    /// Whether the sea counts as ground to a body that lands. Default false.
    void setFloating(bool floating) { m_floating = floating; }
    bool isFloating() const { return m_floating; }

protected:
    void changeShapeMass(Shape& shape, float mass) override;

private:
    friend class BodyRope;
    friend class Joint;
    friend class Physics;
    struct Simulation; // the solver's objects, kept out of this header
    void wake();
    bool isPushed() const { return m_force != vec3_zero || m_torque != vec3_zero; }
    void accelerate(double h);    // the velocities after h seconds of gravity, forces, damping
    dvec3 getWorldCenter() const; // centre of mass
    bool isHeld() const;          // by a rope
    void followJoints();          // held, it is carried; let go, it takes part
    void setHeldTransform(const dmat4& transform);
    void applyMass();
    static void setDamping(float& damping, float value);

    float m_mass;
    vec3 m_center;
    float m_linear_damping = 0, m_angular_damping = 0;
    bool m_freezable = true;
    float m_drag_area = 0;
    bool m_sensor = false, m_landing = false, m_floating = false;
    vec3 m_force, m_torque;
    vec3 m_impulse, m_impulse_point; // given before the body takes part
    std::unique_ptr<Simulation> m_simulation;
};

} // namespace ig
