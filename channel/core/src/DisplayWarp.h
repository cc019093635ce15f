// SPDX-License-Identifier: MIT
#pragma once

#include "ig/app/Renderer.h"
#include "wall/Wall.h"

/// Reads the mesh and the mask of a display that has any; else the warp stays empty. False, with
/// one log line, when they can't be read.
bool readWarp(const wall::Display& display, ig::Warp& warp);
