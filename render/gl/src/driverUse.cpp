// SPDX-License-Identifier: MIT
#include "render/gl/driverUse.h"

namespace ig {

namespace {
bool g_used = false;
}

bool isDriverUsed() { return g_used; }
void useDriver() { g_used = true; }

} // namespace ig
