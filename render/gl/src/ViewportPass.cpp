// SPDX-License-Identifier: MIT
#include "ViewportPass.h"

#include "ig/app/Engine.h"
#include "ig/app/Renderer.h"
#include "ig/ui/UIRoot.h"
#include "ig/ui/UISpriteViewport.h"
#include "ig/ui/UiDrawList.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace ig {

namespace {

constexpr double RADAR_PERIOD = 0.2; ///< s: a radar's picture is renewed sector by sector anyway
constexpr double PLAIN_PERIOD = 0.1; ///< s: smooth enough for a small picture
constexpr double TOLERANCE = 1e-3;   ///< s: scene time is a sum of rounded steps
constexpr int LARGEST = 2048;        ///< edge of a picture, pixels

double periodOf(const UISpriteViewport& viewport) {
    return viewport.getVisionMode() == VISION_RADAR ? RADAR_PERIOD : PLAIN_PERIOD;
}

UISpriteViewport* findViewport(const UIRoot& root, int id) {
    for (UISpriteViewport* viewport : root.getViewports())
        if (viewport->getId() == id) return viewport;
    return nullptr;
}

void makeTarget(gl::Framebuffer& target, gl::Texture& texture, int width, int height) {
    gl::makeTexture(texture, width, height, {});
    gl::attach(target, texture);
}

} // namespace

void ViewportPass::init() {
    m_radar.init();
    m_post.init();
}

const gl::Texture* ViewportPass::find(int viewport) const {
    for (const auto& picture : m_pictures)
        if (picture->viewport == viewport) return picture->finished;
    return nullptr;
}

// ------------------------------------------------------------------ whose turn it is

void ViewportPass::update(const FrameInfo& frame, const gl::Texture& noise,
                          const DrawScene& draw_scene) {
    dropGone(frame.ui_root);
    const Wanted wanted = findMostOverdue(frame);
    if (!wanted.viewport) return;
    Picture& picture = obtain(wanted.viewport->getId());
    draw(picture, wanted, frame, noise, draw_scene);
    picture.due += periodOf(*wanted.viewport);
    if (!(picture.due > frame.time)) picture.due = frame.time + periodOf(*wanted.viewport);
}

void ViewportPass::rehearse(const FrameInfo& frame, const gl::Texture& noise,
                            const DrawScene& draw_scene, const ObjectOcean& sea) {
    m_sea = &sea;
    const int count = frame.ui_root ? frame.ui_root->getViewports().size() : 0;
    for (int i = 0; i < count; i++)
        update(frame, noise, draw_scene);
    m_sea = nullptr;
    m_radar.forget();
    for (const auto& picture : m_pictures) {
        picture->finished = nullptr;
        picture->due = -std::numeric_limits<double>::infinity();
    }
}

void ViewportPass::dropGone(const UIRoot* root) {
    std::erase_if(m_pictures, [root](const auto& picture) {
        return !root || !findViewport(*root, picture->viewport);
    });
}

/// None when nothing is due, or when nothing of it could be drawn.
ViewportPass::Wanted ViewportPass::findMostOverdue(const FrameInfo& frame) {
    Wanted found;
    if (!frame.ui || !frame.ui_root) return found;
    double longest = -TOLERANCE;
    for (const UiDrawList::Command& c : frame.ui->getCommands()) {
        if (c.kind != UiDrawList::Kind::viewport) continue;
        UISpriteViewport* viewport = findViewport(*frame.ui_root, c.viewport);
        if (!viewport || !viewport->getWorld() || !viewport->getCamera()) continue;
        const auto size = [](float length) {
            return std::clamp(static_cast<int>(std::lround(length)), 1, LARGEST);
        };
        const Wanted wanted{viewport, size(c.w), size(c.h)};
        Picture& picture = obtain(c.viewport);
        const bool resized = wanted.width != picture.width || wanted.height != picture.height;
        // A time far off is one from before the scene began anew.
        if (resized || picture.due > frame.time + periodOf(*viewport) + TOLERANCE)
            picture.due = -std::numeric_limits<double>::infinity();
        if (frame.time - picture.due < longest) continue;
        longest = frame.time - picture.due;
        found = wanted;
    }
    return found;
}

