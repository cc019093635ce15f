// SPDX-License-Identifier: MIT
#include "bodies.h"
#include "heli/config/StringTable.h"
#include "heli/logic/records.h"
#include "ig/scene/Material.h"
#include "ig/ui/UIButton.h"
#include "ig/ui/UIEditLine.h"
#include "ig/ui/UILayout.h"
#include "ig/ui/UISpriteViewport.h"
#include "ig/ui/UiDrawList.h"
#include "testkit/LogicScene.h"

#include <gtest/gtest.h>
#include <stdexcept>
#include <string>

namespace {

using namespace ig;
using Mode = Logic_Nerith_Heli_Final;

struct Listener final : MsgNode {
    Listener() { attach(); }
    void processMsg(UiMsg* message) override { seen.push_back(message->id); }
    std::vector<int> seen;
};

struct PanelTest : testing::Test {
    void SetUp() override {
        scene.useProjectData();
        ASSERT_TRUE(scene.start());
        scene.frame();
    }
    Logic_Nerith_Heli_Final& logic() { return *scene.logic; }

    /// The command button of that text, which must be there.
    UIButton* button(const std::string& text) {
        for (int i = 0; i < logic().m_btn_panel->getChildCount(); i++) {
            auto* found = dynamic_cast<UIButton*>(logic().m_btn_panel->getChild(i));
            if (found && found->getText() == text.c_str()) return found;
        }
        throw std::out_of_range("no button " + text);
    }
    /// The edit lines of the camera panel, left to right: speed, x, y, z, collective.
    UIEditLine* field(int index) {
        for (int i = 0; i < logic().m_cam_panel->getChildCount(); i++)
            if (auto* edit = dynamic_cast<UIEditLine*>(logic().m_cam_panel->getChild(i)))
                if (index-- == 0) return edit;
        throw std::out_of_range("no such field");
    }
    static float centerX(const UIElement* e) {
        return static_cast<float>(e->getX() + e->getWidth() / 2);
    }
    static float centerY(const UIElement* e) {
        return static_cast<float>(e->getY() + e->getHeight() / 2);
    }
    /// Presses the left mouse button where the element is laid out.
    void press(const UIElement* e) {
        EXPECT_FALSE(scene.input.mouseDown(0, centerX(e), centerY(e))); // nothing for the scene
    }
    void release(const UIElement* e) { scene.input.mouseUp(0, centerX(e), centerY(e)); }
    void click(const UIElement* e) {
        press(e);
        release(e);
        scene.frame();
    }
    void click(const char* text) { click(button(text)); }
    /// Keys and text as a keyboard gives them.
    void type(const char* text) {
        for (; *text; text++) {
            scene.input.keyDown(*text);
            scene.input.text(std::string(1, *text).c_str());
            scene.input.keyUp(*text);
        }
    }
    void key(int code) {
        scene.input.keyDown(code);
        scene.input.keyUp(code);
    }
    static float cableLength(Node* rope) {
        const BodyRope* body = logic_bodies::ropeOf(rope);
        return body ? body->getLength() * 1.5f : 0; // as displayed
    }

