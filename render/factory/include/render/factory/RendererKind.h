// SPDX-License-Identifier: MIT
#pragma once

#include "ig/app/Renderer.h"

#include <memory>
#include <span>

namespace ig {

/// A kind of renderer. A further one is a room of its own and a line in the list.
struct RendererKind {
    const char* name; ///< as a user asks for it
    bool draws;       ///< one that doesn't makes no pictures and needs no window
    /// Into the window whose context is current during all calls, or with a context of its own.
    std::unique_ptr<Renderer> (*make)(bool in_window);
};

/// In the order in which they are tried for a user who names none; the last one works anywhere.
std::span<const RendererKind> getRendererKinds();
/// Null when none has that name.
const RendererKind* findRendererKind(std::string_view name);

} // namespace ig
