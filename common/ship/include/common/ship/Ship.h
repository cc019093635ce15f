// SPDX-License-Identifier: MIT
#pragma once

#include "ig/math/vec.h"

namespace ig {
class BodyRigid;
class Object;
class ObjectOcean;
} // namespace ig
class Buoyancy;
class Wakes;

/// A surface ship: a scene object whose rigid body floats, is pushed ahead by its propulsion and
/// braked by the water. Whoever creates it keeps it; `update` once per frame, after the ship's wake
/// and before the physics step. The object and the ocean must outlive it.
///
/// How much of propulsion, rudder and heel acts depends on the immersion s: (0.5 − |0.5 − s|)²,
/// nothing in the air or under water, most (0.25) at half immersion. In still water a ship of mass
/// m and box volume V at full ahead reaches the speed v that solves
///     s² V P = 7.2 m s² v + 4000 s v² + 0.1 s m v
/// (propulsion P; drag of the floating points, of the hull, and damping).
class Ship {
public:
    /// Finds the object's body and its node "wakes"; without either it does without.
    Ship(ig::Object* object, ig::ObjectOcean* ocean);
    Ship(const Ship&) = delete;
    Ship& operator=(const Ship&) = delete;

    /// Propulsion ahead, N per m³ of the box's volume; default 1000.
    virtual float getThrust() const { return m_thrust; }
    virtual void setThrust(float thrust) { m_thrust = thrust; }
    /// 0 none (default), 1 keyboard, 2 full ahead.
    virtual int getControlMode() const { return m_control_mode; }
    virtual void setControlMode(int mode) { m_control_mode = mode; }
    virtual ~Ship();

    /// Adds the frame's forces to the body. Nothing while the object is disabled.
    void update();
    /// Sets the control vector from the control mode; always true.
    bool update_control();

    ig::Object* getObject() const { return m_object; }
    Wakes* getWakes() const { return m_wakes; } ///< null without a node "wakes"
    /// m/s, world axes; zero without a body.
    ig::vec3 getVelocity() const;

private:
    void propel();
    void brake(float submerged);

    ig::Object* m_object;
    ig::BodyRigid* m_body;
    Buoyancy* m_buoyancy = nullptr;   ///< owned
    Wakes* m_wakes = nullptr;         ///< owned
    ig::vec3 m_control;               ///< x thrust, y rudder (to the left positive), z 0
    ig::vec3 m_still_velocity;        ///< what a ship without body reports
    float m_drag = 4000.0f;           ///< of the hull fully immersed, N per (m/s)²
    float m_angular_damping = 1.2f;   ///< fully immersed, 1/s
    float m_reverse_thrust = 2000.0f; ///< propulsion astern, N/m³
    float m_pitch_torque = 2000.0f;   ///< of the propulsion, N·m
    float m_yaw_torque = 5400.0f;     ///< of the rudder, N·m
    float m_roll_torque = 3000.0f;    ///< of the rudder, N·m
    float m_volume = 0;               ///< of the body's box, m³
    float m_thrust = 1000.0f;
    int m_control_mode = 0;
};