    LogicScene scene;
    UiDrawList list;
};

TEST_F(PanelTest, SeventeenButtonsStandInOrderAtTheRightEdge) {
    const char* const TEXTS[] = {"第三视角", "气象雷达", "飞机损毁", "开闭雨刷", "投放鱼雷",
                                 "打开声呐", "关闭声呐", "释放声呐", "下放声呐", "上拉声呐",
                                 "打开吊索", "关闭吊索", "下放吊索", "上拉吊索", "发射导弹",
                                 "发射诱饵", "场景重置"};
    ASSERT_EQ(logic().m_btn_panel->getChildCount(), 17);
    for (int i = 0; i < 17; i++) {
        const auto* b = static_cast<const UIButton*>(logic().m_btn_panel->getChild(i));
        EXPECT_EQ(b->getText(), TEXTS[i]);
        EXPECT_EQ(b->getX() + b->getWidth(), scene.width); // right-aligned
        EXPECT_EQ(b->getWidth(), button("场景重置")->getWidth());
    }
    EXPECT_EQ(logic().m_btn_view, button("第三视角"));
}

TEST_F(PanelTest, PanelsHugTheirCornersAtEverySize) {
    const UIElement* radar = logic().m_radar_panel;
    logic().m_radar_viewport->setHidden(false);
    for (const auto& [width, height] : {std::pair(1280, 720), {1920, 1080}, {801, 667}}) {
        scene.width = width;
        scene.height = height;
        scene.frame();
        const UIElement* last = button("场景重置");
        EXPECT_EQ(last->getX() + last->getWidth(), width);
        EXPECT_EQ(last->getY() + last->getHeight(), height);
        EXPECT_EQ(logic().m_cam_panel->getX(), 0);
        EXPECT_EQ(logic().m_cam_panel->getY() + logic().m_cam_panel->getHeight(), height);
        EXPECT_EQ(radar->getX(), width - 256);
        EXPECT_EQ(radar->getY(), 0);
        const Mode::PLAYER_MODE mode = logic().m_player_mode;
        click(logic().m_btn_view); // the hit areas came along
        EXPECT_NE(logic().m_player_mode, mode);
    }
}

TEST_F(PanelTest, TheViewButtonNamesTheViewThatIsOn) {
    UIButton* view = logic().m_btn_view;
    const char* const NAMES[] = {"自由视角", "第一视角", "第三视角"};
    for (const char* name : NAMES) {
        click(view);
        EXPECT_EQ(view->getText(), name);
    }
    EXPECT_EQ(logic().m_player_mode, Mode::PLAYER_MODE_THIRD);
    key(KEY_F1); // the key gives the same cycle
    scene.frame();
    EXPECT_EQ(view->getText(), "自由视角");
}

TEST_F(PanelTest, ClickButtonsDoTheirWorkOncePerClick) {
    int effects = 0, resets = 0;
    logic().m_sig_play_spe_once.append(
        {&effects, [&](SynCoder::CMDPlaySpeOnceInfo*) { effects++; }});
    logic().m_sig_code.append({&resets, [&](int) { resets++; }});

    click("开闭雨刷");
    EXPECT_TRUE(logic().m_heli->is_wiper_on());
    click("开闭雨刷");
    EXPECT_FALSE(logic().m_heli->is_wiper_on());
    click("投放鱼雷");
    EXPECT_EQ(logic().m_torpedo_infos.size(), 1);
    click("发射导弹");
    EXPECT_EQ(logic().m_missiles.size(), 1);
    click("发射诱饵");
    EXPECT_EQ(logic().m_decoys.size(), 6);
    click("打开吊索");
    EXPECT_NE(logic().m_winch_info->prefab, nullptr);
    click("关闭吊索");
    EXPECT_EQ(logic().m_winch_info->prefab, nullptr);
    click("打开声呐");
    EXPECT_NE(logic().m_sonar_info->prefab, nullptr);
    EXPECT_FALSE(logic().is_break_sonar_joint());
    click("释放声呐");
    EXPECT_TRUE(logic().is_break_sonar_joint());
    click("关闭声呐");
    EXPECT_EQ(logic().m_sonar_info->prefab, nullptr);
    effects = 0;
    click("飞机损毁");
    EXPECT_EQ(effects, 1);
    EXPECT_EQ(resets, 0);
    click("场景重置");
    EXPECT_EQ(resets, 2); // begin and end
    EXPECT_EQ(logic().m_torpedo_infos.size() + logic().m_decoys.size(), 0);
}

TEST_F(PanelTest, HoldButtonsActEveryFrameWhileTheyAreHeld) {
    click("打开声呐");
    click("打开吊索");
    const auto held = [&](const char* text, Node* rope, int frames) {
        const float before = cableLength(rope);
        press(button(text));
        for (int i = 0; i < frames; i++)
            scene.frame(1 / 64.0f);
        release(button(text));
        for (int i = 0; i < 5; i++) // let go: nothing moves
            scene.frame(1 / 64.0f);
        return cableLength(rope) - before;
    };
    Node *sonar = logic().m_sonar_info->rope, *winch = logic().m_winch_info->rope;
    EXPECT_NEAR(held("下放声呐", sonar, 64), 2, 1e-4); // 2 m/s for a second
    EXPECT_NEAR(held("上拉声呐", sonar, 32), -1, 1e-4);
    EXPECT_NEAR(held("下放吊索", winch, 64), 2, 1e-4);
    EXPECT_NEAR(held("上拉吊索", winch, 32), -1, 1e-4);
    EXPECT_EQ(held("下放声呐", sonar, 0), 0); // between two frames

    press(button("下放声呐")); // neither dragging off …
    scene.input.mouseMove(400, 300);
    const float before = cableLength(sonar);
    scene.frame();
    EXPECT_EQ(cableLength(sonar), before);
    release(button("下放声呐"));
    press(button("下放声呐")); // … nor a lost release keeps it held
    scene.input.focusLost();
    scene.frame();
    EXPECT_EQ(cableLength(sonar), before);
}

// ------------------------------------------------------------------ the camera panel

TEST_F(PanelTest, TypedSpeedIsSetAndKeysShowInTheField) {
    Listener messages;
    click(field(0));
    type("500");
    EXPECT_EQ(logic().getCamSpeed(), 100); // not before the field is left
    key(KEY_RETURN);
    EXPECT_EQ(logic().getCamSpeed(), 500);
    EXPECT_EQ(messages.seen, std::vector<int>{123456});
    key('3');
    scene.frame();
    EXPECT_EQ(field(0)->getText(), "1000");
    EXPECT_EQ(messages.seen.size(), 1u);
    scene.input.mouseMove(centerX(field(0)), centerY(field(0)));
    EXPECT_FALSE(scene.input.wheel(1));
    EXPECT_EQ(logic().getCamSpeed(), 1010);
}

TEST_F(PanelTest, TypedPositionMovesTheCameraThereAndLevelsIt) {
    logic().set_player_mode(Mode::PLAYER_MODE_FREE);
    scene.camera_control.m_rotation =
        normalize(scene.camera_control.m_rotation * dquat(dvec3(0, 0, 1), 25));
    scene.camera_control.updateView();
    scene.frame();
    const char* const TEXTS[] = {"100.25", "-33.5", "1200"};
    for (int i = 0; i < 3; i++) {
        click(field(i + 1));
        type(TEXTS[i]);
        scene.input.mouseDown(0, 640, 360); // a click into the scene leaves the field
        scene.input.mouseUp(0, 640, 360);
        scene.frame();
    }
    EXPECT_LT(length(logic().get_cam_pos_geo() - dvec3(100.25, -33.5, 1200)), 1e-6);
    const dvec3 up = normalize(scene.camera.getPosition());
    EXPECT_NEAR(dot(scene.camera.getTransform().getY(), up), 1, 1e-9);

    const dvec3 before = scene.camera.getPosition();
    for (const char* nowhere : {"1e300", "-6378000", "9999999999999"}) {
        click(field(3));
        type(nowhere);
        key(KEY_RETURN);
        scene.frame();
        EXPECT_EQ(scene.camera.getPosition(), before);
    }
    EXPECT_EQ(field(3)->getText().toDouble(), logic().get_cam_pos_geo().z); // shown again
}

TEST_F(PanelTest, AVisitedFieldDoesNotTakeTheCameraBack) {
    click(field(1));
    UdpRecvData record = LogicScene::record();
    record.longitude += 0.01;
    scene.send(record);
    scene.frame();
    const dvec3 moved = scene.camera.getPosition();
    key(KEY_RETURN); // nothing was typed
    EXPECT_EQ(scene.camera_control.m_position, moved);
    scene.frame();
    EXPECT_NEAR(field(1)->getText().toDouble(), logic().get_cam_pos_geo().x, 1e-6);
}

TEST_F(PanelTest, TheCollectiveIsShownAndCannotBeEdited) {
    logic().m_heli->set_collective(0.75f);
    scene.frame();
    EXPECT_EQ(field(4)->getText(), "0.75");
    click(field(4));
    type("9");
    scene.input.wheel(1);
    scene.frame();
    EXPECT_EQ(logic().m_heli->m_collective, 0.75f);
}

TEST_F(PanelTest, TextTypedIntoAFieldNeverActsAsACommand) {
    const Node* projector = scene.helicopterNode("front_proj");
    ASSERT_NE(projector, nullptr);
    const bool projected = projector->isEnabled();
    click(field(1));
    const std::string speed = field(0)->getText().c_str();
    type("5 g1");
    for (int code : {KEY_DOWN, KEY_UP, KEY_HOME, KEY_DELETE})
        key(code);
    scene.frame();
    EXPECT_EQ(logic().getCamSpeed(), 100);
    EXPECT_EQ(logic().m_missiles.size(), 0);
    EXPECT_EQ(projector->isEnabled(), projected);
    key(KEY_ESCAPE);
    key('5'); // and now it is a key again
    scene.frame();
    EXPECT_EQ(logic().getCamSpeed(), 10000);
}

TEST_F(PanelTest, GarbageOfAnyLengthLeavesTheChannelRunning) {
    std::string garbage;
    for (int i = 0; i < 3000; i++)
        garbage += static_cast<char>(1 + i * 7 % 255);
    for (int i = 0; i < 5; i++) {
        scene.input.mouseDown(0, centerX(field(i)), centerY(field(i)));
        scene.input.mouseUp(0, centerX(field(i)), centerY(field(i)));
        scene.input.text(garbage.c_str());
        for (char c : garbage)
            scene.input.text(std::string(1, c).c_str());
        scene.frame();
        key(KEY_RETURN);
        scene.frame();
        EXPECT_TRUE(isFinite(scene.camera.getPosition()));
        EXPECT_EQ(scene.ui->getFocus(), nullptr);
    }
    EXPECT_TRUE(scene.feedback().has_value());
}

// ------------------------------------------------------------------ messages

TEST_F(PanelTest, AMessageHasTranslatedButtonsAndWaitsForTheAnswer) {
    scene.folder.write("config/string.txt", "OK: 确定\nCancel: 取消\n");
    const auto drawn = [&](const char* text) -> const UiDrawList::Command* {
        for (const UiDrawList::Command& command : list.commands())
            if (list.text(command) == text) return &command;
        return nullptr;
    };
    const auto ask = [&](bool cancel, const char* answer) {
        int frames = 0;
        scene.ui->setModalFrame([&] {
            scene.frame();
            scene.ui->draw(list);
            EXPECT_EQ(drawn("取消") != nullptr, cancel);
            EXPECT_TRUE(drawn("说明"));
            if (const UiDrawList::Command* button = drawn(answer)) {
                scene.input.mouseDown(0, button->x, button->y);
                scene.input.mouseUp(0, button->x, button->y);
            }
            return ++frames < 10;
        });
        const bool accepted = show_message("标题", "说明", &scene, cancel);
        EXPECT_EQ(frames, 1);
        return accepted;
    };
    EXPECT_TRUE(ask(false, "确定"));
    EXPECT_TRUE(ask(true, "确定"));
    EXPECT_FALSE(ask(true, "取消"));
    scene.ui->draw(list);
    EXPECT_EQ(drawn("说明"), nullptr);
}

} // namespace
