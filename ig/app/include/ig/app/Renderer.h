// SPDX-License-Identifier: MIT
#pragma once

#include "ig/base/jString.h"
#include "ig/math/mat.h"

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace ig {

class Camera;
class Node;
class ParticleSystem;
class UIRoot;
class UiDrawList;
class World;

/// What a frame looks like beyond the scene's own nodes: light and air. The application fills
/// it, the renderer reads it.
struct FrameInfo {
    double time = 0; ///< scene time, s: moves clouds, rain on glass, ripples
    /// Towards the sun and the moon, earth-centred, unit length.
    dvec3 sun_direction{0, 0, 1};
    dvec3 moon_direction{0, 0, -1};
    double sidereal_angle = 0;          ///< turn of the stars, degrees
    double visibility = 60000;          ///< meteorological visibility at sea level, m, above 0
    float cloud_cover = 0.5f;           ///< broken clouds, 0 to 1
    float overcast = 0;                 ///< closed layer of clouds, 0 to 1
    float cloud_darkness = 0;           ///< of the closed layer, 0 thin to 1 thunderstorm
    double cloud_base = 900;            ///< altitude of the broken clouds or the layer, m
    double cloud_thickness = 500;       ///< m
    float rain = 0, snow = 0, hail = 0; ///< 0 to 1
    vec2 wind;                          ///< where the air moves to, m/s east and north
    float flash = 0;                    ///< lightning lights the clouds, 0 to 1
    float bolt_azimuth = 0;             ///< degrees clockwise from north
    float bolt_shape = 0;               ///< 0 to 1, the same as long as a bolt lasts
    dvec3 eye_velocity; ///< world, m/s: drops are streaked by the way they pass the eye
    /// Shadows are sharpest around it, and cameras of the radar that it carries leave it out; null:
    /// shadows are sharpest around the camera, and radar sees everything.
    const Node* focus = nullptr;
    const ParticleSystem* particles = nullptr;
    /// No frame waits for ground that is still being made: coarser ground stands in for it, so that
    /// pictures of the same scene may differ. Else they never do.
    bool hurried = false;
    /// Other renderers show the same frame beside this one, and may not have drawn the same ones
    /// before: what a picture takes over from earlier ones must be the same for all.
    bool shared = false;
    const UiDrawList* ui = nullptr; ///< drawn last; null: none
    /// Its viewports are drawn where `ui` shows them; null: none.
    const UIRoot* ui_root = nullptr;
};

/// A picture read back, rows from the top, three bytes (red, green, blue) a pixel.
struct Picture {
    int width = 0, height = 0;
    std::vector<std::uint8_t> rgb;
    const std::uint8_t* at(int x, int y) const {
        return &rgb[3 * (static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                         static_cast<std::size_t>(x))];
    }
};

/// How a projector has to throw a picture so that it lies right on its screen.
struct Warp {
    int width = 0, height = 0; ///< of the mesh
    /// Where of the picture each place of the mesh shows, rows from the top: from the top left
    /// corner, 0 to 1; nothing where they are no numbers. Between the middles of its places the
    /// mesh is interpolated. Empty: the picture stays as it is.
    std::vector<vec2> places;
    Picture mask; ///< share of the light, linear, 255 for all of it; of any size; empty: all
};

/// Cost of one pass of the last frame.
struct PassTime {
    const char* name = "";
    double milliseconds = 0;
};

/// What the renderer holds on the graphics device. All zero after `release`.
struct RenderResources {
    int buffers = 0, textures = 0, vertex_arrays = 0, framebuffers = 0, programs = 0;
    int getTotal() const { return buffers + textures + vertex_arrays + framebuffers + programs; }
};

/// What there is to be drawn after the first picture, for `Renderer::prepare`.
struct Preparation {
    const World& world;
    const World& later; ///< holds what will come into the world on its way
    const Camera& camera;
    const FrameInfo& frame; ///< its `ui` shows all that can be shown
    /// Told from time to time how much is done, 0 to 1, with the window's own picture showing it.
    /// False: enough, the scene is not wanted any more.
    std::function<bool(double done)> progress;
};

/// Draws the scene; decides nothing about it. The application makes one, calls `init` once
/// before the first frame, `render` once per frame after the logic's `swap`, and `release` before
/// the world goes. Implementations: `render/gl` (OpenGL) and `render/null`, which draws nothing;
/// `render/factory` makes them.
class Renderer {
public:
    virtual ~Renderer() = default;
    /// False, having logged why, when there is nothing to draw with.
    virtual bool init(int width, int height) = 0;
    virtual void resize(int width, int height) = 0;
    /// After `init`; holds for the pictures from then on, also for those that are read back.
    virtual void setWarp(const Warp&) {}
    /// Of the window, pixels. The picture is shown as large as it fits there, in the middle, with
    /// its proportions and black bars. 0, as before the first call: the picture's own size.
    virtual void setWindowSize(int /*width*/, int /*height*/) {}
    /// Draws, unseen, all that may be drawn later, so that no frame of the scene waits for
    /// something to be made. Nothing of the world changes by it, nor does the next picture. Call it
    /// before the first `render`, while a `Node::BorrowedIds` lives.
    virtual void prepare(const Preparation&) {}
    virtual void render(const World& world, const Camera& camera, const FrameInfo& frame) = 0;
    virtual void release() = 0;
    /// Called once within each `render`, when the scene has been looked up and before anything of
    /// the new picture is begun. Until then the last one is as it was left: where the processor
    /// draws, it is finished while the next frame's logic runs, and handed over as late as here.
    /// May be empty. A renderer without pictures doesn't call it.
    virtual void setBeforeDrawing(std::function<void()>) {}

    /// Pixels of the scene per pixel of the picture, along each edge, 0.5 to 1: trades sharpness
    /// for speed. The user interface is always drawn at full size.
    virtual void setScale(float) {}
    virtual float getScale() const { return 1; }
    /// Whether the processor draws, for want of graphics hardware: pixels are dear. After `init`.
    virtual bool isSoftware() const { return false; }

    /// What draws, in its driver's words; empty where nothing does. After `init`.
    virtual jString getDevice() const { return {}; }

    /// The last frame's picture. False when there is none.
    virtual bool readPicture(Picture&) { return false; }

    /// Measures passes from the next frame on; waits for the device after each, so that frames take
    /// longer.
    virtual void setProfiling(bool) {}
    /// The last frame's passes in order; empty without profiling.
    virtual std::span<const PassTime> getPassTimes() const { return {}; }
    virtual RenderResources getResources() const { return {}; }
    /// How many of each it has made so far, those that are gone too.
    virtual RenderResources getMade() const { return {}; }
};

} // namespace ig
