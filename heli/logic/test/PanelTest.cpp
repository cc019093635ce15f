// SPDX-License-Identifier: MIT
#include "heli/config/StringTable.h"
#include "ig/ui/UIButton.h"
#include "ig/ui/UIEditLine.h"
#include "ig/ui/UILayout.h"
#include "ig/ui/UISpriteViewport.h"
#include "ig/ui/UiDrawList.h"
#include "testkit/LogicScene.h"

#include <gtest/gtest.h>
#include <stdexcept>
#include <string>

// What the buttons and fields do when they are clicked and typed into is tested in a real window,
// with the host application.

namespace {

using namespace ig;

struct PanelTest : testing::Test {
    void SetUp() override {
        scene.useProjectData();
        ASSERT_TRUE(scene.start());
        scene.frame();
    }
    Logic_Nerith_Heli_Final& logic() { return *scene.logic; }
    /// The edit lines of the camera panel, left to right: speed, x, y, z, collective.
    UIEditLine* field(int index) {
        for (int i = 0; i < logic().m_cam_panel->getChildCount(); i++)
            if (auto* edit = dynamic_cast<UIEditLine*>(logic().m_cam_panel->getChild(i)))
                if (index-- == 0) return edit;
        throw std::out_of_range("no such field");
    }
    void click(const UIElement* e) {
        const auto x = static_cast<float>(e->getX() + e->getWidth() / 2);
        const auto y = static_cast<float>(e->getY() + e->getHeight() / 2);
        EXPECT_FALSE(scene.input.mouseDown(0, x, y)); // nothing for the scene
        scene.input.mouseUp(0, x, y);
        scene.frame();
    }
    void key(int code) {
        scene.input.keyDown(code);
        scene.input.keyUp(code);
    }
    LogicScene scene;
};

TEST_F(PanelTest, PanelsHugTheirCornersAtEverySize) {
    const char* const TEXTS[] = {"第三视角", "气象雷达", "飞机损毁", "开闭雨刷", "投放鱼雷",
                                 "打开声呐", "关闭声呐", "释放声呐", "下放声呐", "上拉声呐",
                                 "打开吊索", "关闭吊索", "下放吊索", "上拉吊索", "发射导弹",
                                 "发射诱饵", "场景重置"};
    ASSERT_EQ(logic().m_btn_panel->getChildCount(), 17);
    logic().m_radar_viewport->setHidden(false);
    for (const auto& [width, height] : {std::pair(1280, 720), {1920, 1080}, {801, 667}}) {
        scene.width = width;
        scene.height = height;
        scene.frame();
        for (int i = 0; i < 17; i++) {
            const auto* button = static_cast<UIButton*>(logic().m_btn_panel->getChild(i));
            EXPECT_EQ(button->getText(), TEXTS[i]);
            EXPECT_EQ(button->getX() + button->getWidth(), width);
        }
        const UIElement* last = logic().m_btn_panel->getChild(16);
        EXPECT_EQ(last->getY() + last->getHeight(), height);
        const UIElement &fields = *logic().m_cam_panel, &radar = *logic().m_radar_panel;
        EXPECT_EQ(fields.getX(), 0);
        EXPECT_EQ(fields.getY() + fields.getHeight(), height);
        EXPECT_EQ(radar.getX(), width - 256);
        EXPECT_EQ(radar.getY(), 0);
    }
}

TEST_F(PanelTest, AVisitedFieldDoesNotTakeTheCameraBack) {
    click(field(1));
    UdpRecvData record = LogicScene::record();
    record.longitude += 0.01;
    scene.tell(record);
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
    scene.input.text("9");
    scene.input.wheel(1);
    scene.frame();
    EXPECT_EQ(logic().m_heli->m_collective, 0.75f);
}

TEST_F(PanelTest, GarbageOfAnyLengthLeavesTheChannelRunning) {
    std::string garbage;
    for (int i = 0; i < 3000; i++)
        garbage += static_cast<char>(1 + i * 7 % 255);
    for (int i = 0; i < 5; i++) {
        click(field(i));
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

TEST_F(PanelTest, AMessageHasTranslatedButtonsAndWaitsForTheAnswer) {
    scene.folder.write("config/string.txt", "OK: 确定\nCancel: 取消\n");
    const auto ask = [&](bool cancel, const std::string& answer) {
        int frames = 0;
        scene.ui->setModalFrame([&] {
            scene.frame();
            UiDrawList list;
            scene.ui->draw(list);
            std::string seen;
            for (const UiDrawList::Command& command : list.commands()) {
                const std::string text(list.text(command));
                if (text == "取消" || text == "说明") seen += text;
                if (text != answer) continue;
                scene.input.mouseDown(0, command.x, command.y);
                scene.input.mouseUp(0, command.x, command.y);
            }
            EXPECT_EQ(seen, cancel ? "说明取消" : "说明");
            return ++frames < 10;
        });
        const bool accepted = show_message("标题", "说明", &scene, cancel);
        EXPECT_EQ(frames, 1);
        return accepted;
    };
    EXPECT_TRUE(ask(false, "确定"));
    EXPECT_TRUE(ask(true, "确定"));
    EXPECT_FALSE(ask(true, "取消"));
}

} // namespace
