// SPDX-License-Identifier: MIT

// Pictures from the whole channel, as a user asks for them.

#include "ChannelRun.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <optional>

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

/// An environment variable for the programs that a test starts.
struct Environment {
    Environment(const char* name, const std::string& value) : m_name(name) {
        if (const char* before = std::getenv(name)) m_before = before;
        setenv(name, value.c_str(), 1);
    }
    ~Environment() {
        if (m_before)
            setenv(m_name, m_before->c_str(), 1);
        else
            unsetenv(m_name);
    }
    const char* m_name;
    std::optional<std::string> m_before;
};

TEST(Pictures, StillsOfTheAskedSizeWithoutADisplay) {
    ChannelRun run;
    const std::string stem = (run.folder.path() / "still").string();
    run.start("--headless --size 160x90 --step 0.1 --fps 0 --frames 21 --screenshot-every 1 "
              "--screenshot '" +
              stem + ".png' --contact-sheet '" + stem + "s.png'");
    const int status = run.program->finish(&run.output);
    if (countOf(run.output, "no pictures: ") > 0)
        GTEST_SKIP() << "no OpenGL without a display here";
    EXPECT_EQ(status, 0);
    for (const char* name : {".png", "_0001.png", "_0002.png"})
        EXPECT_EQ(pngSize(stem + name), std::make_pair(160, 90)) << name << "\n" << run.output;
    EXPECT_FALSE(std::filesystem::exists(stem + "_0004.png"));
    EXPECT_EQ(pngSize(stem + "s.png"), std::make_pair(3 * 160, 90)); // at 0.1, 1.1 and 2.1 s
}

TEST(Pictures, AFileThatCannotBeWrittenIsNamedOnceAndNothingOfItStays) {
    ChannelRun run;
    run.folder.write("bin/ffmpeg", "#!/bin/sh\nfor file; do :; done\ncat > \"${file#file:}\"\n");
    const std::filesystem::path bin = run.folder.path() / "bin";
    std::filesystem::permissions(bin / "ffmpeg", std::filesystem::perms::owner_all);
    const Environment path("PATH", bin.string() + ":" + std::getenv("PATH"));
    const auto files = run.folder.count();
    // With the shell's limit on files, in blocks of 512 bytes, for a full disk.
    const auto expectFailure = [&](const std::string& limit, const std::string& options,
                                   const std::string& file, long errors) {
        Program program("/bin/sh", "-c 'ulimit -f " + limit +
                                       "; exec " CHANNEL
                                       " --size 160x90 --step 0.1 --fps 0 --quiet --directory " +
                                       run.folder.path().string() + " " + options + " " + file +
                                       "'");
        std::string output;
        EXPECT_EQ(program.finish(&output), 1) << options << file << "\n" << output;
        EXPECT_EQ(countOf(output, '"' + file + '"'), 1) << options << file << "\n" << output;
        EXPECT_EQ(countOf("\n" + output, "\nerror: "), errors) << options << file << "\n" << output;
        EXPECT_EQ(run.folder.count(), files) << options << file;
    };
    expectFailure("unlimited", "--null --trace", "bin", 1);
    for (const char* option :
         {"--screenshot", "--screenshot-every 1 --screenshot a.png --contact-sheet", "--video",
          "--trace"})
        expectFailure("unlimited", "--headless --frames 3 " + std::string(option), "none/x.png", 1);
    expectFailure("1", "--null --frames 21 --trace", "full.csv", 1);
    expectFailure("1", "--headless --frames 3 --video", "full.mp4", 1);
    // One message of those every so many seconds, one of the last.
    expectFailure("1", "--headless --frames 4 --screenshot-every 0.1 --screenshot", "full.png", 2);
}

TEST(Pictures, WithoutOpenGLTheChannelAdvisesAndRunsWithoutPictures) {
    const Environment no_driver("__EGL_VENDOR_LIBRARY_FILENAMES", "/nowhere.json");
    const auto run = [](const std::string& options, int exit_status) {
        ChannelRun channel;
        channel.start("--headless --step 0.1 --fps 0 --frames 5 " + options);
        EXPECT_EQ(channel.program->finish(&channel.output), exit_status) << options;
        EXPECT_EQ(channel.readTrace().size(), exit_status == 0 ? 5u : 0u) << options;
    };
    run("", 0);
    run("--null", 0);
    run("--renderer gl", 1);
    run("--screenshot a.png", 1); // not to be had
    std::string output;
    EXPECT_EQ(Program(CHANNEL, "--renderer gl --headless").finish(&output), 1);
    EXPECT_NE(output.find("no OpenGL 3.3"), std::string::npos) << output;
    EXPECT_NE(output.find("--null"), std::string::npos) << output;

    if (std::system("command -v xvfb-run >/dev/null") != 0) return;
    const Environment old_driver("MESA_GL_VERSION_OVERRIDE", "2.1");
    output.clear();
    // A screen that is reset when its last program ends signals that to xvfb-run, which may die of
    // it.
    Program in_a_window("/usr/bin/xvfb-run",
                        "-a -s '-screen 0 640x480x24 -noreset' " CHANNEL " --window --frames 3");
    EXPECT_EQ(in_a_window.finish(&output), 1);
    EXPECT_NE(output.find("no window with OpenGL 3.3"), std::string::npos) << output;
    EXPECT_NE(output.find("--null"), std::string::npos) << output;
}

TEST(Pictures, AVideoOfTheFramesGoesToFfmpeg) {
    ChannelRun run;
    run.folder.write("bin/ffmpeg", "#!/bin/sh\ncat > pictures\n"); // works in the channel's folder
    const std::filesystem::path bin = run.folder.path() / "bin";
    std::filesystem::permissions(bin / "ffmpeg", std::filesystem::perms::owner_all);
    const Environment path("PATH", bin.string() + ":" + std::getenv("PATH"));
    run.start("--headless --size 160x90 --step 0.1 --fps 0 --frames 11 --video flight.mp4");
    const int status = run.program->finish(&run.output);
    if (countOf(run.output, "no pictures: ") > 0)
        GTEST_SKIP() << "no OpenGL without a display here";
    EXPECT_EQ(status, 0);
    const auto bytes = std::filesystem::file_size(run.folder.path() / "pictures");
    EXPECT_NEAR(static_cast<double>(bytes), 31.0 * 160 * 90 * 3, 160 * 90 * 3.0) << run.output;
}

} // namespace
