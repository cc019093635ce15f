// SPDX-License-Identifier: MIT
#include "render/null/RendererNull.h"

#include "ig/base/jLog.h"

bool RendererNull::init(int, int) { return true; }

void RendererNull::resize(int, int) {}

void RendererNull::render(const ig::World&, const ig::Camera&, const ig::FrameInfo&) {}

void RendererNull::release() {}

bool RendererNull::savePicture(const ig::jString& path) {
    ig::jLog::error("RendererNull::savePicture: no picture for \"%s\": nothing is drawn",
                    path.c_str());
    return false;
}
