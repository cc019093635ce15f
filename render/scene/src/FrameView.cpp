// SPDX-License-Identifier: MIT
#include "render/scene/FrameView.h"

#include "ig/math/EllipsoidModel.h"
#include "ig/scene/Camera.h"
#include "render/scene/ShaderConstants.h"

#include <cmath>
#include <limits>

namespace ig {

namespace {

dvec3 multiplyTransposed(const dmat3& m, const dvec3& v) {
    return {dot(m.columns[0], v), dot(m.columns[1], v), dot(m.columns[2], v)};
}

/// The rotation of an affine transform, without its scale.
dmat3 orthonormal(const dmat3& m) {
    const dvec3 z = normalize(m.getZ()), x = normalize(cross(m.getY(), z));
    return {x, cross(z, x), z};
}

} // namespace

FrameView::FrameView(const Camera& camera, int height, bool clip_control) {
    const EllipsoidModel earth;
    const dmat4& pose = camera.getWorldTransform();
    eye = pose.getTranslate();
    frame = earth.getWGSTransform(eye).getMat3();
    geodetic = earth.toWGS(eye);
    const dmat3 to_eye = transpose(orthonormal(pose.getMat3())) * frame;
    for (int i = 0; i < 3; i++)
        view.columns[i] = {vec3(to_eye.columns[i]), 0};

    // The projection's x and y rows hold as they are; its depth row is made anew.
    const auto& p = camera.getProjection().columns;
    orthographic = p[2].w == 0;
    double depth_z, depth_w;
    if (orthographic) { // from z_ndc = p22 z + p32
        near = (p[3].z + 1) / p[2].z;
        far = (p[3].z - 1) / p[2].z;
        depth_z = 1 / (far - near);
        depth_w = far / (far - near);
    } else {
        near = p[3].z / (p[2].z - 1);
        far = p[3].z / (p[2].z + 1);
        if (!(far > near)) far = 1e9; // an infinite one
        depth_z = near / (far - near);
        depth_w = near * far / (far - near);
    }
    if (!clip_control) { // z' = 2 z − w
        depth_z = 2 * depth_z - p[2].w;
        depth_w = 2 * depth_w - p[3].w;
    }
    for (int i = 0; i < 4; i++)
        projection.columns[i] = {static_cast<float>(p[i].x), static_cast<float>(p[i].y), 0,
                                 static_cast<float>(p[i].w)};
    projection.columns[2].z = static_cast<float>(depth_z);
    projection.columns[3].z = static_cast<float>(depth_w);

    // Sides: w ± x ≥ 0 and w ± y ≥ 0 in clip space, brought to E.
    for (int i = 0; i < 4; i++) {
        const double sign = i % 2 ? -1 : 1;
        const auto row = [&](int c) { return sign * (i < 2 ? p[c].x : p[c].y) + p[c].w; };
        const dvec3 normal(row(0), row(1), row(2));
        const double scale = 1 / length(normal);
        side_normals[i] = vec3(transpose(to_eye) * (normal * scale));
        side_offsets[i] = static_cast<float>(row(3) * scale);
    }
    pixel_angle = static_cast<float>(2 / (p[1].y * height));
}

dvec3 FrameView::toFrame(const dvec3& world) const {
    return multiplyTransposed(frame, world - eye);
}

dvec3 FrameView::toFrameDirection(const dvec3& world) const {
    return multiplyTransposed(frame, world);
}

mat4 FrameView::toFrame(const dmat4& world) const {
    const dmat3 rotation = transpose(frame) * world.getMat3();
    return mat4(dmat4(rotation, toFrame(world.getTranslate())));
}

bool FrameView::sees(const vec3& center, float radius) const {
    if (everything) return true;
    for (int i = 0; i < 4; i++)
        if (dot(side_normals[i], center) + side_offsets[i] < -radius) return false;
    return true;
}

float FrameView::getSeaLevel(const vec3& place) const {
    return -static_cast<float>(geodetic.z) -
           HALF_CURVATURE * (place.x * place.x + place.y * place.y);
}

vec4 FrameView::getRay() const {
    const auto& p = projection.columns;
    const vec2 offset = orthographic ? vec2{-p[3].x, -p[3].y} : vec2{p[2].x, p[2].y};
    return {1 / p[0].x, 1 / p[1].y, offset.x / p[0].x, offset.y / p[1].y};
}

double FrameView::toDistance(double depth) const {
    if (orthographic) return far - depth * (far - near);
    if (depth <= 0) return std::numeric_limits<double>::infinity();
    return near * far / (depth * (far - near) + near);
}

} // namespace ig
