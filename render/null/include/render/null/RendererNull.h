// SPDX-License-Identifier: MIT
#pragma once

#include "ig/app/Renderer.h"

namespace ig {

/// Draws nothing and needs nothing: for machines without a display, and for measuring everything
/// but drawing.
class RendererNull : public Renderer {
public:
    const char* getName() const override { return "null"; }
    bool init(int width, int height) override;
    void resize(int width, int height) override;
    void render(const World& world, const Camera& camera, const FrameInfo& frame) override;
    void release() override;
    bool savePicture(const jString& path) override;
};

} // namespace ig
