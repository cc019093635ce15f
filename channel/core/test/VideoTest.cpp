// SPDX-License-Identifier: MIT

// The video, with small scripts in the place of ffmpeg.

#include "Video.h"
#include "GreyRenderer.h"
#include "testkit/LogCapture.h"
#include "testkit/TempFolder.h"

#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <unistd.h>

namespace {

using namespace ig;

struct VideoTest : testing::Test {
    static constexpr std::size_t PICTURE = 3 * 16 * 8; ///< bytes; the pipe holds seconds of them

    VideoTest() { setenv("PATH", (folder.path().string() + ":" + path).c_str(), 1); }
    ~VideoTest() override { setenv("PATH", path.c_str(), 1); }

    /// What is found under the name of ffmpeg.
    void ffmpeg(const std::string& script) {
        folder.write("ffmpeg", "#!/bin/sh\ncd '" + folder.path().string() + "'\n" + script + "\n");
        std::filesystem::permissions(folder.path() / "ffmpeg", std::filesystem::perms::owner_all);
    }
    std::string read(const char* name) const {
        std::ifstream file(folder.path() / name, std::ios::binary);
        std::ostringstream bytes;
        bytes << file.rdbuf();
        return bytes.str();
    }
    /// A second of scene in so many frames.
    void second(int frames) {
        for (int i = 0; i < frames; i++)
            video.afterFrame(renderer, time += 1.0 / frames);
    }
    /// One report, that holds all these.
    void expectOneReport(std::initializer_list<const char*> parts) const {
        ASSERT_EQ(log.lines.size(), 1u);
        for (const char* part : parts)
            EXPECT_NE(log.lines[0].find(part), std::string::npos) << log.lines[0];
    }

    const std::string path = std::getenv("PATH");
    TempFolder folder;
    LogCapture log;
    GreyRenderer renderer;
    Video video{"-my flight.mp4"};
    double time = 100;
};

TEST_F(VideoTest, EverySecondOfTheSceneGivesAsManyPicturesOfTheFirstsSize) {
    ffmpeg("printf '%s\\n' \"$@\" > arguments; cat > pictures");
    second(60);   // more frames than pictures
    second(10);   // fewer: they are shown longer
    time += 1000; // a stall gives no more than a second
    renderer.resize(8, 25);
    second(30);
    video.close();
    const std::string arguments = read("arguments"), pictures = read("pictures");
    for (const char* part : {"\n-video_size\n16x8\n", "\n-pixel_format\nrgb24\n",
                             "\n-framerate\n30\n", "\nfile:-my flight.mp4\n"})
        EXPECT_NE(arguments.find(part), std::string::npos) << arguments;
    ASSERT_EQ(pictures.size() % PICTURE, 0u);
    EXPECT_NEAR(static_cast<double>(pictures.size() / PICTURE), 4 * Video::RATE, 1);
    EXPECT_EQ(pictures[0], 1);
    const std::size_t last = pictures.size() - PICTURE;
    EXPECT_EQ(pictures[last + 3 * 16], renderer.number); // of the second row
    EXPECT_EQ(pictures[last + 3 * 10], 0);               // beside the narrower picture
    EXPECT_LE(renderer.number, 73);                      // only what the video needs is read back
    EXPECT_TRUE(log.lines.empty());
}

TEST_F(VideoTest, WithoutTheProgramThereIsOneMessage) {
    setenv("PATH", folder.path().c_str(), 1);
    second(30);
    video.close();
    expectOneReport({"ffmpeg, which makes it, is not installed", "my flight.mp4"});
    EXPECT_TRUE(video.hasFailed());
    log.lines.clear();
    EXPECT_FALSE(Video("early.mp4").check()); // is known before the first frame
    expectOneReport({"ffmpeg, which makes it, is not installed", "early.mp4"});
}

TEST_F(VideoTest, AProgramThatEndsOrHangsEndsTheVideoOnlyAndLeavesNoPart) {
    ffmpeg("head -c 10000 > pictures");
    for (int i = 0; i < 100 && log.lines.empty(); i++)
        second(30);
    second(30);
    video.close();
    expectOneReport({"ffmpeg has ended", "my flight.mp4"});

    log.lines.clear();
    ffmpeg("exec sleep 100");
    renderer.resize(1024, 512);
    Video hanging("b.mp4");
    for (int i = 0; i < 30; i++)
        hanging.afterFrame(renderer, i);
    hanging.close();
    expectOneReport({"takes no more pictures"});

    log.lines.clear();
    // Only at the end it finds that it can't.
    ffmpeg("cat > c.mp4; echo disk full >&2; echo and more >&2; exit 3");
    const std::string path_of_c = (folder.path() / "c.mp4").string();
    Video incomplete(path_of_c);
    incomplete.afterFrame(renderer, 0);
    incomplete.close();
    expectOneReport({path_of_c.c_str(), "\": disk full: there is no video"});
    EXPECT_TRUE(incomplete.hasFailed());
    EXPECT_FALSE(std::filesystem::exists(path_of_c));
}

TEST_F(VideoTest, TheProgramGetsOurPicturesAndAllSignalsAndNothingElseOfOurs) {
    ffmpeg(""); // and then no shell, which would let signals through by itself
    folder.write("ffmpeg", "#!/usr/bin/python3\n"
                           "import os, sys\n"
                           "status = open('/proc/self/status').read()\n"
                           "status += ' '.join('fd' + fd for fd in os.listdir('/proc/self/fd'))\n"
                           "open(sys.path[0] + '/status', 'w').write(status)\n"
                           "sys.stdin.buffer.read()\n");
    const int ours = fcntl(STDOUT_FILENO, F_DUPFD, 200); // not marked as ours alone
    second(1);
    video.close();
    ::close(ours);
    const std::string status = read("status");
    EXPECT_NE(status.find("SigBlk:\t0000000000000000\n"), std::string::npos) << status;
    EXPECT_EQ(status.find("fd200"), std::string::npos) << status;
    EXPECT_FALSE(video.hasFailed());
}

} // namespace
