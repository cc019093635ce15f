// SPDX-License-Identifier: MIT
#pragma once

namespace ig {

/// Whether this process has asked for an OpenGL context, and so may have loaded a driver. Drivers
/// leave bytes behind; a process without any is checked for leaks.
bool isDriverUsed();
/// Before anything of OpenGL, EGL or the windows' library is called.
void useDriver();

} // namespace ig
