// SPDX-License-Identifier: MIT
// Linked into every program that draws. A software driver unloads itself and leaves some bytes
// behind, which no suppression can name any more, so that the leak checker must not look once there
// was one. What is ours is counted then by the memory tracker and the renderer's resource counters.
#include "render/gl/driverUse.h"

extern "C" int __lsan_is_turned_off() { return ig::isDriverUsed(); }
