// SPDX-License-Identifier: MIT
#include "Screenshots.h"

#include "GreyRenderer.h"
#include "render/image/ImageFile.h"
#include "testkit/LogCapture.h"
#include "testkit/TempFolder.h"

#include <algorithm>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

struct ScreenshotsTest : testing::Test {
    std::string path(const std::string& name) const { return (folder.path() / name).string(); }
    /// Which of the renderer's pictures a file shows; 0: none.
    int shown(const std::string& name) const {
        ig::Image image;
        if (!std::filesystem::exists(path(name)) || !ig::readImage(path(name), image)) return 0;
        return image.rgba[0];
    }
    /// Lines of the log that hold `part`.
    long told(const std::string& part) const {
        return std::ranges::count_if(log.lines, [&part](const std::string& line) {
            return line.find(part) != std::string::npos;
        });
    }
    /// A file that is written only once somebody reads it.
    void blockWith(const std::string& name) const { mkfifo(path(name).c_str(), 0600); }
    /// Lets the writer of such a file go on; what was written.
    std::size_t unblock(const std::string& name) const {
        std::size_t size = 0;
        char bytes[4096];
        const int file = open(path(name).c_str(), O_RDONLY);
        for (ssize_t n; (n = read(file, bytes, sizeof bytes)) > 0;)
            size += static_cast<std::size_t>(n);
        close(file);
        return size;
    }

    TempFolder folder;
    LogCapture log;
    GreyRenderer renderer;
};

TEST_F(ScreenshotsTest, FramesGoOnWhileAFileIsMadeAndAllAreThereAtTheEnd) {
    Screenshots shots(path("a.png"), 0, path("sheet.png"));
    blockWith("slow.png");
    shots.take(renderer, "slow");
    shots.takeNew(renderer);
    shots.take(renderer, "a_0002"); // not there yet, but its name is taken
    shots.takeNew(renderer);
    shots.afterFrame(renderer, 1);
    EXPECT_TRUE(shots.takeWritten().empty());
    EXPECT_GT(unblock("slow.png"), 60u);
    shots.afterLast(renderer);
    EXPECT_EQ(shots.takeWritten(), (std::vector{path("a_0001.png"), path("a_0003.png")}));
    EXPECT_EQ(shown("a_0001.png"), 2);
    EXPECT_EQ(shown("a_0002.png"), 3);
    EXPECT_EQ(shown("a_0003.png"), 4);
    EXPECT_EQ(shown("a.png"), 5);
    ig::Image sheet;
    ASSERT_TRUE(ig::readImage(path("sheet.png"), sheet));
    EXPECT_EQ(sheet.width, 3 * renderer.width); // without the last frame's
    EXPECT_EQ(sheet.rgba[4 * 16], 2);
    EXPECT_FALSE(shots.hasFailed());
    EXPECT_TRUE(log.lines.empty());
}

TEST_F(ScreenshotsTest, AnEndThatCutsTheFramesShortLosesNone) {
    renderer.resize(1024, 512); // so that they are long in the making when the end comes
    {
        Screenshots shots(path("a.png"), 0, "");
        blockWith("slow.png");
        shots.take(renderer, "slow");
        for (int i = 0; i < 3; i++)
            shots.takeNew(renderer);
        unblock("slow.png");
    }
    EXPECT_EQ(shown("a_0003.png"), 4);
}

TEST_F(ScreenshotsTest, WhatCannotBeWrittenIsToldOnceByALaterFrame) {
    Screenshots shots(path("none/a.png"), 1, "");
    for (int i = 0; i < 20; i++)
        shots.afterFrame(renderer, i);
    shots.afterLast(renderer);
    EXPECT_TRUE(shots.hasFailed());
    EXPECT_EQ(told("a_0"), 1); // of the series, whatever else was on the way
    EXPECT_EQ(told("none/a.png"), 1);
    EXPECT_EQ(told("no further pictures of --screenshot-every"), 1);
}

} // namespace
