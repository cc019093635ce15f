// SPDX-License-Identifier: MIT
#pragma once

// Under which source name this room's allocations are recorded.

#include "ig/base/jAllocator.h"

inline constexpr const char* SHIP_SOURCE = "../common/ship/ship";
