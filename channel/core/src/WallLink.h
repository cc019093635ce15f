// SPDX-License-Identifier: MIT
#pragma once

#include "channel/library/Library.h"
#include "wall/Wall.h"
#include "wall/WallNetwork.h"

#include <memory>
#include <string>

struct Options;

/// The wall that the options name, and the library that reaches its computers, which is loaded here
/// and by nothing else.
class WallLink {
public:
    /// False, with one log line, when the wall's file is wrong or its network can't be had.
    bool open(const Options& options);
    const wall::Wall& getWall() const { return m_wall; }
    /// Null before `open`.
    wall::WallNetwork* getNetwork() { return m_network.get(); }

private:
    wall::Wall m_wall;
    Library m_library;
    std::unique_ptr<wall::WallNetwork> m_network; ///< goes before its library
};
