// SPDX-License-Identifier: MIT
#include "SceneCommand.h"

#include "channel/interface/Texts.h"
#include "testkit/LogCapture.h"

#include <gtest/gtest.h>

namespace {

using namespace ig;

TEST(SceneCommand, HoldsUntilAnotherComesAndIsSaidOnce) {
    LogCapture log;
    LogicBase logic(nullptr, nullptr);
    SceneCommand command(false), obedient(true);
    command.connect(logic);
    obedient.connect(logic);
    const auto stillAfter = [&](CMD_TYPE told) {
        for (int i = 0; i < 100; i++) { // in every record
            emit(logic.m_sig_command, told);
            command.update();
        }
        return command.isStill();
    };
    const auto stillAfterReset = [&] {
        emit(logic.m_sig_code, 25);
        return command.isStill();
    };
    EXPECT_FALSE(command.isStill()); // whoever never commands anything sees it run
    EXPECT_TRUE(stillAfter(CMD_FREEZE));
    ASSERT_EQ(log.lines.size(), 1u);
    EXPECT_NE(log.lines[0].find("freezes the scene (system_cmd 2), until"), std::string::npos);
    EXPECT_TRUE(stillAfterReset());
    EXPECT_TRUE(stillAfter(CMD_EXIT)); // nothing comes of it
    EXPECT_TRUE(obedient.isExit() && !command.isExit());
    EXPECT_FALSE(stillAfter(CMD_RUN));
    EXPECT_EQ(command.getPictureText(), "");
    EXPECT_TRUE(stillAfter(CMD_STOP));
    EXPECT_TRUE(stillAfter(CMD_EXIT)); // still a stop
    EXPECT_EQ(command.getPictureText(), Texts::get("scene.stop"));
    EXPECT_FALSE(stillAfterReset());
    EXPECT_FALSE(stillAfter(CMD_EXIT));
}

} // namespace
