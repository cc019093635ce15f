// SPDX-License-Identifier: MIT
#pragma once

#include "ig/math/mat.h"

#include <string>
#include <vector>

/// A wall of displays: what its file says. Every computer of the wall reads the same file; the
/// application reads it once at its start.
namespace wall {

/// How the computers reach each other.
struct Network {
    std::string interface = "lo";        ///< name of the only network interface that is spoken on
    bool multicast = false;              ///< else every display is sent to by itself
    int domain = 0;                      ///< 0 to 230; walls of one network differ in it
    std::vector<std::string> peers = {}; ///< IPv4 addresses of the computers, without multicast
    /// Displays wait for each other, one frame at most, before they show a picture.
    bool barrier = false;
};

/// One display: the part of the view that it shows, and where.
///
/// The frame of the view is the eye's: X right, Y up, Z backwards.
struct Display {
    std::string name = {};
    ig::dmat4 rotation = {}; ///< from the display's own axes to the view's: what it shows is seen
                             ///< from the view's pose times this
    /// What it shows: edges on the plane one metre before the eye, in its own axes.
    double left = -1, right = 1, bottom = -1, top = 1;
    int width = 1280; ///< of the picture, pixels
    int height = 720;
    int x = -1, y = -1;       ///< of the window on the desktop, pixels; negative: anywhere
    std::string monitor = {}; ///< its name, or its number from 1; empty: any
    bool full_screen = false;
    std::string warp = {};  ///< PFM file of the mesh; empty: none
    std::string blend = {}; ///< PNG file of the mask; empty: none
};

struct Wall {
    Network network;
    std::vector<Display> displays;

    /// Null when there is none of that name.
    const Display* find(const std::string& name) const;
};

/// Reads a wall's file. Paths in it are relative to it. False with `message` (cause, place as
/// path:line, remedy) when it can't be read, says what isn't known, or what can't be shown.
bool readWall(const std::string& path, Wall& wall, std::string& message);

} // namespace wall
