// SPDX-License-Identifier: MIT
#include "render/gl/RendererGL.h"

#include "BeamPass.h"
#include "GlObjects.h"
#include "GlassPass.h"
#include "GrassPass.h"
#include "HeadlessContext.h"
#include "HillMap.h"
#include "LightTable.h"
#include "MeshPass.h"
#include "OceanPass.h"
#include "SceneryPass.h"
#include "ShadowMap.h"
#include "SkyPass.h"
#include "SpritePass.h"
#include "Targets.h"
#include "TerrainPass.h"
#include "UiPass.h"
#include "ViewportPass.h"
#include "WakePass.h"
#include "WarpPass.h"
#include "ig/base/jLog.h"
#include "ig/math/EllipsoidModel.h"
#include "ig/scene/Camera.h"
#include "plugins/ocean/ObjectOcean.h"
#include "program/Clock.h"
#include "render/scene/DecalStore.h"
#include "render/scene/FrameBlock.h"
#include "render/scene/FrameView.h"
#include "render/scene/GlintList.h"
#include "render/scene/LandAround.h"
#include "render/scene/Patterns.h"
#include "render/scene/Samples.h"
#include "render/scene/SceneList.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string_view>
#include <utility>

namespace ig {

namespace {

/// Measures what follows until the next mark.
class PassClock {
public:
    std::function<void()> at_mark; ///< called at each; may be empty
    bool on = false;
    bool paused = false; ///< marks are parts of a pass that is measured as a whole, or of none
    std::vector<PassTime> times;

    void begin() {
        times.clear();
        if (on) m_last = program::steadyNow();
    }
    /// What was since the last mark belongs to no pass.
    void skip() {
        if (on) m_last = program::steadyNow();
    }
    /// Ends a pass: books the time since the last mark under `name`.
    void mark(const char* name) {
        if (at_mark) at_mark();
        if (!on || paused) return;
        glFinish();
        const double t = program::steadyNow();
        times.push_back({name, (t - m_last) * 1e3});
        m_last = t;
    }

private:
    double m_last = 0;
};

} // namespace

/// What is drawn while `RendererGL::prepare` runs, beyond the world and in its place.
struct Rehearsal {
    const Preparation& wanted;
    /// The world's own waves begin with the first frame: nothing may ask for them before.
    ObjectOcean sea;
    Samples samples;
    int done = 0, steps = 1; ///< passes
    bool stopped = false;
};

struct RendererGL::Impl {
    explicit Impl(Surface s) : surface(s) {}

    bool initPasses();
    void renderScene(const World& world, const Camera& camera, const FrameInfo& frame);
    void gather(const World& world, const Camera& camera, const FrameInfo& frame);
    void beginDrawing();
    void prepare(const FrameInfo& frame);
    bool placeShadows(const FrameInfo& frame);
    void planShadows();
    /// Its picture is the one that the shadow maps follow.
    bool isMain() const { return canvas == &targets || rehearsal; }
    bool castHills() const { return block.light_direction.w > 0 && hills.isAny(); }
    PictureRect findShadowsOnSea() const; ///< where there is a sea
    float findLand();
    void uploadBlock();
    void gatherLights(const FrameInfo& frame);
    void drawShadows();
    void filterNoise(bool finely) const;
    void drawScene(const World& world);
    void finishPicture(GLuint goal);
    void drawEnd(const Targets& from, GLuint goal) const;
    void drawOver(const gl::Program& program, const gl::Texture& from, GLuint to) const;
    void drawPicture(const World& world, const Camera& camera, const FrameInfo& frame, Targets& to,
                     GLuint goal);
    bool fitsWindow() const;
    void present();

    void rehearse(Rehearsal& r);
    void addToList(const Rehearsal& r);
    void step(Rehearsal& r) const;
    void forget();

