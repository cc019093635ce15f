// SPDX-License-Identifier: MIT
#pragma once

#include "ig/app/Renderer.h"

/// Draws nothing and needs nothing: for machines without a display, and for measuring everything
/// but drawing.
class RendererNull : public ig::Renderer {
public:
    const char* getName() const override { return "null"; }
    bool init(int width, int height) override;
    void resize(int width, int height) override;
    void render(const ig::World& world, const ig::Camera& camera,
                const ig::FrameInfo& frame) override;
    void release() override;
    bool savePicture(const ig::jString& path) override;
};
