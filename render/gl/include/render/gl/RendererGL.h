// SPDX-License-Identifier: MIT
#pragma once

#include "ig/app/Renderer.h"
#include "ig/base/jString.h"

#include <memory>

namespace ig {

/// Draws the scene with OpenGL 3.3 core.
///
/// Everything is drawn into framebuffers of its own, at the render scale, in linear light; then
/// toned, filtered, scaled to the size of the picture, and covered with the user interface. The
/// last two happen in the window where there is one of that size; into another one the picture is
/// fitted. With or without, it is there to be read back.
///
/// One renderer at a time in a process, used from one thread.
class RendererGL : public Renderer {
public:
    enum class Surface {
        none,  ///< makes a context of its own, without window or display server
        window ///< draws into the window whose context is current during all calls
    };
    explicit RendererGL(Surface surface);
    ~RendererGL() override;

    bool init(int width, int height) override;
    void resize(int width, int height) override;
    void setWarp(const Warp& warp) override;
    void setWindowSize(int width, int height) override;
    void prepare(const Preparation& wanted) override;
    void render(const World& world, const Camera& camera, const FrameInfo& frame) override;
    void release() override;
    void setBeforeDrawing(std::function<void()> call) override;

    void setScale(float scale) override;
    float getScale() const override;
    bool isSoftware() const override;
    jString getDevice() const override;
    bool readPicture(Picture& picture) override;
    void setProfiling(bool on) override;
    std::span<const PassTime> getPassTimes() const override;
    RenderResources getResources() const override;
    RenderResources getMade() const override;

    /// Distance from the eye, along the view axis, of what the last frame shows at a place of the
    /// picture, (0, 0) top left to (1, 1) bottom right; infinite for the sky.
    double readDistance(double x, double y);

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace ig
