// SPDX-License-Identifier: MIT
#pragma once

#include "GlObjects.h"

/// A sheet of 4 × 4 shapes for particles: density, and how much light the place gets from its own
/// cloud. Rows from the bottom: two of puffs, one of flames, one of drops.
void makePuffTexture(gl::Texture& texture);
