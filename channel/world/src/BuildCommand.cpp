// SPDX-License-Identifier: MIT

// visual_channel world build: the ground of a world in the form in which flying reads it.

#include "Subcommands.h"
#include "ig/base/jLog.h"
#include "ig/package/Package.h"
#include "ig/package/mjl.h"
#include "ig/scene/NodeReader.h"
#include "plugins/terrain/WorldBuilder.h"
#include "program/Process.h"

#include <CLI/CLI.hpp>
#include <atomic>
#include <cstdio>
#include <memory>
#include <unistd.h>

using ig::jLog;

namespace world_commands {

namespace {

std::atomic<bool> g_is_wanted = true; ///< until a signal

/// The first node of type "terrain" at or below an item; null without one.
const ig::Package* findTerrain(const ig::Package& package);

const ig::Package* findTerrain(const ig::Item& item) {
    if (item.getPackage()) return findTerrain(*item.getPackage());
    for (int i = 0; i < item.getCount(); i++)
        if (const ig::Package* found = findTerrain(item.getElement(i))) return found;
    return nullptr;
}

const ig::Package* findTerrain(const ig::Package& package) {
    if (package.getItem("type") && package.getString("type") == "terrain") return &package;
    for (int i = 0; i < package.getItemCount(); i++)
        if (const ig::Package* found = findTerrain(package.getItemAt(i))) return found;
    return nullptr;
}

/// A bar in a terminal, elsewhere a line for each tenth that is done.
void showProgress(const char* stage, int done, int steps) {
    constexpr int WIDTH = 40;
    const int percent = steps > 0 ? 100 * done / steps : 100;
    if (isatty(STDOUT_FILENO)) {
        std::printf("\r%-12s [", stage);
        for (int i = 0; i < WIDTH; i++)
            std::putchar(i * 100 < percent * WIDTH ? '#' : ' ');
        std::printf("] %3d %%%s", percent, done == steps ? "\n" : "");
    } else if (done == 0 || 10 * done / steps != 10 * (done - 1) / steps) {
        std::printf("%s: %d %%\n", stage, percent);
    }
    std::fflush(stdout);
}

int build(const Setup& setup, const std::string& path, const std::string& folder) {
    if (!enterFolder(setup)) return 1;
    const std::string world = findWorldFile(settlePath(setup, path));
    ig::Package package;
    if (world.empty() || !ig::mjl::open(world, &package)) return 1;
    const ig::Package* node = findTerrain(package);
    if (!node) {
        jLog::error("visual_channel: \"%s\" has no node of type \"terrain\", or cannot be read",
                    world.c_str());
        return 1;
    }
    ig::TerrainSources sources = ig::readTerrainSources(ig::NodeReader(*node));
    if (!folder.empty()) sources.built = settlePath(setup, folder);
    program::onStopSignal([] { g_is_wanted = false; });
    std::string failure;
    const auto result = ig::WorldBuilder(sources).build(
        [](const char* stage, int done, int steps) {
            showProgress(stage, done, steps);
            return g_is_wanted.load();
        },
        failure);
    using Result = ig::WorldBuilder::Result;
    if (result == Result::failed)
        jLog::error("visual_channel: cannot build \"%s\": %s", world.c_str(), failure.c_str());
    else if (result == Result::stopped)
        std::printf("\nstopped; the same command goes on from here\n");
    else if (result == Result::up_to_date)
        std::printf("\"%s\" is up to date\n", sources.built.c_str());
    else
        std::printf("built into \"%s\"; the terrain node takes it with \"built: %s\"\n",
                    sources.built.c_str(), sources.built.c_str());
    std::string message;
    if (!program::endOutput(message)) {
        jLog::error("visual_channel: %s", message.c_str());
        return 1;
    }
    return result == Result::built || result == Result::up_to_date ? 0 : 1;
}

} // namespace

void addBuild(CLI::App& world, Command& command) {
    CLI::App* const app = world.add_subcommand(
        "build", "Make a world's ground ready to be flown over in pieces, however large it is");
    const auto path = std::make_shared<std::string>(), into = std::make_shared<std::string>();
    app->add_option("WORLD", *path, "The world's file, or the folder that holds it")->required();
    app->add_option("--into", *into,
                    "Folder for what is built; default: the one that the terrain node names as "
                    "\"built\"")
        ->type_name("FOLDER");
    app->footer("A build that was stopped goes on where it was. Exit status: 0 when the folder is "
                "up to date.");
    app->callback([&command, path, into] {
        command = [path, into](const Setup& setup) { return build(setup, *path, *into); };
    });
}

} // namespace world_commands
