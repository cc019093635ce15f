// SPDX-License-Identifier: MIT
#pragma once

#include "Findings.h"
#include "LogicWorld.h"
#include "SceneFiles.h"

#include <string>

namespace ig {
class World;
}

namespace world_commands {

/// What a flight would do without a word, or say without telling where, in a world that has been
/// loaded and begun. What the engine said of it stands in the findings already.
class WorldCheck {
public:
    WorldCheck(const std::string& path, ig::World& world, Findings& findings)
        : m_path(path), m_world(world), m_findings(findings) {}

    /// Names that the logic looks up: missing, or of another type.
    void checkNames(const LogicWorld& asked);
    /// Files that are named: missing, unreadable pictures, models and pictures that are too heavy.
    void checkFiles(const LogicWorld& asked);
    /// Where things stand: under ground, ships on land, far from the start; a ground that is too
    /// large to be read at every start.
    void checkPlaces(const std::string& start);

private:
    void checkName(const LogicWorld::Name& name, const std::string& path,
                   const std::vector<NodeEntry>& nodes);
    void checkFile(const Reference& file);
    void checkPlace(const NodeEntry& node, const std::string& start);
    void checkGround(const NodeEntry& node);

    std::string m_path; ///< of the world's file
    ig::World& m_world;
    Findings& m_findings;
};

} // namespace world_commands
