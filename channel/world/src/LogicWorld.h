// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace world_commands {

/// What is known of the world that a scene logic asks for: config/NAME.world.yaml, with the name of
/// its library.
struct LogicWorld {
    /// A node that the logic looks up.
    struct Name {
        std::string name;
        std::string type;               ///< empty: any
        bool needed = false;            ///< the logic doesn't begin without it
        std::vector<std::string> holds; ///< what it looks up in that prefab
    };
    struct Prefab {
        std::string path;
        std::vector<Name> names;
    };

    std::string template_folder; ///< that places are made from
    std::vector<Name> names;     ///< in the world
    std::vector<Prefab> prefabs; ///< beside those

    static std::string findFile(const std::string& logic_name);
    /// False, with one log line, when the file is missing or malformed.
    bool read(const std::string& logic_name);
};

} // namespace world_commands
