// SPDX-License-Identifier: MIT
#pragma once

#include "GlObjects.h"

/// Two noises that repeat without seam, each with evenly spread values: red a lace of cells, green
/// clouds of five octaves. With mip levels.
void makeNoiseTexture(gl::Texture& texture);
