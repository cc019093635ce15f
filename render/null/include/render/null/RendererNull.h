// SPDX-License-Identifier: MIT
#pragma once

#include "ig/app/Renderer.h"

namespace ig {

/// Draws nothing and needs nothing: for machines without a display, and for measuring everything
/// but drawing.
class RendererNull : public Renderer {
public:
    bool init(int, int) override { return true; }
    void resize(int, int) override {}
    void render(const World&, const Camera&, const FrameInfo&) override {}
    void release() override {}
};

} // namespace ig