    Surface surface;
    int window_width = 0, window_height = 0; ///< 0: the picture's
    bool ready = false;
    float scale = 1;
    jString device;
    bool software = false;   ///< the device is the processor
    HeadlessContext context; // before all that lives in it and goes before it
    Targets targets;
    Targets* canvas = &targets; ///< what the passes draw into
    bool in_window = false;     ///< the last picture's end, and not in the finished one
    std::function<void()> before_drawing;
    bool drawing = false; ///< it has been called in this frame
    gl::Buffer block_buffer;
    gl::VertexArray empty;
    gl::Program tonemap, fxaa, fxaa_small, upscale;
    WarpPass warp;
    SkyPass sky;
    ShadowMap shadow;
    std::optional<ShadowPlace> shadow_place; ///< from `init` on
    ShadowCasters shadow_casters;
    HillShadows hills;
    HillMap hill_map;
    LandAround land_around;
    MeshPass meshes;
    OceanPass ocean;
    TerrainPass terrain;
    SceneryPass scenery;
    GrassPass grass;
    DecalStore decals;
    BeamPass beams;
    SpritePass sprites;
    GlassPass glass;
    WakePass wakes;
    UiPass ui;
    ViewportPass viewports;
    gl::Texture noise;
    LightTable light_table;
    SceneList list;
    SceneryList scenery_list;
    LightList lights;
    GlintList glints;
    SpriteList sprite_list;
    WakeList wake_list;
    FrameView view;
    FrameBlock block;
    PassClock clock;
    Rehearsal* rehearsal = nullptr; ///< while one runs
};

RendererGL::RendererGL(Surface surface) : m_impl(std::make_unique<Impl>(surface)) {}

RendererGL::~RendererGL() = default;

// ------------------------------------------------------------------ start and end

bool RendererGL::init(int width, int height) {
    Impl& r = *m_impl;
    if (r.surface == Surface::none && !r.context.create()) return false;
    if (epoxy_gl_version() < 33) {
        jLog::error("RendererGL: OpenGL 3.3 is needed, this machine has %d.%d",
                    epoxy_gl_version() / 10, epoxy_gl_version() % 10);
        return false;
    }
    const auto tell = [](GLenum name) {
        return jString(reinterpret_cast<const char*>(glGetString(name)));
    };
    r.device = tell(GL_RENDERER) + ", OpenGL " + tell(GL_VERSION);
    if (gl::hasClipControl())
        glClipControl(GL_LOWER_LEFT, GL_ZERO_TO_ONE);
    else
        jLog::warning("RendererGL: the driver lacks glClipControl: far things may flicker");
    glDepthFunc(GL_GEQUAL);
    glClearDepth(0);
    r.ready = r.initPasses() && r.targets.make(width, height, r.scale);
    if (r.ready) return true;
    release();
    return false;
}

/// Whether clouds are drawn as a volume: where that is no processor's work, or as somebody wants to
/// see them.
static bool wantsVolume(bool software) {
    const char* asked = std::getenv("VISUAL_CHANNEL_CLOUDS");
    const std::string_view wanted = asked ? asked : "";
    if (!gl::hasClipControl()) return false; // its depth can't be read as distance
    if (wanted == "volume") return true;
    if (wanted == "layers") return false;
    if (asked)
        jLog::warning("RendererGL: VISUAL_CHANNEL_CLOUDS is \"%s\": \"volume\" and \"layers\" are "
                      "known; the device decides",
                      asked);
    return !software;
}

bool RendererGL::Impl::initPasses() {
    light_table.init();
    block_buffer.create(); // after it: this one stays bound
    glBindBuffer(GL_UNIFORM_BUFFER, block_buffer.getId());
    glBufferData(GL_UNIFORM_BUFFER, sizeof(FrameBlock), nullptr, GL_STREAM_DRAW);
    glBindBufferBase(GL_UNIFORM_BUFFER, gl::FRAME_BLOCK, block_buffer.getId());
    empty.create();
    const Pattern pattern = makeNoisePattern();
    gl::TextureFormat format{GL_RGBA8, GL_RGBA, GL_UNSIGNED_BYTE, GL_REPEAT};
    format.filter = GL_LINEAR_MIPMAP_LINEAR;
    gl::makeTexture(noise, pattern.edge, pattern.edge, format, pattern.texels.data());
    glGenerateMipmap(GL_TEXTURE_2D);
    // The software renderer pays for every texel of the bake.
    for (const char* name : {"llvmpipe", "softpipe", "SWR"})
        software |= std::strstr(device.c_str(), name) != nullptr;
    // All programs are under way before the first is waited for.
    if (epoxy_has_gl_extension("GL_KHR_parallel_shader_compile"))
        glMaxShaderCompilerThreadsKHR(~GLuint{0}); // as many as the driver likes
    tonemap.start("screen.vert", "tonemap.frag", {}, {{"uPicture", gl::UNIT_FIRST_OWN}});
    fxaa.start("screen.vert", "fxaa.frag", {}, {{"uPicture", gl::UNIT_FIRST_OWN}});
    fxaa_small.start("screen.vert", "fxaa.frag", "SMALL", {{"uPicture", gl::UNIT_FIRST_OWN}});
    upscale.start("screen.vert", "upscale.frag", {}, {{"uPicture", gl::UNIT_FIRST_OWN}});
    sky.init(wantsVolume(software), software);
    meshes.init();
    scenery.init();
    grass.init();
    beams.init();
    sprites.init();
    glass.init();
    wakes.init(software);
    ui.init();
    viewports.init();
    ocean.init(software);
    hill_map.init();
    shadow_place.emplace(software ? 1024 : 2048);
    return gl::finishPrograms() && shadow.init(shadow_place->getSize());
}

/// What lives in the context goes, and the context last; what was asked for stays.
void RendererGL::release() {
    auto fresh = std::make_unique<Impl>(m_impl->surface);
    fresh->scale = m_impl->scale;
    fresh->before_drawing = std::move(m_impl->before_drawing);
    fresh->clock.on = m_impl->clock.on;
    m_impl = std::move(fresh);
}

void RendererGL::resize(int width, int height) {
    Impl& r = *m_impl;
    if (r.ready && (width != r.targets.getWidth() || height != r.targets.getHeight()))
        r.ready = r.targets.make(width, height, r.scale);
}

void RendererGL::setBeforeDrawing(std::function<void()> call) {
    m_impl->before_drawing = std::move(call);
}

void RendererGL::setWarp(const Warp& warp) {
    if (m_impl->ready) m_impl->warp.set(warp);
}

void RendererGL::setWindowSize(int width, int height) {
    m_impl->window_width = width;
    m_impl->window_height = height;
}

void RendererGL::setScale(float scale) {
    Impl& r = *m_impl;
    scale = std::clamp(scale, 0.5f, 1.0f);
    if (scale == r.scale) return;
    r.scale = scale;
    if (r.ready) r.ready = r.targets.make(r.targets.getWidth(), r.targets.getHeight(), scale);
}

float RendererGL::getScale() const { return m_impl->scale; }
bool RendererGL::isSoftware() const { return m_impl->software; }
jString RendererGL::getDevice() const { return m_impl->device; }
void RendererGL::setProfiling(bool on) { m_impl->clock.on = on; }
std::span<const PassTime> RendererGL::getPassTimes() const { return m_impl->clock.times; }
RenderResources RendererGL::getResources() const { return gl::resources(); }
RenderResources RendererGL::getMade() const { return gl::made(); }

// ------------------------------------------------------------------ a frame

void RendererGL::render(const World& world, const Camera& camera, const FrameInfo& frame) {
    if (m_impl->ready) m_impl->renderScene(world, camera, frame);
}

void RendererGL::Impl::renderScene(const World& world, const Camera& camera,
                                   const FrameInfo& frame) {
    clock.begin();
    drawing = false;
    viewports.update(frame, noise, [this, &frame](const World& w, const Camera& c, Targets& to) {
        clock.paused = true;
        drawPicture(w, c, frame, to, to.finished_target.getId());
        clock.paused = false;
    });
    clock.mark("viewports");
    in_window = fitsWindow();
    drawPicture(world, camera, frame, targets, in_window ? 0 : targets.finished_target.getId());
    ui.gather(frame.ui, viewports);
    ui.draw(targets.getWidth(), targets.getHeight());
    clock.mark("ui");
    if (warp.isOn()) warp.draw(targets, empty);
    clock.mark("warp");
    present();
    if (software) glFlush(); // the rest is drawn while the next frame's logic runs
    clock.mark("present");
}

/// The scene as that camera sees it, without user interface. `goal`: the framebuffer of the full
/// size that it ends in, which stays bound.
void RendererGL::Impl::drawPicture(const World& world, const Camera& camera, const FrameInfo& frame,
                                   Targets& to, GLuint goal) {
    canvas = &to;
    gather(world, camera, frame);
    clock.mark("gather");
    beginDrawing();
    drawShadows();
    clock.mark("shadows");
    prepare(frame);
    clock.mark("prepare");
    if (list.ocean) wakes.draw(view, wake_list, list.ocean->getFrame());
    clock.mark("wakes");
    drawScene(world);
    finishPicture(goal);
    clock.mark("picture");
}

/// The view, the light, what is seen, and what casts shadows.
void RendererGL::Impl::gather(const World& world, const Camera& camera, const FrameInfo& frame) {
    view = FrameView(camera, canvas->getSceneHeight(), gl::hasClipControl());
    view.everything = rehearsal != nullptr;
    view.hurried = frame.hurried && !rehearsal;
    block.projection = view.projection;
    block.view = view.view;
    const auto w = static_cast<float>(canvas->getSceneWidth());
    const auto h = static_cast<float>(canvas->getSceneHeight());
    block.screen = {w, h, 1 / w, 1 / h};
    // Parallel rays: as if the pixels' size held at the ground below.
    const float pixel_angle =
        view.orthographic ? view.pixel_angle / std::max(static_cast<float>(view.geodetic.z), 1.0f)
                          : view.pixel_angle;
    block.time = {static_cast<float>(std::fmod(frame.time, 4096)), pixel_angle, 0, 0};
    sky.update(view, frame, canvas == &targets, block);
    block.time.w = std::pow(0.3f / block.light.w, 0.92f);
    const bool casts = placeShadows(frame);
    list.time = frame.time;
    list.left_out = camera.getType() == NODE_CAMERA_RADAR ? frame.focus : nullptr;
    list.snow_on_glass = glass.isSnowy(frame);
    list.focus = frame.focus;
    list.gather(world, view, casts ? &*shadow_place : nullptr);
    if (rehearsal) addToList(*rehearsal);
    decals.gather(world, view, list);
    scenery_list.gather(view, casts ? &*shadow_place : nullptr, list);
    list.sort();
    planShadows();
}

void RendererGL::Impl::beginDrawing() {
    if (std::exchange(drawing, true) || rehearsal || !before_drawing) return;
    before_drawing();
    clock.skip();
}

/// The rest of what the passes read. A software renderer draws the shadows meanwhile.
void RendererGL::Impl::prepare(const FrameInfo& frame) {
    if (canvas == &targets) glass.update(list, view, frame);
    gatherLights(frame);
    sprite_list.gather(view, frame, list.lamps, list.cables);
    wake_list.gather(view, frame.particles, list.decals);
    if (rehearsal) {
        Samples::addTo(sprite_list);
        Samples::addTo(wake_list);
    }
    uploadBlock();
    light_table.upload(view, lights);
    meshes.upload(list, {lights, hills, sky});
    if (list.ocean) ocean.upload(list.ocean->getFrame());
    gl::bindTexture(gl::UNIT_NOISE, noise);
}

/// Whether there is a light that casts shadows. One that grazes the ground casts them without end:
/// they fade away before it sets. Other pictures than the main one find in the maps what is there;
/// beyond them, and before the first of them, all is lit.
bool RendererGL::Impl::placeShadows(const FrameInfo& frame) {
    constexpr float NONE = 0.006f, ALL = 0.03f; // sines of the height: 0.3 and 1.7 degrees
    constexpr double FARTHEST = 6000;           // m: nobody sees the shadows around a focus beyond
    const vec3 light = block.light_direction.xyz();
    const float strength = std::clamp((light.z - NONE) / (ALL - NONE), 0.0f, 1.0f);
    const bool casts = strength > 0 && (isMain() || shadow_place->isPlaced());
    block.light_direction.w = casts ? strength : 0;
    if (!casts || !isMain()) return casts;
    dvec3 focus = frame.focus ? frame.focus->getWorldPosition() : view.eye;
    if (length(focus - view.eye) > FARTHEST) focus = view.eye;
    shadow_place->follow(view.eye, focus, view.frame * dvec3(light));
    return true;
}

void RendererGL::Impl::planShadows() {
    if (block.light_direction.w > 0 && isMain()) {
        shadow_casters.plan(list.casters, *shadow_place);
        const TerrainGrids ground = list.terrain ? list.terrain->getGrids() : TerrainGrids();
        if (hills.update(ground, shadow_place->getLight())) hill_map.upload(hills);
    } else {
        shadow_casters.rest();
    }
    shadow_place->fill(view, block);
    hills.fill(view, block);
}

PictureRect RendererGL::Impl::findShadowsOnSea() const {
    if (view.everything) return PictureRect::whole();
    if (block.light_direction.w <= 0) return {};
    const auto crest = static_cast<float>(list.ocean->getFrame().highest_crest);
    PictureRect rect =
        findOnSea(list.casters, view, *shadow_place, block.light_direction.xyz(), crest);
    rect.include(hills.findOnSea(view, crest));
    return rect;
}

/// Metres around the eye where ground hides all water.
float RendererGL::Impl::findLand() {
    if (!list.terrain) return 0;
    const auto crest = static_cast<float>(list.ocean->getFrame().highest_crest);
    return land_around.find(list.terrain->getGrids(), view.geodetic, crest);
}

/// Of a rehearsal's views one is lit by lamps and the others by none, so that all programs are met.
void RendererGL::Impl::gatherLights(const FrameInfo& frame) {
    const vec3 white(0.3f, 0.6f, 0.1f); // luminance
    const float ground =
        dot(block.ambient.xyz(), white) +
        dot(block.light.xyz(), white) / PI * std::max(block.light_direction.z, 0.0f);
    lights.gather(view, frame, list.lights, std::max(ground, 1e-4f));
    glints.gather(view, list, ground);
    if (!rehearsal) return;
    lights.lights.clear();
    if (block.sun_direction.z < 0) Samples::addTo(lights);
}

/// Into new storage, so that what was drawn with the last block, perhaps in this very frame, isn't
/// waited for.
void RendererGL::Impl::uploadBlock() {
    glBindBuffer(GL_UNIFORM_BUFFER, block_buffer.getId());
    glBufferData(GL_UNIFORM_BUFFER, sizeof block, &block, GL_STREAM_DRAW);
}

void RendererGL::Impl::drawShadows() {
    glEnable(GL_DEPTH_TEST);
    glDepthMask(GL_TRUE);
    meshes.upload(shadow_casters);
    for (const ShadowCasters::Job& job : shadow_casters.getJobs()) {
        shadow.begin(job);
        meshes.drawCasters(job);
        ShadowMap::end();
    }
    if (software) glFlush(); // else it begins with what comes next
    shadow.bind();
    hill_map.bind();
}

/// Between levels of detail, paving, ground and the sea's lace and streaks are as good as within
/// one, where a processor pays for each look; clouds aren't.
void RendererGL::Impl::filterNoise(bool finely) const {
    if (!software) return;
    gl::bindTexture(gl::UNIT_NOISE, noise);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER,
                    finely ? GL_LINEAR_MIPMAP_LINEAR : GL_LINEAR_MIPMAP_NEAREST);
}

