// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>

/// Where a program finds what was installed, or checked out, with it. Functions take the program's
/// own path, which tests replace.
namespace program {

/// The file that this process runs, links followed; empty where the system doesn't tell.
std::filesystem::path getProgramPath();

/// The folder that holds config/ and data/: the first of
/// - the present one, which a user has chosen: answered as "",
/// - the one that an installation keeps them in, by its way from the program's folder,
/// - those above the program, the nearest first: a checkout's, whose build folder it is in.
/// False when none does.
bool findDataFolder(std::string& folder, const std::filesystem::path& program = getProgramPath());
/// All places that `findDataFolder` looks at, for a message.
std::string tellDataFolders(const std::filesystem::path& program = getProgramPath());

/// A file that a user names and the program only reads. A relative path that leads to nothing here,
/// but does in the data folder, is answered with that in front: what is shipped can be named from
/// anywhere as in a checkout. Any other path is answered as it is.
std::string findShippedFile(const std::string& path,
                            const std::filesystem::path& program = getProgramPath());

/// A shared library named without a folder: where an installation keeps the program's own ones, or
/// where a build does.
std::string findOwnLibrary(const std::string& name,
                           const std::filesystem::path& program = getProgramPath());

} // namespace program
