// SPDX-License-Identifier: MIT
#pragma once

namespace ig {

class Camera;
class World;

/// Draws the scene; decides nothing about it. The host application makes one, calls `init` once
/// before the first frame, `render` once per frame after the logic's `swap`, and `release` before
/// the world goes. Implementations: `render/null`, which draws nothing.
class Renderer {
public:
    virtual ~Renderer() = default;
    /// For the status line: what draws.
    virtual const char* getName() const = 0;
    /// False, having logged why, when there is nothing to draw with.
    virtual bool init(int width, int height) = 0;
    virtual void resize(int width, int height) = 0;
    virtual void render(const World& world, const Camera& camera) = 0;
    virtual void release() = 0;
};

} // namespace ig
