// SPDX-License-Identifier: MIT

// Worlds are made and checked as by a user's command line, with the project's data and logic.

#include "channel/world/WorldCommands.h"
#include "testkit/LogCapture.h"
#include "testkit/TempFolder.h"
#include "testkit/jpegBytes.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

struct WorldCommandsTest : testing::Test {
    /// A height raster of 0.2 x 0.2 degrees with a round island of 120 m height in its middle.
    std::string makeIsland(double longitude, double latitude, int size = 200,
                           const char* name = "island.asc") const {
        std::ostringstream grid;
        grid.precision(12);
        grid << "ncols " << size << "\nnrows " << size << "\nxllcorner " << longitude - 0.1
             << "\nyllcorner " << latitude - 0.1 << "\ncellsize " << 0.2 / size << '\n';
        for (int i = 0; i < size * size; i++)
            grid << 120 - 1600 / size * std::hypot(i % size - size / 2, i / size - size / 2)
                 << (i % size == size - 1 ? '\n' : ' ');
        return folder.write(name, grid.str()).c_str();
    }
    static int call(const std::string& words) {
        CLI::App app;
        world_commands::Command command;
        world_commands::add(app, command);
        app.parse("world " + words);
        return command({"", "", "Logic_Nerith_Heli_Final.so", {}});
    }
    /// The signal that ends these words' process when it writes more than this into a file; 0:
    /// none.
    static int runWithin(rlim_t bytes, const std::string& words) {
        const pid_t child = fork();
        if (child == 0) {
            const rlimit size{bytes, bytes}, none{0, 0};
            setrlimit(RLIMIT_CORE, &none);
            setrlimit(RLIMIT_FSIZE, &size);
            const LogCapture log;
            const int nowhere = open("/dev/null", O_WRONLY);
            dup2(nowhere, STDOUT_FILENO);
            _exit(call(words));
        }
        int status = 0;
        waitpid(child, &status, 0);
        return WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    }
    std::string read(const std::string& path) const {
        std::ostringstream text;
        text << std::ifstream(folder.path() / path, std::ios::binary).rdbuf();
        return text.str();
    }
    /// The exit status of `visual_channel world` with these words; `printed` is what it prints, and
    /// the log's lines with it.
    int run(const std::string& words) {
        LogCapture log;
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        const int status = call(words);
        printed = testing::internal::GetCapturedStdout() + testing::internal::GetCapturedStderr();
        for (const std::string& line : log.lines)
            printed += line + '\n';
        return status;
    }
    bool has(const std::string& part) const { return printed.find(part) != std::string::npos; }

    TempFolder folder;
    std::string printed;
};

TEST_F(WorldCommandsTest, ANewWorldIsCompleteAtAnyLatitudeAndFloatsItsShipsAsDrawn) {
    for (const auto& [longitude, latitude] : {std::pair(12.3, 66.5), {171.0, -45.0}}) {
        const std::string place = folder.file("bay" + std::to_string(latitude)).c_str();
        const std::string words = "new " + place + " --name cove --lon " +
                                  std::to_string(longitude) + " --lat " + std::to_string(latitude) +
                                  " --raster " + makeIsland(longitude, latitude);
        ASSERT_EQ(run(words), 0) << printed;
        EXPECT_TRUE(has("two ships")) << printed;
        EXPECT_EQ(run("check " + place), 0) << printed;
        EXPECT_FALSE(has("origin")) << printed; // of ships, above or below the water
        EXPECT_EQ(run(words), 1);
        EXPECT_TRUE(has("already: nothing is written over")) << printed;
    }
}

TEST_F(WorldCommandsTest, TheCheckNamesWhatAFlightWouldDoWithout) {
    const std::string place = folder.file("bay").c_str(), world = place + "/bay.world";
    ASSERT_EQ(run("new " + place + " --lon 12 --lat 60 --raster " + makeIsland(12, 60)), 0);
    std::ifstream file(world);
    std::string text, line;
    int lines = 0;
    const auto replace = [](std::string& in, const std::string& what, const std::string& by) {
        const std::size_t at = in.find(what);
        if (at != std::string::npos) in.replace(at, what.size(), by);
    };
    while (std::getline(file, line)) {
        lines++;
        replace(line, "name: cmder", "name: cmdr");
        replace(line, "type: ocean, wgs: [12", "type: ocean, bofort: 3, wgs: [-112");
        replace(line, "snow_flake.mat", "snow_flak.mat");
        replace(line, "name: hail, type: particles", "name: hail, type: prefab, path: nix");
        if (line.find("name: LNJ_2023") != std::string::npos) // where the pad stands
            line.replace(line.find("wgs:"), std::string::npos, "wgs: [12.001, 60.001, 0]}");
        text += line + '\n';
    }
    const std::string after = world + ':' + std::to_string(++lines) + ": ";
    text +=
        "  - {name: wreck, type: mesh, mesh: " + place +
        "/pad.obj#pod, wgs: [12, 60.001, -3]}\n  - {name: tug, wgs: [12, 60.01, 0], body: {mass: "
        "9e6, shapes: [{type: box, size: [14, 100, 4]}]}}\n";
    folder.write("bay/bay.world", text);
    EXPECT_EQ(run("check " + place), 1);
    for (const std::string& part :
         {std::string("no node \"cmder\"; nearest is \"cmdr\""),
          std::string("unknown key \"bofort\"; nearest is \"beaufort\""),
          std::string("No such file or directory; nearest is \"snow_flake.mat\""),
          std::string("\"hail\" is of type \"prefab\" where the logic looks for \"particles\""),
          std::string("\"ocean\" lies 56"), std::string("\"LNJ_2023\" would float where there is "),
          after + "\"wreck\" lies 1", after + "no mesh from \"" + place + "/pad.obj#pod\"",
          world + ':' + std::to_string(lines + 1) + ": \"tug\" falls"})
        EXPECT_TRUE(has(part)) << part << " is missing in\n" << printed;
    EXPECT_FALSE(has("\ncannot open")) << printed; // without a place
}