/// Opaque first and near first, so that hidden pixels cost nothing; then the sky where nothing is;
/// then what lets light through.
void RendererGL::Impl::drawScene(const World& world) {
    sky.paint(view, *canvas);
    clock.mark("clouds");
    glBindFramebuffer(GL_FRAMEBUFFER, canvas->scene_target.getId());
    glViewport(0, 0, canvas->getSceneWidth(), canvas->getSceneHeight());
    glEnable(GL_DEPTH_TEST);
    glClear(GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
    filterNoise(false);
    meshes.drawOpaque();
    if (software) glFlush();
    clock.mark("meshes");
    if (list.scenery)
        scenery.draw(*list.scenery, scenery_list, block, sky, hills, !lights.lights.empty());
    clock.mark("scenery");
    std::optional<OceanPass::Drawing> sea;
    if (list.ocean) {
        sea.emplace(OceanPass::Drawing{view, list.ocean->getFrame(), list.downdraughts,
                                       findShadowsOnSea(), lights, glints, wakes, *canvas,
                                       findLand()});
        ocean.cover(*sea);
    }
    clock.mark("fan");
    if (list.terrain) terrain.draw(view, *list.terrain, lights, castHills());
    clock.mark("terrain");
    if (list.terrain) grass.draw(view, world, *list.terrain, list.fields, lights);
    clock.mark("grass");
    if (sea) ocean.shade(*sea);
    clock.mark("ocean");
    filterNoise(true);
    sky.drawBackground(view, *canvas);
    sky.drawClouds(view, *canvas);
    clock.mark("sky");
    filterNoise(false);
    meshes.drawTransparent();
    filterNoise(true);
    glBindFramebuffer(GL_FRAMEBUFFER, canvas->light_target.getId()); // what follows reads the depth
    beams.draw(view, lights, canvas->depth);
    clock.mark("transparent");
    sprites.draw(view, sprite_list.sprites, canvas->depth, !lights.lights.empty());
    clock.mark("sprites");
    if (!list.panes.empty()) glass.draw(meshes, list, view, *canvas, canvas == &targets);
    clock.mark("glass");
}

/// Light to picture: tone curve, edge filter, and where the scene is smaller than its picture, the
/// enlargement.
void RendererGL::Impl::finishPicture(GLuint goal) {
    glDisable(GL_DEPTH_TEST);
    drawOver(tonemap, canvas->light, canvas->toned_target.getId());
    if (canvas->isEnlarged()) drawOver(fxaa_small, canvas->toned, canvas->filtered_target.getId());
    drawEnd(*canvas, goal);
}

/// The last step, which may be taken again: what it reads lasts until the next picture.
void RendererGL::Impl::drawEnd(const Targets& from, GLuint goal) const {
    glViewport(0, 0, from.getWidth(), from.getHeight());
    if (from.isEnlarged())
        drawOver(upscale, from.filtered, goal);
    else
        drawOver(fxaa, from.toned, goal);
}

void RendererGL::Impl::drawOver(const gl::Program& program, const gl::Texture& from,
                                GLuint to) const {
    glBindFramebuffer(GL_FRAMEBUFFER, to);
    glBindVertexArray(empty.getId());
    program.use();
    gl::bindTexture(gl::UNIT_FIRST_OWN, from);
    glDrawArrays(GL_TRIANGLES, 0, 3);
}

/// Then its last steps are drawn there at once, which saves a copy of all pixels.
bool RendererGL::Impl::fitsWindow() const {
    const auto fits = [](int window, int picture) { return window <= 0 || window == picture; };
    return surface == Surface::window && !warp.isOn() && fits(window_width, targets.getWidth()) &&
           fits(window_height, targets.getHeight());
}

/// A replay's picture has the log's size, and is fitted into the window.
void RendererGL::Impl::present() {
    if (surface == Surface::none) glFinish(); // nobody else waits for the device
    if (surface == Surface::none || in_window) return;
    const int width = targets.getWidth(), height = targets.getHeight();
    const int window_w = window_width > 0 ? window_width : width;
    const int window_h = window_height > 0 ? window_height : height;
    const double fit =
        std::min(static_cast<double>(window_w) / width, static_cast<double>(window_h) / height);
    const int w = static_cast<int>(std::lround(width * fit));
    const int h = static_cast<int>(std::lround(height * fit));
    const int x = (window_w - w) / 2, y = (window_h - h) / 2;
    glBindFramebuffer(GL_READ_FRAMEBUFFER, targets.finished_target.getId());
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, 0);
    if (w < window_w || h < window_h) { // the bars
        glClearColor(0, 0, 0, 1);
        glClear(GL_COLOR_BUFFER_BIT);
    }
    const bool scaled = w != width || h != height;
    glBlitFramebuffer(0, 0, width, height, x, y, x + w, y + h, GL_COLOR_BUFFER_BIT,
                      scaled ? GL_LINEAR : GL_NEAREST);
}

