// SPDX-License-Identifier: MIT
#include "render/null/RendererNull.h"

#include "ig/base/jLog.h"

namespace ig {

bool RendererNull::init(int, int) { return true; }

void RendererNull::resize(int, int) {}

void RendererNull::render(const World&, const Camera&, const FrameInfo&) {}

void RendererNull::release() {}

bool RendererNull::savePicture(const jString& path) {
    jLog::error("RendererNull::savePicture: no picture for \"%s\": nothing is drawn", path.c_str());
    return false;
}

} // namespace ig
