// SPDX-License-Identifier: MIT

// visual_channel world new: a world at any place of a height raster, complete enough to fly in.

#include "LogicWorld.h"
#include "PlaceFiles.h"
#include "PlaceGround.h"
#include "Subcommands.h"
#include "ig/base/jLog.h"
#include "program/InputFile.h"
#include "program/Process.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

using ig::jLog;

namespace world_commands {

namespace {

constexpr double STEEP = 6; ///< m of height below the pad that are worth a word

struct Wish {
    std::string folder, name;
    std::vector<std::string> rasters;
    double longitude = 0, latitude = 0;
};

/// By which files that belong to the logic are found.
std::string nameOf(const std::string& library) { return std::filesystem::path(library).stem(); }

/// A file's name, and a word in YAML.
bool checkName(const std::string& name) {
    if (!name.empty() && name[0] != '.' && name.find_first_of("/\\\"'#:{}[],&*!|>%@`") == name.npos)
        return true;
    jLog::error("visual_channel: a world can't be named \"%s\": --name takes a name without / and "
                "quotes",
                name.c_str());
    return false;
}

/// As a word of a shell.
std::string quote(const std::string& text) {
    if (text.find_first_of(" \t'\"$&()*;<>?[]\\`|~!#") == std::string::npos) return text;
    std::string quoted = "'";
    for (const char c : text)
        quoted += c == '\'' ? "'\\''" : std::string(1, c);
    return quoted + '\'';
}

int tell(const Wish& wish, const PlaceFiles& files, const PlaceGround& ground,
         const std::string& name) {
    std::printf("%s: a pad at an altitude of %.2f m%s\n", wish.folder.c_str(), files.getPad(),
                files.hasSea() ? ", and two ships on open water" : "");
    if (!files.hasSea())
        std::printf("no open water within 30 km: the ships are there, but disabled\n");
    const ig::dvec2 range = ground.getRange(PlaceGround::PAD);
    if (range.x - range.y > STEEP)
        std::printf("the ground below the pad falls by %.0f m: look for a flatter place\n",
                    range.x - range.y);
    for (const std::string& file : files.getNames())
        std::printf("  %s\n", file.c_str());
    const std::filesystem::path folder(wish.folder);
    std::printf("check it:  visual_channel world check %s\n", quote(wish.folder).c_str());
    std::printf("fly there: visual_channel --world %s & flight_sim fly %s\n",
                quote((folder / (name + ".world")).string()).c_str(),
                quote((folder / "flight.yaml").string()).c_str());
    std::string message;
    if (program::endOutput(message)) return 0;
    jLog::error("visual_channel: %s", message.c_str());
    return 1;
}

int make(const Setup& setup, const Wish& wish) {
    if (!enterFolder(setup)) return 1;
    const std::string folder = settlePath(setup, wish.folder);
    const std::string name =
        wish.name.empty() ? std::filesystem::path(folder).filename().string() : wish.name;
    std::vector<std::string> rasters;
    for (const std::string& raster : wish.rasters)
        rasters.push_back(settlePath(setup, raster));
    LogicWorld asked;
    if (!checkName(name) || !asked.read(nameOf(setup.logic))) return 1;
    for (const std::string& raster : rasters) {
        const bool archived = raster.starts_with("/vsi");
        const std::string why = archived ? "" : program::whyUnreadable(raster);
        if (why.empty()) continue;
        jLog::error("visual_channel: --raster: cannot open \"%s\": %s", raster.c_str(),
                    why.c_str());
        return 1;
    }
    PlaceGround ground;
    if (!ground.read(rasters, {wish.longitude, wish.latitude})) return 1;
    PlaceFiles files(ground, name, folder, rasters);
    if (!files.make(asked.template_folder) || !files.write()) return 1;
    return tell(wish, files, ground, name);
}

} // namespace

void addNew(CLI::App& world, Command& command) {
    CLI::App* const app = world.add_subcommand(
        "new", "Write a world that can be flown in at once, at a place on land of a height raster");
    const auto wish = std::make_shared<Wish>();
    app->add_option("PLACE", wish->folder, "Folder for its files; nothing in it is written over")
        ->required()
        ->type_name("FOLDER");
    app->add_option("--lon,--longitude", wish->longitude, "Of the pad's middle, degrees east")
        ->required()
        ->check(CLI::Range(-360.0, 360.0));
    app->add_option("--lat,--latitude", wish->latitude, "Of the pad's middle, degrees north")
        ->required()
        ->check(CLI::Range(-89.0, 89.0));
    app->add_option("--raster", wish->rasters,
                    "Heights of the ground: GeoTIFF, DTED, SRTM or another raster "
                    "(docs/worlds.md, terrain), which stays where it is; may be repeated, from "
                    "coarse to fine")
        ->required()
        ->allow_extra_args(false)
        ->type_name("FILE");
    app->add_option("--name", wish->name, "Of the world's file, NAME.world; default: the folder's")
        ->type_name("NAME");
    app->footer("What it writes is commented: change it, and 'visual_channel world check PLACE'.");
    app->callback(
        [&command, wish] { command = [wish](const Setup& setup) { return make(setup, *wish); }; });
}

} // namespace world_commands