// ------------------------------------------------------------------ rehearsal
//
// Drivers compile a program for good at the first draw that uses it in a state of the pipeline:
// only a draw through the ordinary passes meets the states of a flight. What follows draws
// everything that there is, and a sample of what may come, into a small picture.

void RendererGL::prepare(const Preparation& wanted) {
    Impl& r = *m_impl;
    if (!r.ready) return;
    Rehearsal rehearsal{wanted, {}, {}};
    r.rehearse(rehearsal);
}

namespace {

/// An eighth. Drivers tell sizes that are powers of two from others: the small picture's are when
/// the large one's are.
int shrink(int size) {
    const int small = std::max(size / 8, 8);
    const auto is_power = [](int n) { return (n & (n - 1)) == 0; };
    return !is_power(size) && is_power(small) ? small + 1 : small;
}

} // namespace

/// By day in the rain, by night, from above the clouds, and then what the user interface shows.
void RendererGL::Impl::rehearse(Rehearsal& r) {
    constexpr double LOW = 20, HIGH = 1000; // m, above the sea, above the clouds
    constexpr int VIEWS = 3, PASSES = 14;
    rehearsal = &r;
    r.steps = VIEWS * PASSES + 2;
    clock.at_mark = [this, &r] { step(r); };
    clock.paused = true; // its passes are no frame's
    FrameInfo frame = r.wanted.frame;
    const dvec3 place = EllipsoidModel().toWGS(r.wanted.camera.getWorldPosition());
    r.sea.setWgsPosition({place.x, place.y, 0});
    const dvec3 up = normalize(r.wanted.camera.getWorldPosition());
    frame.particles = nullptr;
    frame.rain = frame.snow = frame.hail = frame.flash = 1;
    frame.cloud_cover = frame.overcast = 0.5f;
    const int width = shrink(targets.getSceneWidth()), height = shrink(targets.getSceneHeight());
    const double above = frame.cloud_base + frame.cloud_thickness + HIGH;
    struct View {
        double altitude, pitch, sun; // of the sun: 1 overhead, -1 below
    };
    Targets small;
    for (const View& v : {View{LOW, 5, 1}, {LOW, 5, -1}, {above, 30, 1}}) {
        Camera eye;
        eye.setProjection(r.wanted.camera.getProjection());
        eye.setWgsPosition({place.x, place.y, v.altitude});
        eye.setWgsHPR({0, v.pitch, 0});
        frame.sun_direction = up * v.sun;
        frame.moon_direction = up * -v.sun;
        // By night as in a scale that is turned down, whose sizes are hardly ever powers of two.
        const bool scaled = v.sun < 0;
        const int odd = scaled ? 1 : 0;
        if (r.stopped || !small.make(width | odd, height | odd, scaled ? 0.5f : 1)) break;
        drawPicture(r.wanted.world, eye, frame, small, small.finished_target.getId());
        if (surface == Surface::window) drawEnd(small, 0);
    }
    if (!r.stopped && frame.ui) {
        viewports.rehearse(
            frame, noise,
            [&](const World& w, const Camera& c, Targets& to) {
                drawPicture(w, c, frame, to, to.finished_target.getId());
            },
            r.sea);
        ui.gather(frame.ui, viewports);
        glViewport(0, 0, width, height);
        for (const GLuint goal : {small.finished_target.getId(), GLuint{0}}) {
            if (goal == 0 && surface == Surface::none) break;
            glBindFramebuffer(GL_FRAMEBUFFER, goal);
            ui.draw(width, height);
        }
        step(r);
    }
    glFinish();
    clock.at_mark = nullptr;
    clock.paused = false;
    rehearsal = nullptr;
    forget();
}

