// SPDX-License-Identifier: MIT

// Scripts of operator commands, given to the program as a user gives them.

#include "ChannelRun.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace {

TEST(Scripts, WorkTheChannelWithoutAWindow) {
    ChannelRun run;
    run.folder.write("tour.yaml", "from: start\n"
                                  "commands:\n"
                                  "- {at: 1, click: 场景重置}\n"
                                  "- {at: 1.2, key: t}\n"
                                  "- {at: 1.4, click: 起飞}\n"
                                  "- {at: 1.6, screenshot: before}\n"
                                  "- {at: 1.8, click: 第三视角}\n"
                                  "- {at: 2, click: 自由视角}\n"
                                  "- {at: 2.5, screenshot: cockpit}\n"
                                  "- {at: 4, quit: }\n");
    const std::string pictures = run.folder.path().string() + "/";
    ASSERT_TRUE(run.start("--headless --size 160x90 --step 0.1 --fps 0 --time-scale 0 --script "
                          "tour.yaml --screenshot '" +
                          pictures + "last.png' --contact-sheet '" + pictures + "sheet.png'"));
    EXPECT_EQ(run.program->finish(&run.output), 1) << "one command can't be done";
    if (countOf(run.output, "no pictures: ") > 0)
        GTEST_SKIP() << "no OpenGL without a display here";
    EXPECT_NE(run.output.find("tour.yaml:5: there is no button \"起飞\" to click; there are "
                              "\"第三视角\", \"气象雷达\""),
              std::string::npos)
        << run.output;
    EXPECT_NE(run.output.find("| run 11:00 |"), std::string::npos) << run.output;
    EXPECT_NE(run.output.find("; 1 resets"), std::string::npos) << run.output;
    EXPECT_NE(run.output.find("41 frames in 4.1"), std::string::npos) << run.output;
    for (const char* name : {"before.png", "cockpit.png", "last.png", "sheet.png"})
        EXPECT_TRUE(std::filesystem::exists(pictures + name)) << name;
}

// Each of these once read its files, or had the driver make something, when it was first used.
TEST(Scripts, NothingThatAnOperatorDoesHasToBeMadeInFlight) {
    ChannelRun run;
    run.folder.write("all.yaml", "from: start\n"
                                 "commands:\n"
                                 "- {at: 0.4, click: 投放鱼雷}\n"
                                 "- {at: 0.8, click: 打开声呐}\n"
                                 "- {at: 1.2, click: 打开吊索}\n"
                                 "- {at: 1.6, click: 气象雷达}\n"
                                 "- {at: 2.0, click: 释放声呐}\n"
                                 "- {at: 2.4, key: F1}\n"
                                 "- {at: 2.8, click: 发射诱饵}\n"
                                 "- {at: 3.2, click: 发射导弹}\n"
                                 "- {at: 3.6, key: F12}\n"
                                 "- {at: 4.0, click: 飞机损毁}\n"
                                 "- {at: 5.8, quit: }\n");
    ASSERT_TRUE(run.start("--headless --size 160x90 --scale auto --step 0.2 --fps 0 --rain 3 "
                          "--warm-up on --script all.yaml"));
    EXPECT_EQ(run.program->finish(&run.output), 0) << run.output;
    EXPECT_NE(run.output.find("made after the start: 0 programs, 0 textures; 0 scene files read"),
              std::string::npos)
        << run.output;
}

TEST(Scripts, AFaultyOneEndsItBeforeAnythingStarts) {
    ChannelRun run;
    run.folder.write("bad.yaml", "commands:\n- {at: 1, klick: 投放鱼雷}\n");
    EXPECT_FALSE(run.start("--script bad.yaml"));
    EXPECT_EQ(run.program->finish(), 1);
}

} // namespace
