// SPDX-License-Identifier: MIT
#pragma once

namespace ig {

/// Before anything of OpenGL, EGL or the windows' library is called: from then on the process may
/// have loaded a driver, and is no longer checked for leaks.
///
/// A software driver unloads itself and leaves some bytes behind, which no suppression can name any
/// more. What is ours is counted then by the memory tracker and the renderer's resource counters.
void useDriver();

} // namespace ig
