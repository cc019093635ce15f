// SPDX-License-Identifier: MIT
#include "SignalRecorder.h"
#include "heli/logic/records.h"

namespace {

using namespace ig;
using Mode = Logic_Nerith_Heli_Final;

struct InputTest : LogicTest {
    InputTest() : LogicTest(true) {}
    /// Presses the keys together, runs a frame, and lets them go.
    void stroke(const std::vector<int>& keys) {
        for (int key : keys)
            scene.input.keyDown(key);
        scene.frame();
        for (int key : keys)
            scene.input.keyUp(key);
    }
    float sonarLength() { return shownLength(logic().m_sonar_info->rope); }
};

TEST_F(InputTest, OfSeveralCommandsInAFrameOnlyTheFirstInOrderActs) {
    const auto done = [&] {
        return std::vector<bool>{logic().m_player_mode == Mode::PLAYER_MODE_FREE,
                                 scene.helicopterNode("fire")->isEnabled(),
                                 !logic().m_torpedo_infos.empty(),
                                 logic().m_sonar_info->prefab != nullptr,
                                 logic().is_break_sonar_joint(),
                                 !logic().m_missiles.empty()};
    };
    std::vector<int> keys = {KEY_SPACE, KEY_F3, KEY_F2, KEY_F6, KEY_F5, KEY_F1};
    std::vector<bool> expected(keys.size());
    for (std::size_t first = 0; !keys.empty(); first++) {
        stroke(keys);
        scene.frame(); // the others are not caught up on
        expected[first] = true;
        EXPECT_EQ(done(), expected);
        keys.pop_back();
    }

    stroke({'4', '2', KEY_F1}); // the camera's speed is set besides a command
    EXPECT_EQ(logic().getCamSpeed(), 200);
    EXPECT_EQ(logic().m_player_mode, Mode::PLAYER_MODE_FIRST);
}

TEST_F(InputTest, ReturnLevelsTheCameraAndComesBeforeTheSonarsKeys) {
    stroke({KEY_F2});
    const float start = sonarLength();
    logic().set_player_mode(Mode::PLAYER_MODE_FREE);
    scene.camera_control.m_rotation = dquat(30, 40, 25);

    scene.input.keyDown(KEY_DOWN);
    scene.input.keyDown(KEY_RETURN);
    scene.frame(1 / 64.0f);
    EXPECT_EQ(sonarLength(), start);
    EXPECT_NEAR(dot(scene.camera.getTransform().getY(), normalize(scene.camera.getPosition())), 1,
                1e-9);
    scene.frames(32, 1 / 64.0f); // Return is still down, but was clicked before
    EXPECT_NEAR(sonarLength(), start + 1, 1e-4);
}

TEST_F(InputTest, GSwitchesTheProjectorOnAndOff) {
    for (const bool on : {true, false, true}) {
        scene.logic->onKeyRelease({'g'}, nullptr);
        EXPECT_EQ(scene.helicopterNode("front_proj")->isEnabled(), on);
    }
}

} // namespace
