// SPDX-License-Identifier: MIT
#include "SceneCommand.h"

#include "testkit/LogCapture.h"

#include <gtest/gtest.h>

namespace {

using namespace ig;

TEST(SceneCommand, HoldsUntilAnotherComesAndIsSaidOnce) {
    LogCapture log;
    LogicBase logic(nullptr, nullptr);
    SceneCommand command(false);
    command.connect(logic);
    const auto tell = [&](CMD_TYPE told) {
        for (int i = 0; i < 100; i++) { // in every record
            emit(logic.m_sig_command, told);
            command.update();
        }
        return command.isStill();
    };
    const auto reset = [&] {
        emit(logic.m_sig_code, 25);
        emit(logic.m_sig_code, 26);
        return command.isStill();
    };
    EXPECT_FALSE(command.isStill()); // who never commands anything sees it run
    EXPECT_TRUE(tell(CMD_FREEZE));
    ASSERT_EQ(log.lines.size(), 1u);
    EXPECT_EQ(log.lines[0],
              "visual_channel: the flight simulation freezes the scene (system_cmd 2), "
              "until it lets it run (1)");
    EXPECT_TRUE(reset());
    EXPECT_TRUE(tell(CMD_EXIT));
    EXPECT_FALSE(tell(CMD_RUN));
    EXPECT_EQ(command.getPictureText(), "");
    EXPECT_TRUE(tell(CMD_STOP));
    EXPECT_EQ(command.describe(), "stop");
    EXPECT_EQ(command.getPictureText(), "scene.stop"); // the name of its text, as none are loaded
    EXPECT_FALSE(reset());
    EXPECT_FALSE(tell(CMD_EXIT));
    EXPECT_FALSE(command.isExit());
    SceneCommand obedient(true);
    obedient.connect(logic);
    EXPECT_FALSE(obedient.isExit());
    emit(logic.m_sig_command, CMD_EXIT);
    EXPECT_TRUE(obedient.isExit());
}

} // namespace
