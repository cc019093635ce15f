// SPDX-License-Identifier: MIT
#include "SignalRecorder.h"
#include "heli/config/StringTable.h"
#include "ig/package/Package.h"
#include "ig/package/mjl.h"
#include "ig/ui/UIButton.h"
#include "ig/ui/UIEditLine.h"
#include "ig/ui/UILayout.h"
#include "ig/ui/UISpriteViewport.h"
#include "ig/ui/UiDrawList.h"

#include <algorithm>
#include <stdexcept>

// What the buttons and fields do when they are clicked and typed into is tested in a real window,
// with the application.

namespace {

using namespace ig;

struct PanelTest : LogicTest {
    PanelTest() : LogicTest(true) {}
    /// The edit lines of the camera panel, left to right: speed, x, y, z, collective.
    UIEditLine* field(int index) {
        for (int i = 0; i < logic().m_cam_panel->getChildCount(); i++)
            if (auto* edit = dynamic_cast<UIEditLine*>(logic().m_cam_panel->getChild(i)))
                if (index-- == 0) return edit;
        throw std::out_of_range("no such field");
    }
    void click(const UIElement* e) {
        const float x = e->getX() + e->getWidth() / 2.0f, y = e->getY() + e->getHeight() / 2.0f;
        EXPECT_FALSE(scene.input.mouseDown(0, x, y)); // nothing for the scene
        scene.input.mouseUp(0, x, y);
        scene.frame();
    }
    void enter(const char* text, int key) {
        scene.input.text(text);
        scene.input.keyDown(key);
        scene.input.keyUp(key);
    }
    bool shows(const char* part) {
        UiDrawList list;
        scene.ui->draw(list);
        for (const UiDrawList::Command& command : list.getCommands())
            if (list.text(command).find(part) != std::string_view::npos) return true;
        return false;
    }
};

TEST_F(PanelTest, PanelsHugTheirCornersAtEverySize) {
    logic().m_radar_viewport->setHidden(false);
    for (const auto& [width, height] : {std::pair(1920, 1080), {801, 667}}) {
        scene.width = width;
        scene.height = height;
        scene.frame();
        const auto expect = [](const UIElement* panel, int x, int y) {
            EXPECT_EQ(std::pair(panel->getX(), panel->getY()), std::pair(x, y));
        };
        const UIElement *buttons = logic().m_btn_panel, *fields = logic().m_cam_panel;
        expect(buttons, width - buttons->getWidth(), height - buttons->getHeight());
        expect(fields, 0, height - fields->getHeight());
        expect(logic().m_radar_panel, width - 256, 0);
    }
    EXPECT_EQ(field(2)->getWidth(), 156); // has room for a position
}

TEST_F(PanelTest, TheInterfaceFileTellsTheButtonsAndTheRoomThatThePanelsTake) {
    Package interface;
    ASSERT_TRUE(mjl::open(
        (scene.folder.before() / "config/Logic_Nerith_Heli_Final.interface.yaml").string(),
        &interface));
    const UIElement *buttons = logic().m_btn_panel, *fields = logic().m_cam_panel;
    std::string told, shown;
    for (const Package* line : interface.getPackages("buttons"))
        told.append(line->getString("button").view()) += '\n';
    for (int i = 0; i < logic().m_btn_panel->getChildCount(); i++)
        if (auto* button = dynamic_cast<UIButton*>(logic().m_btn_panel->getChild(i)))
            shown.append(button->getText().view()) += '\n';
    EXPECT_EQ(told, shown);
    const Package& room = *interface.getPackage("panels");
    float width = 0, height = 0; // the most that rounding to pixels makes of them
    for (float density = 0.7f; density < 2; density += 0.05f) {
        scene.ui->resize(1280, 1024, density);
        scene.ui->update(0);
        width = std::max(width, (buttons->getWidth() + fields->getWidth()) / density);
        height = std::max(height, buttons->getHeight() / density);
    }
    EXPECT_NEAR(room.getFloat("width") / width, 1.025, 0.025); // no less, and little more
    EXPECT_NEAR(room.getFloat("height") / height, 1.025, 0.025);
    EXPECT_EQ(room.getFloat("viewports"), 256);
}

TEST_F(PanelTest, APlaceThatIsEnteredIsLookedFromWhateverTheViewAndOneThatIsNotIsLeft) {
    click(field(1));
    UdpRecvData record = LogicScene::record();
    record.longitude += 0.01;
    scene.tell(record);
    const dvec3 orbit = scene.camera.getPosition();
    enter("", KEY_RETURN);
    scene.frame();
    EXPECT_EQ(scene.camera.getPosition(), orbit);
    click(field(2));
    enter("20.5", KEY_RETURN);
    scene.frame();
    EXPECT_NEAR(logic().get_cam_pos_geo().y, 20.5, 1e-9);
    EXPECT_EQ(logic().m_btn_view->getText(), "自由视角");
    logic().change_view();
    logic().change_view();
    EXPECT_LT(length(scene.camera.getPosition() - orbit), 1e-6); // it is still there
    for (const char* nowhere : {"1e12", "-6378000"}) {           // no camera looks from there
        click(field(3));
        enter(nowhere, KEY_RETURN);
    }
    EXPECT_EQ(logic().m_btn_view->getText(), "第三视角");
}

TEST_F(PanelTest, CablesThatAreOutTellTheirLengthAndTheHostsWinchIsExplained) {
    std::string told;
    scene.ui->setNotices([&](std::string_view notice) { told = notice; }, {});
    logic().emit_sonar();
    UdpRecvData record = LogicScene::record();
    record.hang_enable = 1;
    record.hang_length = 9.5f;
    scene.tell(record);
    EXPECT_TRUE(shows("Winch 9.5 m"));
    EXPECT_TRUE(shows("Sonar "));
    EXPECT_EQ(told, "");
    record.hang_enable = 0;
    scene.tell(record);
    EXPECT_FALSE(shows("Winch "));
    EXPECT_NE(told.find("hang_enable 0"), std::string::npos);
    told.clear();
    scene.tell(record); // nothing to stow
    EXPECT_EQ(told, "");
    click(logic().m_btn_panel->getChild(10)); // deployed, and stowed by the next record
    scene.tell(record);
    EXPECT_NE(told, "");
}

TEST_F(PanelTest, TheCollectiveIsShownAndCannotBeEdited) {
    logic().m_heli->set_collective(0.75f);
    scene.frame();
    EXPECT_EQ(field(4)->getText(), "0.75");
    click(field(4));
    scene.input.text("9");
    EXPECT_EQ(field(4)->getText(), "0.75");
}

TEST_F(PanelTest, AMessageHasTranslatedButtonsAndWaitsForTheAnswer) {
    scene.folder.write("config/string.txt", "OK: 确定\nCancel: 取消\n");
    int frames = 0;
    scene.ui->setModalFrame([&] {
        scene.frame();
        EXPECT_TRUE(shows("说明") && shows("确定") && shows("取消"));
        enter("", KEY_ESCAPE);
        return frames++ < 9;
    });
    EXPECT_FALSE(show_message("标题", "说明", &scene, true));
}

} // namespace
