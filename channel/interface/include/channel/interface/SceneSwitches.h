// SPDX-License-Identifier: MIT
#pragma once

#include "ig/scene/Track.h"

#include <memory>
#include <string>
#include <vector>

namespace ig {
class Package;
class UIRoot;
class World;
} // namespace ig

/// Switches of the scene that no record carries and no logic has, such as the lights of the ships'
/// decks: a key each, which steps a track through 0, 1, 2, ... and from its last step back to 0.
/// Which there are stands in the logic's interface file (`docs/operator.md`). They belong to the
/// scene: a replay finds the keys in its log.
class SceneSwitches {
public:
    /// Loads the tracks, whose targets are the world's and the materials, and moves them to 0.
    /// `interface`: the logic's file; a switch that makes no sense is logged with path and line,
    /// and left out. The user interface tells the operator what he has switched.
    void open(const ig::Package& interface, ig::World* world, ig::UIRoot* root);
    /// Forgets them; before world and user interface go.
    void close();
    /// A key that is the scene's went down.
    void onKey(int key);

private:
    struct Switch {
        int key;
        std::unique_ptr<ig::Track> track;
        std::vector<std::string> tells; ///< of each step, in the operator's language
        std::size_t step = 0;
    };
    void add(const ig::Package& line, ig::World* world);

    ig::UIRoot* m_root = nullptr;
    std::vector<Switch> m_switches;
};
