// SPDX-License-Identifier: MIT
#pragma once

#include "ig/base/jAllocator.h"
#include "ig/base/jVector.h"
#include "ig/math/mat.h"
#include "ig/physics/Shape.h"

#include <memory>

namespace ig {

class BodyRigid;
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
    void addShape(Shape* shape) { m_shapes.append(shape); }
    int getNumShapes() const { return m_shapes.size(); }
    /// Null when out of range.
    Shape* getShape(int i) const { return i >= 0 && i < m_shapes.size() ? m_shapes[i] : nullptr; }
    /// Placement of shape `i` in the body's frame; the identity when out of range.
    mat4 getShapeTransform(int i) const;

protected:
    bool m_enabled = true;

private:
    void* m_owner = nullptr;
    jVector<Shape*> m_shapes;
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
    bool isFreezable() const { return m_freezable; }

    void addForce(const vec3& force); ///< at the centre of mass
    /// At a point given relative to the centre of mass, in world axes.
    void addForce(const vec3& relative_point, const vec3& force);
    /// At a point of the world.
    void addWorldForce(const dvec3& point, const vec3& force);
    void addTorque(const vec3& torque);
    /// Velocity of the body's matter at a point of the world.
    vec3 getWorldVelocity(const dvec3& point) const;

private:
    friend class Physics;
    struct Simulation; // the solver's objects, kept out of this header
    void wake();
    bool isPushed() const { return m_force != vec3_zero || m_torque != vec3_zero; }
    void accelerate(double h);    // the velocities after h seconds of gravity, forces, damping
    dvec3 getWorldCenter() const; // centre of mass
    static void setDamping(float& damping, float value);

    float m_mass;
    vec3 m_center;
    float m_linear_damping = 0, m_angular_damping = 0;
    bool m_freezable = true;
    vec3 m_force, m_torque;
    std::unique_ptr<Simulation> m_simulation;
    Physics* m_physics = nullptr; // the world's, while the body is in one
};

} // namespace ig
