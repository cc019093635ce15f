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

TEST(Scripts, AFaultyOneEndsItBeforeAnythingStarts) {
    ChannelRun run;
    run.folder.write("bad.yaml", "commands:\n- {at: 1, klick: 投放鱼雷}\n");
    EXPECT_FALSE(run.start("--script bad.yaml"));
    EXPECT_EQ(run.program->finish(), 1);
}

} // namespace
