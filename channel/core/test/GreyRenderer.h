// SPDX-License-Identifier: MIT
#pragma once

#include "ig/app/Renderer.h"

/// Shows one grey; the n-th picture read back is n bright.
struct GreyRenderer final : ig::Renderer {
    bool init(int, int) override { return true; }
    void resize(int w, int h) override { width = w, height = h; }
    void render(const ig::World&, const ig::Camera&, const ig::FrameInfo&) override {}
    void release() override {}
    bool readPicture(ig::Picture& picture) override {
        picture.width = width;
        picture.height = height;
        picture.rgb.assign(static_cast<std::size_t>(3 * width * height), ++number);
        return true;
    }
    int width = 16, height = 8;
    std::uint8_t number = 0;
};
