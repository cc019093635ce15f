// SPDX-License-Identifier: MIT
#include "bodies.h"
#include "heli/logic/records.h"
#include "testkit/LogicScene.h"

#include <gtest/gtest.h>

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
    void stroke(std::initializer_list<int> keys) {
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

TEST_F(InputTest, EveryCommandKeyActsOncePerPress) {
    int effects = 0;
    logic().m_sig_play_spe_once.append(
        {&effects, [&](SynCoder::CMDPlaySpeOnceInfo*) { effects++; }});
    scene.input.keyDown(KEY_SPACE);
    for (int i = 0; i < 5; i++) {
        scene.frame();
        scene.input.keyDown(KEY_SPACE, true); // the keyboard repeats it
    }
    scene.input.keyUp(KEY_SPACE);
    EXPECT_EQ(logic().m_missiles.size(), 1);
    stroke({KEY_F6});
    EXPECT_EQ(logic().m_torpedo_infos.size(), 1);
    stroke({KEY_F2});
    ASSERT_NE(logic().m_sonar_info->prefab, nullptr);
    EXPECT_FALSE(logic().is_break_sonar_joint());
    stroke({KEY_F3});
    EXPECT_TRUE(logic().is_break_sonar_joint());
    EXPECT_EQ(effects, 0);
    stroke({KEY_F5});
    EXPECT_EQ(effects, 1);
    stroke({KEY_F1});
    EXPECT_EQ(logic().m_player_mode, Mode::PLAYER_MODE_FREE);
}

TEST_F(InputTest, OfSeveralCommandsInAFrameOnlyTheFirstInOrderActs) {
    int effects = 0;
    logic().m_sig_play_spe_once.append(
        {&effects, [&](SynCoder::CMDPlaySpeOnceInfo*) { effects++; }});
    stroke({KEY_SPACE, KEY_F3, KEY_F2, KEY_F6, KEY_F5, KEY_F1}); // whatever went down first
    EXPECT_EQ(logic().m_player_mode, Mode::PLAYER_MODE_FREE);
    EXPECT_EQ(effects + logic().m_torpedo_infos.size() + logic().m_missiles.size(), 0);
    EXPECT_EQ(logic().m_sonar_info->prefab, nullptr);
    scene.frame(); // and the others are not caught up on
    EXPECT_EQ(effects + logic().m_torpedo_infos.size() + logic().m_missiles.size(), 0);
    stroke({KEY_SPACE, KEY_F3, KEY_F2, KEY_F6});
    EXPECT_EQ(logic().m_torpedo_infos.size(), 1);
    EXPECT_EQ(logic().m_sonar_info->prefab, nullptr);
    stroke({KEY_SPACE, KEY_F3, KEY_F2});
    EXPECT_NE(logic().m_sonar_info->prefab, nullptr);
    stroke({KEY_SPACE, KEY_F3});
    EXPECT_TRUE(logic().is_break_sonar_joint());
    EXPECT_EQ(logic().m_missiles.size(), 0);
    stroke({KEY_F6, KEY_F5});
    EXPECT_EQ(effects, 1);
    EXPECT_EQ(logic().m_torpedo_infos.size(), 1);
}

TEST_F(InputTest, DigitsSetTheCamerasSpeedBesidesACommand) {
    const int SPEEDS[] = {10, 200, 1000, 10000, 10000};
    for (int i = 0; i < 5; i++) {
        stroke({'1' + i});
        EXPECT_EQ(logic().getCamSpeed(), SPEEDS[i]);
    }
    stroke({'4', '2'}); // the first in order
    EXPECT_EQ(logic().getCamSpeed(), 200);
    stroke({'3', KEY_F1});
    EXPECT_EQ(logic().getCamSpeed(), 1000);
    EXPECT_EQ(logic().m_player_mode, Mode::PLAYER_MODE_FREE);
}

TEST_F(InputTest, ReturnLevelsTheCameraAndComesBeforeTheSonarsKeys) {
    stroke({KEY_F2});
    ASSERT_NE(logic().m_sonar_info->rope, nullptr);
    const float start = sonarLength();
    logic().set_player_mode(Mode::PLAYER_MODE_FREE);
    scene.camera_control.m_rotation =
        normalize(scene.camera_control.m_rotation * dquat(dvec3(0, 0, 1), 25));
    scene.camera_control.updateView();

    scene.input.keyDown(KEY_DOWN);
    scene.input.keyDown(KEY_RETURN);
    scene.frame(1 / 64.0f);
    EXPECT_EQ(sonarLength(), start);
    EXPECT_NEAR(dot(scene.camera.getTransform().getY(), normalize(scene.camera.getPosition())), 1,
                1e-9);
    for (int i = 0; i < 32; i++)
        scene.frame(1 / 64.0f); // Return is still down, but was clicked before
    EXPECT_NEAR(sonarLength(), start + 1, 1e-4);
    scene.input.keyDown(KEY_UP); // Down comes first
    scene.frame(1 / 64.0f);
    EXPECT_GT(sonarLength(), start + 1);
    scene.input.keyUp(KEY_DOWN);
    for (int i = 0; i < 17; i++)
        scene.frame(1 / 64.0f);
    EXPECT_NEAR(sonarLength(), start + 0.5f, 1e-4);
}

TEST_F(InputTest, CommandsWithoutAHelicopterAreHarmless) {
    logic().release();
    for (int key : {KEY_F5, KEY_F6, KEY_F2, KEY_F3, KEY_SPACE, KEY_DOWN, KEY_UP, KEY_F1, KEY_F1})
        stroke({key});
    EXPECT_EQ(logic().m_player_mode, Mode::PLAYER_MODE_FIRST);
}

TEST(ExitKeyDeathTest, AltF4EndsTheProcessAtOnce) {
    LogicScene scene;
    ASSERT_TRUE(scene.start());
    scene.control.keyDown(KEY_F4);
    scene.frame(); // alone it is nothing
    scene.control.keyDown(KEY_ALT);
    EXPECT_EXIT(scene.frame(), testing::ExitedWithCode(0), "");
}

} // namespace
