// SPDX-License-Identifier: MIT
#include "bodies.h"
#include "heli/logic/records.h"
#include "testkit/LogicScene.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

using namespace ig;
using Mode = Logic_Nerith_Heli_Final;

struct InputTest : testing::Test {
    void SetUp() override {
        scene.useProjectData();
        ASSERT_TRUE(scene.start());
        scene.frame();
    }
    Logic_Nerith_Heli_Final& logic() { return *scene.logic; }
    /// Presses the keys together, runs a frame, and lets them go.
    void stroke(const std::vector<int>& keys) {
        for (int key : keys)
            scene.input.keyDown(key);
        scene.frame();
        for (int key : keys)
            scene.input.keyUp(key);
    }
    float sonarLength() {
        const BodyRope* rope = logic_bodies::ropeOf(logic().m_sonar_info->rope);
        return rope ? rope->getLength() * 1.5f : 0; // as displayed
    }
    LogicScene scene;
};

TEST_F(InputTest, OfSeveralCommandsInAFrameOnlyTheFirstInOrderActs) {
    const auto done = [&] {
        std::string what;
        if (logic().m_player_mode == Mode::PLAYER_MODE_FREE) what += "view ";
        if (scene.helicopterNode("fire")->isEnabled()) what += "explosion ";
        if (!logic().m_torpedo_infos.empty()) what += "torpedo ";
        if (logic().m_sonar_info->prefab) what += "sonar ";
        if (logic().is_break_sonar_joint()) what += "cut ";
        if (!logic().m_missiles.empty()) what += "missile ";
        return what;
    };
    const char* const expected[] = {"view ", "view explosion ", "view explosion torpedo ",
                                    "view explosion torpedo sonar ",
                                    "view explosion torpedo sonar cut "};
    std::vector<int> keys = {KEY_SPACE, KEY_F3, KEY_F2, KEY_F6, KEY_F5, KEY_F1};
    for (const char* what : expected) {
        stroke(keys);
        scene.frame(); // the others are not caught up on
        EXPECT_EQ(done(), what);
        keys.pop_back();
    }

    stroke({'4', '2', KEY_F1}); // the camera's speed is set besides a command
    EXPECT_EQ(logic().getCamSpeed(), 200);
    EXPECT_EQ(logic().m_player_mode, Mode::PLAYER_MODE_FIRST);
    stroke({KEY_F4}); // the process would end with Alt
}

TEST_F(InputTest, ReturnLevelsTheCameraAndComesBeforeTheSonarsKeys) {
    stroke({KEY_F2});
    ASSERT_NE(logic().m_sonar_info->rope, nullptr);
    const float start = sonarLength();
    logic().set_player_mode(Mode::PLAYER_MODE_FREE);
    scene.bankCamera();

    scene.input.keyDown(KEY_DOWN);
    scene.input.keyDown(KEY_RETURN);
    scene.frame(1 / 64.0f);
    EXPECT_EQ(sonarLength(), start);
    EXPECT_NEAR(dot(scene.camera.getTransform().getY(), normalize(scene.camera.getPosition())), 1,
                1e-9);
    scene.frames(32, 1 / 64.0f); // Return is still down, but was clicked before
    EXPECT_NEAR(sonarLength(), start + 1, 1e-4);
    scene.input.keyDown(KEY_UP); // Down comes first
    scene.frame(1 / 64.0f);
    EXPECT_GT(sonarLength(), start + 1);
}

TEST_F(InputTest, GSwitchesTheProjectorOnAndOff) {
    for (const bool on : {true, false, true}) {
        scene.logic->onKeyRelease({'g'}, nullptr);
        EXPECT_EQ(scene.helicopterNode("front_proj")->isEnabled(), on);
    }
}

} // namespace
