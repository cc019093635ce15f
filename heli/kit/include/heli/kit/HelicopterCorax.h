// SPDX-License-Identifier: MIT
#pragma once

#include "ig/base/jString.h"
#include "ig/math/quat.h"

namespace ig {
class BodyRigid;
class ControlApp;
class Node;
class Object;
class ObjectPrefab;
class World;
} // namespace ig

/// The own helicopter: its prefab, and the animation of what the host does not pose directly, that
/// is rotors, wipers, tail light, and a small rigid-body flight model for flying from the keyboard.
///
/// The logic creates one at start-up, advances it once per frame, and frees it at release after the
/// world has removed the prefab. The host's records are written into it: `m_yaw`, `m_pitch`,
/// `m_roll` hold heading, pitch and roll until the flight model, which takes them for its control
/// inputs, clamps them in the same frame. Without `controllable` the rigid body is disabled and the
/// helicopter moves only as the host poses it; the flight model runs all the same.
///
/// Nodes that the prefab lacks are null and skipped. Without a rigid body the flight model's forces
/// are skipped.
class HelicopterCorax final {
public:
    /// Loads the prefab and adds it to the world. A prefab that can't be loaded is logged; the
    /// model then exists with every node null.
    HelicopterCorax(ig::World* world, const ig::jString& path, bool controllable);

    virtual float get_rotor_speed() const { return m_rotor_speed; }
    virtual void set_rotor_speed(float speed) { m_rotor_speed = speed; }
    virtual float get_ground_height() const { return m_ground_height; }
    virtual void set_ground_height(float height) { m_ground_height = height; }
    virtual float get_collective_decay() const { return m_collective_decay; }
    virtual void set_collective_decay(float decay) { m_collective_decay = decay; }
    virtual bool is_over_water() const { return m_over_water; }
    virtual void set_over_water(bool over_water) { m_over_water = over_water; }
    virtual bool is_wiper_on() const { return m_wiper_on; }
    virtual void set_wiper_on(bool on) { m_wiper_on = on; }
    virtual bool is_controllable() const { return m_controllable; }

    /// Places the prefab in the world, sets the body's damping and shows the prefab.
    void set_transform(const ig::dmat4& transform);
    /// The same without showing it.
    void set_transform_hidden(const ig::dmat4& transform);
    void apply_damping();

    /// Keyboard flight, before `update`, while the first- or third-person view is on. Nothing
    /// unless controllable.
    void update_input(float dt);
    /// Wipers, rotors, tail light, flight model, in this order.
    void update(float dt);

    /// Starts or stops the wipers and tells the wiped glass.
    void toggle_wiper();

    // Poses for whoever flies the model without a host; each poses the prefab with
    // (m_yaw, m_pitch, m_roll). Degrees.
    void set_heading(float value); ///< stored negated
    void set_roll(float value);    ///< stored negated
    void set_pitch(float value);
    void set_attitude(const ig::dvec3& yaw_pitch_roll);
    void set_collective(float collective) { m_collective = collective; }

    ig::dvec3 get_world_position() const;
    ig::dquat get_world_rotation() const;
    void set_world_rotation(const ig::dquat& rotation);
    ig::dmat4 get_world_transform() const;  ///< identity without a prefab
    ig::dmat4 get_iworld_transform() const; ///< identity without a prefab
    ig::vec3 get_linear_velocity() const;   ///< zero without a body
    /// Lets the world remove and destroy the prefab; every node is null afterwards.
    void remove_prefab();

    ig::ObjectPrefab* m_prefab = nullptr; ///< the world's, once added
    ig::Node* m_wing = nullptr;           ///< main rotor, turns about −Z
    ig::Node* m_tail = nullptr;           ///< tail rotor, turns about X
    ig::Node* m_wing_mesh = nullptr;      ///< main-rotor blades, shown at low rotor speed
    ig::Node* m_wing_plane = nullptr;     ///< main-rotor disc, shown at high rotor speed
    ig::Node* m_tail_mesh = nullptr;
    ig::Node* m_tail_plane = nullptr;
    ig::Node* m_front_proj = nullptr; ///< front projector light
    ig::Node* m_wiper_right = nullptr;
    ig::Node* m_wiper_left = nullptr;
    ig::Object* m_tail_light = nullptr; ///< only when it is a lamp
    ig::BodyRigid* m_body = nullptr;
    ig::World* m_world = nullptr;
    float m_rotor_angle = 0;  ///< degrees
    float m_rotor_speed = 0;  ///< degrees per second; from 3000 on the discs are shown
    float m_yaw = 0;          ///< host's heading, or yaw input in [−1, 1]
    float m_pitch = 0;        ///< host's pitch, or longitudinal input in [−1, 1]
    float m_roll = 0;         ///< host's roll, or lateral input in [−7, 7]
    float m_collective = 0;   ///< lift input in [0, 1]
    ig::vec3 m_force_point_a; ///< of the longitudinal force, from the centre of mass, body axes
    ig::vec3 m_force_point_b; ///< of the lateral force, likewise
    ig::dmat4 m_transform;    ///< the last one given to set_transform
    float m_blink_phase = 0;  ///< of the tail light, one cycle per second
    /// Altitude of terrain or sea below the helicopter, −1e9 when there is neither; written by the
    /// frame update.
    float m_ground_height = 0;
    float m_collective_decay = 1; ///< per input step while neither collective key is held
    bool m_over_water = false;    ///< the sea is what lies below; written by the frame update
    bool m_wiper_on = false;
    bool m_controllable;

private:
    void find_nodes();
    void apply_attitude();
    void update_wipers();
    void update_rotors(float dt);
    void update_tail_light(float dt);
    void update_flight_model();
};