TEST_F(WorldCommandsTest, ABuildThatWasKilledGoesOnAndSpoilsNoOtherFolder) {
    const std::string place = folder.file("bay").c_str(), to = "build " + place + " --into ";
    ASSERT_EQ(run("new " + place + " --lon 12 --lat 60 --raster " + makeIsland(12, 60)), 0);
    EXPECT_EQ(run("build " + place), 1);
    EXPECT_TRUE(has("names no folder to build into")) << printed;
    const std::string whole = folder.file("whole").c_str(), ended = folder.file("ended").c_str();
    ASSERT_EQ(run(to + whole), 0) << printed;
    EXPECT_TRUE(has("heights: 100 %") && has("built into")) << printed;
    const std::size_t size = read("whole/heights_0.f32").size();
    ASSERT_EQ(runWithin(size / 2, to + ended), SIGXFSZ);
    EXPECT_FALSE(std::filesystem::exists(ended + "/heights_0.f32"));
    EXPECT_GT(read("ended/heights_0.part.f32").size(), 4096u);
    ASSERT_EQ(run(to + ended), 0) << printed;
    EXPECT_TRUE(read("ended/heights_0.f32") == read("whole/heights_0.f32"));
    EXPECT_EQ(run(to + ended), 0);
    EXPECT_TRUE(has("up to date")) << printed;
    const auto count = [&] { // of what lies in the world's own folder
        return std::distance(std::filesystem::directory_iterator(place), {});
    };
    const auto before = count();
    EXPECT_EQ(run(to + place), 1);
    EXPECT_TRUE(has("holds other things than a built world")) << printed;
    EXPECT_EQ(count(), before);
}

TEST_F(WorldCommandsTest, TheCheckLooksAtWhatIsBuiltAndAtWhatIsTooHeavy) {
    const std::string place = folder.file("bay").c_str(), world = place + "/bay.world";
    const std::string coarse = makeIsland(12, 60, 50, "coarse.asc"), fine = makeIsland(12, 60);
    ASSERT_EQ(run("new " + place + " --lon 12 --lat 60 --raster " + coarse + " --raster " + fine),
              0)
        << printed;
    std::ostringstream text;
    text << std::ifstream(world).rdbuf();
    std::string edited = text.str();
    const std::string key = "type: terrain, ";
    ASSERT_NE(edited.find("coarse.asc\", \""), std::string::npos);
    edited.insert(edited.find(key) + key.size(), "built: \"" + place + "/ground\", ");
    const auto line = 1 + std::count(edited.begin(), edited.begin() + edited.find(key), '\n');
    const std::string where = world + ':' + std::to_string(line) + ": ";
    folder.write("bay/bay.world", edited);
    EXPECT_EQ(run("check " + place), 1);
    EXPECT_TRUE(has(where + "no ground from \"" + place + "/ground\", it is no built world"))
        << printed;
    ASSERT_EQ(run("build " + place), 0) << printed;
    EXPECT_EQ(run("check " + place), 0) << printed;
    makeIsland(12, 60, 210);
    EXPECT_EQ(run("check " + place), 1);
    EXPECT_TRUE(has(where + "\"" + place + "/ground\" is out of date")) << printed;

    folder.write("wide.jpg", jpegBytes(8200, 8, [](unsigned, unsigned) {
                     return std::array<unsigned char, 3>{};
                 }));
    const std::string skin =
        folder
            .write("wide.mat",
                   "textures:\n  base_color: " + std::string(folder.file("wide.jpg").c_str()))
            .c_str();
    text << "  - {name: wide, type: mesh, mesh: " << place << "/pad.obj, material: " << skin
         << "}\n";
    folder.write("bay/bay.world", text.str());
    EXPECT_EQ(run("check " + place), 1);
    EXPECT_TRUE(has("wide.jpg\" is heavy: 8200 by 8 pixels")) << printed;
}

TEST_F(WorldCommandsTest, WhereNoPadCanStandTheNearestLandIsNamed) {
    const std::string raster = " --raster " + makeIsland(171, -45);
    EXPECT_EQ(
        run("new " + std::string(folder.file("a").c_str()) + " --lon 171.03 --lat -45" + raster),
        1);
    EXPECT_TRUE(has("the nearest is at --lon 171.0")) << printed;
    EXPECT_EQ(run("new " + std::string(folder.file("a").c_str()) + " --lon -45 --lat 71" + raster),
              1);
    EXPECT_TRUE(has("are longitude and latitude exchanged")) << printed;
    EXPECT_EQ(folder.count(), 1); // the raster
}

} // namespace
