// SPDX-License-Identifier: MIT
#pragma once

#include "channel/world/WorldCommands.h"

namespace world_commands {

// Each adds a subcommand of "world" with its options and help.
void addNew(CLI::App& world, Command& command);
void addCheck(CLI::App& world, Command& command);
void addBuild(CLI::App& world, Command& command);

/// Goes to the folder to work in. False, with one log line, when that can't be.
bool enterFolder(const Setup& setup);
/// A path that the user named, as the engine is to open it: seen from the folder to work in where
/// it lies below that, else absolute.
std::string settlePath(const Setup& setup, const std::string& path);
/// A world's file: the path itself, or the one of a folder. Empty, with one log line, without.
std::string findWorldFile(const std::string& path);

} // namespace world_commands