/// What the present list shows beyond the world.
void RendererGL::Impl::addToList(const Rehearsal& r) {
    list.add(r.wanted.later);
    r.samples.addTo(list);
    if (list.ocean) list.ocean = &r.sea;
}

/// A bar across the window: clearing parts of it needs no program.
void RendererGL::Impl::step(Rehearsal& r) const {
    r.done = std::min(r.done + 1, r.steps);
    const double share = static_cast<double>(r.done) / r.steps;
    if (surface == Surface::window) {
        GLint before = 0;
        glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &before);
        glBindFramebuffer(GL_DRAW_FRAMEBUFFER, 0);
        glEnable(GL_SCISSOR_TEST);
        const int width = window_width > 0 ? window_width : targets.getWidth();
        const int height = window_height > 0 ? window_height : targets.getHeight();
        const int thick = std::max(height / 60, 4);
        const auto fill = [](int x, int y, int w, int h, float gray) {
            glScissor(x, y, w, h);
            glClearColor(gray, gray, gray, 1);
            glClear(GL_COLOR_BUFFER_BIT);
        };
        fill(0, 0, width, height, 0.05f);
        fill(width / 4, height / 2, width / 2, thick, 0.2f);
        fill(width / 4, height / 2, static_cast<int>(share * width / 2), thick, 0.7f);
        glDisable(GL_SCISSOR_TEST);
        glBindFramebuffer(GL_DRAW_FRAMEBUFFER, static_cast<GLuint>(before));
    }
    if (!r.stopped && r.wanted.progress) r.stopped = !r.wanted.progress(share);
}

