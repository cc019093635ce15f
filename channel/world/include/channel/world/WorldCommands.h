// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

/// The commands `visual_channel world ...`, for those who make worlds of their own.
namespace world_commands {

/// What the program's other options say, all of them read.
struct Setup {
    std::string directory; ///< that holds config/ and data/, to work in; empty: the present one
    /// With its slash, in front of the relative paths that a command names; empty: they are
    /// relative to the folder to work in.
    std::string present;
    std::string logic;                ///< library of the scene logic
    std::vector<std::string> plugins; ///< loaded before it
};

/// The command that the command line asks for, ready to run; its result is the exit status: 0 done
/// and nothing wrong, 1 failed or something found, each explained.
using Command = std::function<int(const Setup&)>;

/// Adds the command "world" with its subcommands to `app`. Parsing one of these sets `command`,
/// which must outlive the parsing.
void add(CLI::App& app, Command& command);

} // namespace world_commands
