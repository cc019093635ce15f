// SPDX-License-Identifier: MIT

// Another logic than the helicopter's in the same program: its own world, key, button and key help.

#include "ChannelRun.h"
#include "render/image/ImageFile.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;

struct SecondLogic : testing::Test {
    SecondLogic() {
        for (const char* first : {"data", "config/Logic_Nerith_Heli_Final.cfg",
                                  "config/Logic_Nerith_Heli_Final.interface.yaml"})
            fs::remove(run.folder.path() / first);
        link("files", "second");
        link("Logic_Second.interface.yaml", HELP);
    }
    void link(const char* from, const char* to) const {
        fs::create_symlink(fs::current_path() / "testkit/logic_second" / from,
                           run.folder.path() / to);
    }
    /// The exit status.
    int play(const std::string& options) {
        return Program(CHANNEL, "--logic " SECOND_LOGIC " --headless --size 320x200 --fps 0 "
                                "--step 0.1 --language en --directory '" +
                                    run.folder.path().string() + "' " + options)
            .finish(&run.output);
    }
    ig::Image picture(const char* name) const {
        ig::Image image;
        EXPECT_TRUE(ig::readImage((run.folder.path() / name).string(), image)) << run.output;
        return image;
    }
    static constexpr const char* HELP = "config/Logic_Second.interface.yaml";
    ChannelRun run;
};

TEST_F(SecondLogic, RunsItsWorldKeyAndButtonToAnOrderlyEnd) {
    run.folder.write("tour.yaml", "from: start\ncommands:\n"
                                  "- {at: 0.5, screenshot: there}\n"
                                  "- {at: 0.9, key: r}\n"
                                  "- {at: 1.5, screenshot: back}\n"
                                  "- {at: 2, click: Anchor}\n"
                                  "- {at: 4, key: Alt+F4}\n");
    const int status =
        play("--time-scale 0 --script tour.yaml --trace trace.csv --screenshot last.png");
    if (countOf(run.output, "no pictures: ") > 0)
        GTEST_SKIP() << "no OpenGL without a display here";
    EXPECT_EQ(status, 0);
    EXPECT_EQ(countOf(run.output, "frames in 4."), 1) << run.output;
    for (const char* bad : {"warning", "error", "elicopter", "heli", "Nerith"})
        EXPECT_EQ(countOf(run.output, bad), 0) << run.output;

    const std::vector<ChannelRun::Frame> frames = run.readTrace();
    ASSERT_GT(frames.size(), 35u);
    for (std::size_t i = 1; i < frames.size(); i++)
        EXPECT_EQ(frames[i].longitude > frames[i - 1].longitude, frames[i].time < 2.15)
            << frames[i].time;

    const ig::Image there = picture("there.png"), back = picture("back.png");
    const std::size_t middle = 4 * (100 * 320 + 160);
    EXPECT_GT(there.rgba[middle], 2 * there.rgba[middle + 1]) << "the buoy is red";
    EXPECT_GT(back.rgba[middle], 2 * back.rgba[middle + 1]) << "the camera follows it";
}

TEST_F(SecondLogic, HasItsOwnKeyHelpOrNone) {
    const char* const options = "--frames 2 --help-overlay --screenshot help.png";
    const int status = play(options);
    if (countOf(run.output, "no pictures: ") > 0)
        GTEST_SKIP() << "no OpenGL without a display here";
    ASSERT_EQ(status, 0) << run.output;
    const ig::Image own = picture("help.png");
    fs::remove(run.folder.path() / HELP);
    ASSERT_EQ(play(options), 0) << run.output;
    EXPECT_TRUE(own.rgba != picture("help.png").rgba);
    EXPECT_EQ(countOf(run.output, std::string("there is no \"") + HELP), 1) << run.output;
    EXPECT_EQ(countOf(run.output, "warning") + countOf(run.output, "error"), 0) << run.output;
}

} // namespace
