// SPDX-License-Identifier: MIT

// Pictures from the whole channel, as a user asks for them.

#include "ChannelRun.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

namespace {

/// Width and height from the head of a PNG file; 0, 0 when it isn't one.
std::pair<int, int> pngSize(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    unsigned char head[24] = {};
    file.read(reinterpret_cast<char*>(head), sizeof head);
    if (!file || std::string(head + 1, head + 4) != "PNG") return {0, 0};
    const auto number = [&head](int at) {
        return head[at] << 24 | head[at + 1] << 16 | head[at + 2] << 8 | head[at + 3];
    };
    return {number(16), number(20)};
}

TEST(Pictures, StillsOfTheAskedSizeWithoutADisplay) {
    ChannelRun run;
    const std::string stem = (run.folder.path() / "still").string();
    run.start("--headless --size 160x90 --step 0.1 --fps 0 --frames 21 --screenshot-every 1 "
              "--screenshot '" +
              stem + ".png'");
    EXPECT_EQ(run.program->finish(&run.output), 0);
    if (run.output.find("going on without pictures") != std::string::npos)
        GTEST_SKIP() << "no OpenGL without a display here";
    for (const char* name : {".png", "_0001.png", "_0002.png"})
        EXPECT_EQ(pngSize(stem + name), std::make_pair(160, 90)) << name << "\n" << run.output;
    EXPECT_FALSE(std::filesystem::exists(stem + "_0004.png"));
}

TEST(Pictures, AWindowOnADisplay) {
    if (std::system("command -v xvfb-run >/dev/null") != 0) GTEST_SKIP() << "no xvfb-run";
    TempFolder folder;
    const std::string picture = (folder.path() / "window.png").string();
    std::string output;
    Program run("/usr/bin/xvfb-run", "-a -s '-screen 0 640x480x24 -noreset' " CHANNEL
                                     " --window --size 320x180 --step 0.1 --fps 0 --frames 4"
                                     " --screenshot '" +
                                         picture + "'");
    EXPECT_EQ(run.finish(&output), 0) << output;
    EXPECT_EQ(pngSize(picture), std::make_pair(320, 180)) << output;
}

TEST(Pictures, TheNullRendererRunsTheWholeChannel) {
    ChannelRun run;
    run.start("--null --step 0.1 --fps 0 --frames 20 --screenshot none.png");
    EXPECT_EQ(run.program->finish(&run.output), 0) << run.output;
    EXPECT_NE(run.output.find("20 frames"), std::string::npos);
    EXPECT_FALSE(std::filesystem::exists(run.folder.path() / "none.png"));
}

TEST(Pictures, WrongOptionsAreExplained) {
    std::string output;
    for (const char* options : {"--size 12", "--size 1x1", "--scale 3", "--time 25",
                                "--weather sunny", "--headless --window", "--eye 1 2"}) {
        EXPECT_EQ(Program(CHANNEL, options).finish(&output), 2) << options;
        EXPECT_NE(output.find("--"), std::string::npos) << options;
    }
}

} // namespace
