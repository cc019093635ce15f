// SPDX-License-Identifier: MIT
#pragma once

#include "ig/math/mat.h"

namespace ig {

class Camera;

/// One eye for one frame. World positions are earth-centred doubles; the graphics device sees only
/// floats in the eye's own frame E: east, north, up at the eye, origin at the eye. What is near the
/// eye is exact to a fraction of a millimetre wherever on earth it is.
struct FrameView {
    dvec3 eye;                ///< world
    dmat3 frame;              ///< E in world axes: columns east, north, up
    dvec3 geodetic;           ///< longitude, latitude (degrees), altitude of the eye
    mat4 view;                ///< E to the eye's axes: x right, y up, looks along −z
    mat4 projection;          ///< depth 1 at the near plane, 0 at the far one
    double near = 0, far = 0; ///< metres; orthographic: negative distances lie behind the eye
    bool orthographic = false;
    /// Inward normals of the sides of the view volume in E, and their distances from the eye (0 for
    /// a perspective).
    vec3 side_normals[4];
    float side_offsets[4] = {};
    /// Nothing is out of sight, too small or disabled: for a rehearsal of all that may be drawn.
    bool everything = false;
    /// Coarser things may stand in for what is still being made; else that is waited for.
    bool hurried = false;
    float pixel_angle = 0; ///< rad at the middle of the picture; orthographic: metres

    FrameView() = default;
    /// `height` of the picture in pixels; `clip_control`: whether depth is clipped to 0..1 (else to
    /// −1..1, with less resolution).
    FrameView(const Camera& camera, int height, bool clip_control);

    dvec3 toFrame(const dvec3& world) const;
    dvec3 toFrameDirection(const dvec3& world) const;
    mat4 toFrame(const dmat4& world) const;
    /// Whether a sphere (E) is at least partly within the sides of the view, or counts as if.
    bool sees(const vec3& center, float radius) const;
    /// Of still water above or below a place (E): its z.
    float getSeaLevel(const vec3& place) const;
    /// From a place in the picture, −1 to 1, to the eye's axes: scale and offset of a direction at
    /// unit distance; of parallel rays of where they begin, m.
    vec4 getRay() const;
    /// Distance along the view axis for a value read from the depth buffer; infinite for 0.
    double toDistance(double depth) const;
};

} // namespace ig
