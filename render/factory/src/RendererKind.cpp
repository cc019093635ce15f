// SPDX-License-Identifier: MIT
#include "render/factory/RendererKind.h"

#include "render/gl/RendererGL.h"
#include "render/null/RendererNull.h"

namespace ig {

namespace {

std::unique_ptr<Renderer> makeGL(bool in_window) {
    using Surface = RendererGL::Surface;
    return std::make_unique<RendererGL>(in_window ? Surface::window : Surface::none);
}
std::unique_ptr<Renderer> makeNull(bool) { return std::make_unique<RendererNull>(); }

constexpr RendererKind KINDS[] = {{"gl", true, makeGL}, {"null", false, makeNull}};

} // namespace

std::span<const RendererKind> getRendererKinds() { return KINDS; }

const RendererKind* findRendererKind(std::string_view name) {
    for (const RendererKind& kind : KINDS)
        if (name == kind.name) return &kind;
    return nullptr;
}

} // namespace ig
