// SPDX-License-Identifier: MIT

// One run on several displays: the programs as a user starts them, over the loopback interface.

#include "ChannelRun.h"
#include "render/image/Image.h"
#include "render/image/ImageFile.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

using ig::Image;
using ig::readImage;

namespace {

/// A first channel that nobody sees, and displays of its wall.
struct WallRuns : testing::Test {
    void SetUp() override {
        std::ofstream(run.folder.path() / "wall.yaml")
            << "network: {domain: " << 1 + getpid() % 200 << "}\n"
            << "displays:\n"
               "  left: {heading: -50, horizontal_field: 49, vertical_field: 36, window: {size: "
               "[192, 137]}}\n"
               "  right: {heading: -1, horizontal_field: 49, vertical_field: 36, window: {size: "
               "[192, 137]}}\n";
        run.folder.write("tour.yaml", "commands:\n- {at: 0.05, click: 打开声呐}\n");
        ASSERT_TRUE(run.start(
            "--wall wall.yaml --fps 30 --size 640x360 --sea 4 --time 15 --script tour.yaml"))
            << run.output;
    }
    std::unique_ptr<Program> display(const std::string& name, const std::string& options) const {
        return std::make_unique<Program>(CHANNEL, "--directory '" + run.folder.path().string() +
                                                      "' --wall wall.yaml --quiet --warm-up off "
                                                      "--display " +
                                                      name + ' ' + options);
    }
    static bool has(const std::string& text, const std::string& part) {
        return text.find(part) != std::string::npos;
    }
    ChannelRun run;
};

/// Whether a program has a library loaded.
bool hasLoaded(const Program& program, const std::string& library) {
    std::ifstream maps("/proc/" + std::to_string(program.id()) + "/maps");
    for (std::string line; std::getline(maps, line);)
        if (line.find(library) != std::string::npos) return true;
    return false;
}

TEST_F(WallRuns, NobodyElseLoadsWhatAWallNeeds) {
    EXPECT_TRUE(hasLoaded(*run.program, "libddsc"));
    ChannelRun alone;
    ASSERT_TRUE(alone.start("")) << alone.output;
    EXPECT_TRUE(hasLoaded(*alone.program, "libig"));
    EXPECT_FALSE(hasLoaded(*alone.program, "libddsc"));
}

TEST_F(WallRuns, ADisplayThatIsKilledComesBackAndOutlivesTheFirstChannel) {
    auto early = display("left", "--null --frames 1300");
    ASSERT_NE(early->waitFor("waits for the first channel"), "");
    std::string output;
    for (int i = 0; i < 60; i++) { // some seconds of flight
        run.send("too short", 9);
        ASSERT_FALSE(run.peer.receive(60000).empty());
    }
    early->signal(SIGKILL);
    early->finish();
    auto again = display("left", "--null --frames 200");
    EXPECT_EQ(again->finish(&output), 0) << output;
    EXPECT_TRUE(has(output, "wall: 200 frames")) << output;
    EXPECT_TRUE(has(output, " compared, all equal")) << output;

    auto lasting = display("right", "--null");
    ASSERT_NE(lasting->waitFor("in step with the first channel"), "");
    run.program->signal(SIGKILL);
    ASSERT_NE(lasting->waitFor("nothing comes from the first channel"), "");
    ASSERT_TRUE(run.start("--wall wall.yaml --sea 2")) << run.output;
    ASSERT_NE(lasting->waitFor("in step with the first channel"), "") << "it begins anew";
    for (int i = 0; i < 30; i++)
        ASSERT_FALSE(run.peer.receive(60000).empty());
    EXPECT_EQ(run.stop(), 0) << run.output;
    ASSERT_NE(lasting->waitFor("the first channel has ended"), "");
    lasting->signal(SIGTERM);
    EXPECT_EQ(lasting->finish(&output), 0) << output;
    EXPECT_TRUE(has(output, "all equal")) << output;
}

TEST_F(WallRuns, ADisplayThatDiffersSaysSoAndTriesOnceMore) {
    const char* const PANELS = "config/Logic_Nerith_Heli_Final.interface.yaml";
    std::filesystem::remove(run.folder.path() / PANELS);
    run.folder.write(PANELS, "panels: {width: 900}\n");
    auto differs = display("left", "--null --frames 200");
    std::string output;
    EXPECT_EQ(differs->finish(&output), 1) << output;
    EXPECT_TRUE(has(output, "interface.yaml is not the first channel's")) << output;
    EXPECT_EQ(countOf(output, "this display differs from the first channel in frame 59: panels"), 2)
        << output;
    EXPECT_EQ(countOf(output, "the run is begun again"), 1) << output;
    EXPECT_EQ(countOf(output, "it goes on as it is"), 1) << output;
}

/// Columns of two pictures, mean difference, grey levels.
double compareColumns(const Image& a, int x, const Image& b, int at) {
    const auto value = [](const Image& image, int column, int row, int channel) {
        return int{
            image.rgba[static_cast<std::size_t>(4 * (row * image.width + column) + channel)]};
    };
    double sum = 0;
    for (int y = 0; y < a.height; y++)
        for (int c = 0; c < 3; c++)
            sum += std::abs(value(a, x, y, c) - value(b, at, y, c));
    return sum / (3.0 * a.height);
}

TEST_F(WallRuns, NeighboursShowTheSameFrameAndMeetAtTheirEdge) {
    std::unique_ptr<Program> displays[2];
    const char* const NAMES[] = {"left", "right"};
    for (int i = 0; i < 2; i++)
        displays[i] = display(NAMES[i], std::string("--headless --renderer gl --frames 90 "
                                                    "--screenshot ") +
                                            NAMES[i] + ".png");
    Image pictures[2];
    for (int i = 0; i < 2; i++) {
        std::string output;
        const int status = displays[i]->finish(&output);
        if (has(output, "no pictures: ")) GTEST_SKIP() << "no OpenGL without a display here";
        ASSERT_EQ(status, 0) << output;
        const std::string path = (run.folder.path() / NAMES[i]).string() + ".png";
        ASSERT_TRUE(readImage(path, pictures[i]));
        ASSERT_EQ(pictures[i].width, 192);
    }
    const auto& [left, right] = pictures;
    const double within = compareColumns(left, 190, left, 191) + compareColumns(right, 0, right, 1);
    EXPECT_LT(compareColumns(left, 191, right, 0), 2 + within / 2);
    EXPECT_GT(compareColumns(left, 0, right, 191), 2 * within) << "there is something to be seen";
}

} // namespace