/// What the passes know of pictures before: the next one is again the first.
void RendererGL::Impl::forget() {
    sky.forget();
    wakes.forget();
    ocean.forget();
    glass.forget();
    shadow_place->forget();
    shadow_casters.forget();
}

// ------------------------------------------------------------------ reading back

bool RendererGL::readPicture(Picture& picture) {
    Impl& r = *m_impl;
    if (!r.ready) return false;
    if (r.in_window) { // whose pixels may be gone
        r.drawEnd(r.targets, r.targets.finished_target.getId());
        r.ui.draw(r.targets.getWidth(), r.targets.getHeight());
        r.in_window = false;
    }
    picture.width = r.targets.getWidth();
    picture.height = r.targets.getHeight();
    const std::size_t row = 3 * static_cast<std::size_t>(picture.width);
    picture.rgb.resize(row * picture.height);
    glBindFramebuffer(GL_READ_FRAMEBUFFER, r.targets.finished_target.getId());
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, picture.width, picture.height, GL_RGB, GL_UNSIGNED_BYTE, picture.rgb.data());
    auto top = picture.rgb.begin();
    for (int y = 0; y < picture.height / 2; y++) // OpenGL's rows come from the bottom
        std::swap_ranges(top + static_cast<std::ptrdiff_t>(row) * y,
                         top + static_cast<std::ptrdiff_t>(row) * (y + 1),
                         top + static_cast<std::ptrdiff_t>(row) * (picture.height - 1 - y));
    return true;
}

double RendererGL::readDistance(double x, double y) {
    Impl& r = *m_impl;
    if (!r.ready) return 0;
    const int w = r.targets.getSceneWidth(), h = r.targets.getSceneHeight();
    float depth = 0;
    glBindFramebuffer(GL_READ_FRAMEBUFFER, r.targets.scene_target.getId());
    glReadPixels(std::clamp(static_cast<int>(x * w), 0, w - 1),
                 std::clamp(static_cast<int>((1 - y) * h), 0, h - 1), 1, 1, GL_DEPTH_COMPONENT,
                 GL_FLOAT, &depth);
    return r.view.toDistance(depth);
}

} // namespace ig