ViewportPass::Picture& ViewportPass::obtain(int viewport) {
    for (const auto& picture : m_pictures)
        if (picture->viewport == viewport) return *picture;
    m_pictures.push_back(std::make_unique<Picture>());
    m_pictures.back()->viewport = viewport;
    m_pictures.back()->due = -std::numeric_limits<double>::infinity();
    return *m_pictures.back();
}

// ------------------------------------------------------------------ drawing

void ViewportPass::draw(Picture& picture, const Wanted& wanted, const FrameInfo& frame,
                        const gl::Texture& noise, const DrawScene& draw_scene) {
    UISpriteViewport& viewport = *wanted.viewport;
    if (wanted.width != picture.width || wanted.height != picture.height) {
        Picture empty;
        empty.viewport = picture.viewport;
        empty.due = picture.due;
        picture = std::move(empty);
        picture.width = wanted.width;
        picture.height = wanted.height;
    }
    viewport.beginUpdate();
    const bool radar = viewport.getVisionMode() == VISION_RADAR;
    if (radar) {
        drawRadar(picture, viewport, frame, noise);
    } else {
        if (picture.scene.getWidth() != picture.width ||
            picture.scene.getHeight() != picture.height)
            picture.scene.make(picture.width, picture.height, 1);
        draw_scene(*viewport.getWorld(), *viewport.getCamera(), picture.scene);
    }
    picture.finished = radar ? &picture.echo : &picture.scene.finished;
    if (!viewport.getPostMaterials().empty()) {
        if (!picture.shown)
            makeTarget(picture.shown_target, picture.shown, picture.width, picture.height);
        glBindFramebuffer(GL_FRAMEBUFFER, picture.shown_target.getId());
        if (m_post.draw(viewport.getPostMaterials(), *picture.finished, picture.width,
                        picture.height, frame.time))
            picture.finished = &picture.shown;
    }
    viewport.endUpdate();
}

/// As large and as much of it as the post-process material needs; black elsewhere.
void ViewportPass::drawRadar(Picture& picture, const UISpriteViewport& viewport,
                             const FrameInfo& frame, const gl::Texture& noise) {
    PostPass::Input input;
    if (!viewport.getPostMaterials().empty())
        input =
            m_post.getInput(viewport.getPostMaterials(),
                            static_cast<float>(picture.width) / static_cast<float>(picture.height));
    const auto scaled = [](float share, int edge) {
        return static_cast<int>(std::lround(share * static_cast<float>(edge)));
    };
    const int width = std::clamp(scaled(input.detail, picture.width), 1, LARGEST);
    const int height = std::clamp(scaled(input.detail, picture.height), 1, LARGEST);
    if (width != picture.echo_width || height != picture.echo_height)
        makeTarget(picture.echo_target, picture.echo, width, height);
    picture.echo_width = width;
    picture.echo_height = height;
    glBindFramebuffer(GL_FRAMEBUFFER, picture.echo_target.getId());
    glViewport(0, 0, width, height);
    glClearColor(0, 0, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    const int left = scaled(input.part.x, width), bottom = scaled(input.part.y, height);
    glScissor(left, bottom, std::max(scaled(input.part.z, width) - left, 0),
              std::max(scaled(input.part.w, height) - bottom, 0));
    glEnable(GL_SCISSOR_TEST);
    FrameView view(*viewport.getCamera(), height, gl::hasClipControl());
    view.everything = m_sea != nullptr;
    m_radar.draw(*viewport.getWorld(), view, frame, noise,
                 Engine::get()->getEnvironment(ENVIRONMENT_SENSOR_GAIN), m_sea);
    glDisable(GL_SCISSOR_TEST);
}

} // namespace ig
