// SPDX-License-Identifier: MIT
#pragma once

#include "frames/FrameLog.h"

#include <vector>

class Environment;
class OperatorInterface;

namespace ig {
class Camera;
class ParticleSystem;
class World;
} // namespace ig

/// What is looked at. All of it is the application's.
struct SceneView {
    ig::World& world;
    const ig::ParticleSystem& particles;
    const ig::Camera& camera; ///< the logic's
    const Environment& environment;
    const OperatorInterface& interface;
};

/// The scene as it stands between two frames, by parts: name and digest of each, in an order of
/// their own. Two runs that took in the same have the same digests, to the last bit, whatever draws
/// them and however fast:
///
///     feedback     all that the sockets sent
///     environment  the scene's time, wind, weather and hour
///     sea          its settings, and, where it is, the water's height below the camera
///     bodies       poses, velocities, cables, joints
///     materials    their parameters and states
///     particles    each of them
///     camera       of the operator, whatever the display looks from
///     panels       what the logic's panels show
///     meshes, emitters, ...  of each type of node: whether it is enabled, and its pose in the
///     world
///
/// What a display has of its own (precipitation around its eye, overlays with costs and times) is
/// no part of it.
std::vector<frames::PartDigest> digestScene(const SceneView& scene);
