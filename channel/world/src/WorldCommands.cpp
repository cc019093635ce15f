// SPDX-License-Identifier: MIT
#include "channel/world/WorldCommands.h"

#include "Subcommands.h"
#include "ig/base/jLog.h"

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <unistd.h>

namespace world_commands {

void add(CLI::App& app, Command& command) {
    CLI::App* const world = app.add_subcommand("world", "Make and check worlds of one's own");
    world->footer("'visual_channel world COMMAND --help' tells more; docs/worlds.md begins with "
                  "these commands.");
    addNew(*world, command);
    addCheck(*world, command);
    addBuild(*world, command);
}

bool enterFolder(const Setup& setup) {
    const char* const folder = setup.directory.c_str();
    if (*folder == 0 || chdir(folder) == 0) return true;
    ig::jLog::error("visual_channel: \"%s\": %s", folder, std::strerror(errno));
    return false;
}

std::string settlePath(const Setup& setup, const std::string& path) {
    if (path.starts_with("/vsi")) return path; // a file in an archive, which only the terrain opens
    std::error_code error;
    const std::filesystem::path whole =
        std::filesystem::weakly_canonical(std::filesystem::path(setup.present) / path, error);
    const std::filesystem::path here = std::filesystem::current_path(error);
    const std::filesystem::path below = whole.lexically_relative(here);
    const bool outside = below.empty() || *below.begin() == "..";
    return (outside ? whole : below).string();
}

std::string findWorldFile(const std::string& path) {
    std::error_code error;
    if (!std::filesystem::is_directory(path, error)) return path;
    std::string names, found;
    for (const auto& entry : std::filesystem::directory_iterator(path, error)) {
        if (entry.path().extension() != ".world") continue;
        names += (names.empty() ? "" : ", ") + entry.path().filename().string();
        found = found.empty() ? entry.path().string() : " ";
    }
    if (!found.empty() && found != " ") return found;
    if (names.empty())
        ig::jLog::error("visual_channel: there is no world in \"%s\", no file NAME.world",
                        path.c_str());
    else
        ig::jLog::error("visual_channel: there are several worlds in \"%s\" (%s): name one of them",
                        path.c_str(), names.c_str());
    return {};
}

} // namespace world_commands
