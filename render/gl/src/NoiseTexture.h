// SPDX-License-Identifier: MIT
#pragma once

#include "GlObjects.h"

/// Two noises that repeat without seam, each with evenly spread values: red a lace of cells, green
/// clouds of five octaves; blue and alpha the rise of the clouds along u and v, halved, 0.5 being
/// level. With mip levels.
void makeNoiseTexture(gl::Texture& texture);
