// SPDX-License-Identifier: MIT
#pragma once

#include "ig/base/jString.h"
#include "ig/math/quat.h"

namespace ig {

class Camera;

/// The single place where the view is defined: a world position, a rotation, three extra angles and
/// an asymmetric projection, pushed to the engine camera on request. The application creates
/// one and hands it to the logic, which moves the view by writing `m_position` and `m_rotation` and
/// calling `updateView`.
class CameraControl {
public:
    /// `camera` receives view and projection; it is not owned and may be null, in which case the
    /// pushes do nothing. Only `setCamera` reads from it.
    explicit CameraControl(Camera* camera);

    // Two integers and a name that the application may use as it likes.
    virtual int getId() const { return m_id; }
    virtual void setId(int id) { m_id = id; }
    virtual const int& getIndex() const { return m_index; }
    virtual void setIndex(const int& index) { m_index = index; }
    virtual const jString& getName() const { return m_name; }
    virtual void setName(const jString& name) { m_name = name; }

    virtual vec3& getAngles() { return m_angles; }
    virtual dvec3& getPosition() { return m_position; }
    virtual dquat& getRotation() { return m_rotation; }
    virtual Camera* getCamera() const { return m_camera; }
    virtual ~CameraControl() = default; // below the operations, whose order is fixed

    /// Takes a camera over as it is: pose, clip distances and fields of view; then pushes both.
    void setCamera(Camera* camera);
    /// Pushes position and final rotation to the camera.
    void updateView();
    /// Pushes the projection to the camera.
    void updateProjection();

    // The trailing flag pushes at once.
    void setPosition(const dvec3& position, bool apply);
    void setRotation(const dquat& rotation, bool apply);
    void setAngles(const vec3& angles, bool apply);
    /// Heading, pitch, roll in world axes (`rotateHPR`), degrees.
    void setRotationHPR(const vec3& hpr, bool apply);
    /// Angles in the local east-north-up frame at the camera, degrees: x counter-clockwise from
    /// north, y roll, z pitch down. Nothing without a camera.
    void setRotationWgs(const vec3& angles, bool apply);
    void setNear(float z_near, bool apply);
    void setFar(float z_far, bool apply);
    float getNear() const { return static_cast<float>(m_near); }
    float getFar() const { return static_cast<float>(m_far); }
    /// Added to the picture's offset, see `frustum`.
    void setShear(float x, float y);

    /// The rotation that `updateView` pushes: `m_rotation` turned by the extra angles.
    dquat getFinalRotation() const;
    /// The same as a Z-up rotation (`convertToZUpCoordinateSystem`).
    dquat getFinalRotationZUp() const;

    // The logic writes these and then calls updateView.
    vec3 m_angles;    ///< degrees: x about the local Y axis, y about X, z about Z
    dvec3 m_position; ///< world
    dquat m_rotation; ///< world

private:
    int m_id = 0;
    int m_index = -1;
    jString m_name;
    Camera* m_camera;
    float m_shear[2] = {0, 0};
    float m_fov_top = 25, m_fov_bottom = -25, m_fov_left = -30, m_fov_right = 30; ///< degrees
    double m_near = 1, m_far = 1e7;                                               ///< metres
};

} // namespace ig
