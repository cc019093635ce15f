// SPDX-License-Identifier: MIT

// The program in a real window: its end by the window's keys, and what it says of monitors.

#include "testkit/ChannelFolder.h"
#include "testkit/Program.h"
#include "testkit/VirtualScreen.h"

#define XK_MISCELLANY
#include <X11/keysymdef.h>
#include <cstdlib>
#include <gtest/gtest.h>

namespace {

struct ProgramInAWindowTest : testing::Test {
    static constexpr const char* OPTIONS =
        "--window --size 320x240 --scale 0.5 --eye 0 0 3000 0 80 --seconds 20 "
        "--warm-up off ";
    void SetUp() override {
        if (!VirtualScreen::isInstalled()) GTEST_SKIP() << "there is no Xvfb or no openbox";
    }
    /// Whether it ends at once, without the summary of an orderly end.
    static void expectEndAtOnce(Program& program) {
        std::string rest;
        EXPECT_EQ(program.finish(&rest), 0);
        EXPECT_EQ(rest.find("frames in"), std::string::npos) << rest;
    }
    const ChannelFolder folder;
};

TEST_F(ProgramInAWindowTest, AQuickAltF4EndsItAtOnceEvenWhileItAsks) {
    VirtualScreen screen;
    Program program(PROGRAM_PATH, OPTIONS + std::string("--fps 4"));
    program.waitFor("fps"); // it has run for a second
    ASSERT_TRUE(screen.watch("Visual channel"));
    screen.pressCloseButton();
    program.waitFor("fps");
    screen.key(XK_Alt_L, true);
    screen.stroke(XK_F4);
    screen.key(XK_Alt_L, false); // all within a frame
    expectEndAtOnce(program);
}

TEST_F(ProgramInAWindowTest, AltF4EndsItAtOnceWhereTheWindowManagerTakesIt) {
    VirtualScreen::Desktop desktop;
    desktop.managed = true;
    VirtualScreen screen(desktop);
    Program program(PROGRAM_PATH, OPTIONS);
    program.waitFor("fps");
    ASSERT_TRUE(screen.watch("Visual channel"));
    screen.key(XK_Alt_L, true);
    screen.key(XK_F4, true);
    screen.waitForManager(); // nobody's finger is faster
    screen.key(XK_F4, false);
    screen.key(XK_Alt_L, false);
    expectEndAtOnce(program);
}

TEST_F(ProgramInAWindowTest, ClosedWhileItGetsReadyItEndsInOrderWithoutAsking) {
    VirtualScreen screen;
    setenv("MESA_SHADER_CACHE_DISABLE", "true", 1); // getting ready takes its time
    Program program(PROGRAM_PATH, "--window --size 320x240 --seconds 20");
    unsetenv("MESA_SHADER_CACHE_DISABLE");
    ASSERT_FALSE(program.waitFor("飞仿IP").empty()) << "it ended before the window was there";
    ASSERT_TRUE(screen.watch("Visual channel"));
    screen.pressCloseButton();
    std::string rest;
    EXPECT_EQ(program.finish(&rest), 0);
    EXPECT_NE(rest.find("0 frames in"), std::string::npos) << rest;
}

TEST_F(ProgramInAWindowTest, AMonitorThatIsNotThereIsNamedWithThoseThatAre) {
    VirtualScreen screen;
    Program program(PROGRAM_PATH, OPTIONS + std::string("--monitor 7"));
    EXPECT_NE(program.waitFor("there is no monitor \"7\"; there is 1 \"").find("1024x800"),
              std::string::npos);
    EXPECT_EQ(program.finish(), 1);
}

} // namespace
