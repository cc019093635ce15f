// SPDX-License-Identifier: MIT
#pragma once

#include "ig/scene/Node.h"

namespace ig {

/// An eye: X right, Y up, looks along −Z. Pose and projection are set from outside, by the
/// `CameraControl` for the main view.
///
/// Geodetic attitudes differ from other nodes': Rz(−heading) · Rx(90 − pitch) · Rz(−roll), so that
/// the pitch counts down from the horizon; 90 looks straight down with the picture's top towards
/// the heading, and a positive roll turns the camera clockwise.
///
/// A radar camera (`NODE_CAMERA_RADAR`) is orthographic and is carried above what has the radar,
/// looking straight down with the heading up. It sees `RADAR_RANGE` metres to each side, and what
/// stands higher than itself as well. The renderer leaves its carrier, the node that the
/// application calls the frame's focus, out of its picture.
class Camera : public Node {
public:
    static constexpr double RADAR_RANGE = 20000; ///< metres

    explicit Camera(int type = NODE_CAMERA);

    /// Symmetric perspective: vertical field of view in degrees, width over height, clip distances.
    void setPerspective(float fov_v, float aspect, double z_near, double z_far);
    /// Parallel projection of what lies `half_width` metres to the left and right of the view axis
    /// and `half_height` above and below it. `z_near` may be negative: what lies behind the eye.
    void setOrtho(double half_width, double half_height, double z_near, double z_far);
    bool isOrtho() const { return m_projection.columns[3].w != 0; }
    /// The last perspective's, degrees.
    float getFovV() const { return m_fov_v; }
    float getFovH() const { return m_fov_h; }
    double getZNear() const { return m_near; }
    double getZFar() const { return m_far; }

    /// Any projection (`frustum`), which may be asymmetric; the accessors above keep their values.
    void setProjection(const dmat4& projection) { m_projection = projection; }
    const dmat4& getProjection() const { return m_projection; }

    /// The world point at `depth` metres along the view axis on the ray through a picture position,
    /// (0, 0) top left to (1, 1) bottom right.
    dvec3 getRayTo(double x, double y, double depth) const;

    /// Nothing beyond what `Node` frees; called before deletion, as for every engine object.
    void release() {}

protected:
    dmat3 composeAttitude(const dvec3& hpr) const override;
    dvec3 decomposeAttitude(const dmat3& attitude) const override;

private:
    float m_fov_v = 50, m_fov_h = 60;
    double m_near = 1, m_far = 1e7;
    dmat4 m_projection;
};

} // namespace ig
