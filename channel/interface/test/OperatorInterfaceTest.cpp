// SPDX-License-Identifier: MIT
#include "channel/interface/OperatorInterface.h"
#include "channel/interface/LinkMonitor.h"
#include "channel/interface/PaceMonitor.h"
#include "channel/interface/Texts.h"
#include "common/logic/LogicBase.h"
#include "ig/app/ControlApp.h"
#include "ig/package/PackageManager.h"
#include "ig/scene/Material.h"
#include "ig/ui/KeyCode.h"
#include "ig/ui/UIButton.h"
#include "ig/ui/UIEditLine.h"
#include "testkit/LogCapture.h"
#include "testkit/TempFolder.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

using namespace ig;

/// Writes down the events that reach it.
struct Recorder final : LogicBase {
    Recorder() : LogicBase(nullptr, nullptr) {}
    void onMouseDown(const GUIEventMouse& e, IApp*) override { add("down", e.button); }
    void onMouseUp(const GUIEventMouse& e, IApp*) override { add("up", e.button); }
    void onMouseMove(const GUIEventMouse& e, IApp*) override { add("move", e.x); }
    void onMouseWheel(const GUIEventWheel& e, IApp*) override {
        add("wheel", e.delta);
        add("flag", e.flag);
    }
    void onKeyPress(const GUIEventKey& e, IApp*) override { add("press", e.key); }
    void onKeyRelease(const GUIEventKey& e, IApp*) override { add("release", e.key); }
    template <class T>
    void add(const char* name, T value) {
        events += std::string(name) + std::to_string(static_cast<int>(value)) + ' ';
    }
    std::string take() { return std::exchange(events, {}); }
    std::string events;
};

struct Owner final : WindowOwner {
    void toggleFullScreen() override { asked += "full "; }
    void takePicture() override { asked += "picture "; }
    void resize(int, int, float) override {}
    std::string asked;
};

struct OperatorInterfaceTest : testing::Test {
    OperatorInterfaceTest() {
        Texts::load("en");
        channel.resize(1280, 720);
        channel.getRoot()->addChild(button);
        field->setAlignFree(true);
        field->setPosition(0, 100);
        channel.getRoot()->addChild(field);
        channel.open(&logic, INTERFACE);
        channel.update(0);
    }
    void stroke(int key) {
        channel.onKey(key, true, false);
        channel.onKey(key, false, false);
        logic.take();
    }
    /// Whether a text that holds `part` is drawn.
    bool shows(const char* part) { return shows(part, channel); }
    static bool shows(const char* part, OperatorInterface& channel) {
        channel.update(0);
        const UiDrawList& list = *channel.draw();
        bool found = false;
        for (const UiDrawList::Command& command : list.getCommands())
            if (list.text(command).find(part) != std::string_view::npos) found = true;
        return found;
    }
    void frames(int count, int records) {
        for (int i = 0; i < count; i++)
            channel.getOverlays().addFrame(1 / 64.0f, {0.001, 0.002, 0.0001, 0.008}, records);
    }

    static constexpr const char* INTERFACE = "config/Logic_Nerith_Heli_Final.interface.yaml";
    LinkMonitor link;
    PaceMonitor pace;
    Recorder logic;
    Owner owner;
    ControlApp control;
    OperatorInterface channel{nullptr, owner, &control};
    UIButton* button = new UIButton(channel.getRoot(), "b"); // at the top left
    UIEditLine* field = new UIEditLine(channel.getRoot(), "");
};

TEST_F(OperatorInterfaceTest, TheLogicHearsWhatIsTheScenes) {
    channel.onMove(600, 400);
    channel.onButton(1, true, 600, 400);
    channel.onButton(1, false, 600, 400);
    channel.onWheel(1);
    channel.onWheel(-2);
    channel.onWheel(0);
    channel.onKey('g', true, false);
    channel.onKey('g', true, true);
    channel.onKey('g', false, false);
    EXPECT_EQ(logic.take(),
              "move600 down1 up1 wheel120 flag1 wheel-240 flag0 press103 release103 ");
    channel.onButton(0, true, 5, 105);
    channel.onKey('h', true, false);
    channel.onText("h");
    channel.onKey('h', false, false);
    channel.onWheel(1);
    EXPECT_EQ(logic.take(), "");
    EXPECT_EQ(field->getText(), "h");
    EXPECT_FALSE(shows("dipping sonar"));
}

TEST_F(OperatorInterfaceTest, TheWindowsOwnKeysAreTakenWithAltAndReachNobodyElse) {
    for (const bool alt : {false, true}) {
        channel.onModifiers(false, false, alt);
        logic.take();
        std::string heard;
        for (const int key : {int{KEY_RETURN}, int{'p'}, int{KEY_F4}}) {
            channel.onKey(key, true, false);
            heard += logic.take();
            channel.onKey(key, false, false);
        }
        EXPECT_EQ(owner.asked, alt ? "full picture " : "");
        EXPECT_EQ(channel.isEndRequested(), alt);
        EXPECT_EQ(heard.empty(), alt);
    }
}

TEST_F(OperatorInterfaceTest, PanelsComeAndGoWithoutTheOverlays) {
    stroke(KEY_F10);
    EXPECT_TRUE(shows("F10 shows them"));
    EXPECT_FALSE(shows("b"));
    channel.onButton(0, true, 5, 5);
    EXPECT_EQ(logic.take(), "down0 "); // the scene's: there is no button
    channel.onButton(0, false, 5, 5);
    stroke(KEY_F12);
    EXPECT_TRUE(shows("dipping sonar"));
    channel.onButton(0, true, 640, 360); // it takes the mouse where it lies
    channel.onButton(0, false, 640, 360);
    stroke('h');
    EXPECT_FALSE(shows("dipping sonar"));
    EXPECT_EQ(logic.take(), "");
    stroke(KEY_F10);
    EXPECT_TRUE(shows("Panels shown"));
    channel.onButton(0, true, 5, 5);
    EXPECT_EQ(logic.take(), "");
}

TEST_F(OperatorInterfaceTest, WhatIsToldInPassingGoesByItself) {
    channel.getRoot()->tell("in passing");
    EXPECT_TRUE(shows("in passing"));
    channel.getRoot()->tellRefused("19.7 X");
    EXPECT_TRUE(shows("numbers only: 19.7 X"));
    channel.getOverlays().getNotices().showHint();
    EXPECT_TRUE(shows("F12 or h"));
    frames(64 * 6, 0);
    EXPECT_FALSE(shows("numbers only"));
    EXPECT_TRUE(shows("F12 or h"));
    frames(64 * 10, 0);
    EXPECT_FALSE(shows("F12 or h"));
}

TEST_F(OperatorInterfaceTest, HelpGlossesKeysAndButtonsInBothLanguagesAndFitsEveryWindow) {
    channel.getOverlays().showHelp(true);
    EXPECT_TRUE(shows("释放声呐") && shows("cut the sonar loose"));
    for (const auto& [width, height, density] :
         {std::tuple(3840, 2160, 2.0f), {800, 600, 1.0f}, {240, 900, 1.0f}, {640, 360, 1.0f}}) {
        channel.resize(width, height, density);
        channel.update(0);
        for (const UiDrawList::Command& command : channel.draw()->getCommands()) {
            EXPECT_GE(command.x, 0);
            EXPECT_GE(command.y, 0);
            EXPECT_LE(command.x + command.w, width);
            EXPECT_LE(command.y + command.h, height);
            if (command.kind == UiDrawList::Kind::text && std::min(width, height) >= 600) {
                EXPECT_GE(command.h, 9); // readable
            }
        }
    }
    EXPECT_TRUE(shows("打开吊索") && shows("level the camera"));
    EXPECT_FALSE(shows("相机调平")); // there is no room for both
}

TEST_F(OperatorInterfaceTest, HelpOfALogicWithOneLanguageIsShownInThatOne) {
    const TempFolder folder;
    OperatorInterface other(nullptr, owner, &control);
    other.resize(1280, 720);
    other.open(&logic,
               folder.write("a.yaml", "buttons: [{button: b, does: {zh: 只有}}]\n").c_str());
    other.getOverlays().showHelp(true);
    EXPECT_TRUE(shows("只有", other)); // in the column that is English
}

TEST_F(OperatorInterfaceTest, SwitchesOfTheScenesFileStepTheirTracksAndTellIt) {
    const WorkingFolder folder;
    LogCapture log;
    folder.write("lamp.mat", "parameters: {override: 0}\n");
    folder.write("a.anim", "channels:\n- {material: lamp.mat, parameter: override, "
                           "keys: [[0, 0.5], [1, 2], [2, -1]]}\n");
    folder.write("a.yaml", R"(switches:
- {key: l, track: a.anim, steps: [{tells: by the hour}, {tells: {en: lamps on}}, {tells: dark}]}
- {key: Return, track: a.anim, steps: [{tells: x}, {tells: y}]}
- {key: m, track: a.anim, steps: [{tells: x}]}
- {key: n, track: b.anim, steps: [{tells: x}, {tells: y}]}
- {key: l, track: a.anim, steps: [{tells: x}, {tells: y}]}
- {key: h, track: a.anim, steps: [{tells: x}, {tells: y}]}
- {key: o, track: a.anim, steps: [{tells: x}, {tells: ""}]}
)");
    OperatorInterface other(nullptr, owner, &control);
    other.resize(1280, 720);
    other.open(&logic, "a.yaml");
    EXPECT_EQ(log.lines.size(), 6u);
    const Material* lamp = MaterialManager::get("lamp.mat");
    EXPECT_EQ(readSlider(lamp, "override", 9), 0.5f);
    for (const auto& [told, value] :
         {std::pair("lamps on", 2.0f), {"dark", -1.0f}, {"by the hour", 0.5f}}) {
        other.onKey('l', true, false);
        other.onKey('l', false, false);
        EXPECT_EQ(readSlider(lamp, "override", 9), value);
        EXPECT_TRUE(shows(told, other));
    }
    other.close();
    MaterialManager::release();
    PackageManager::release();
}

TEST_F(OperatorInterfaceTest, PanelsShrinkWhereTheyWouldNotStandSideBySide) {
    button->setFixSize(100, 10);
    channel.resize(608, 2000); // eight tenths of the width that the logic's file asks for
    EXPECT_EQ(button->getWidth(), 80);
    OperatorInterface opened(nullptr, owner, &control);
    opened.resize(608, 2000);
    opened.open(&logic, INTERFACE);
    EXPECT_EQ(opened.getRoot()->pixels(100), 80); // before the first frame
}

TEST_F(OperatorInterfaceTest, StatisticsStepThroughTheirFormsAndCountOverHalfASecond) {
    EXPECT_FALSE(shows("frames/s"));
    stroke(KEY_F11);
    frames(32, 1);
    EXPECT_TRUE(shows("64.0 frames/s"));
    EXPECT_FALSE(shows("records"));
    stroke(KEY_F11);
    frames(16, 0);
    frames(8, 1);
    frames(4, 2);
    frames(4, 7);
    EXPECT_TRUE(shows("update 1.00, physics 2.00, interface 0.10, draw 8.00 ms"));
    EXPECT_TRUE(shows("none 50 %, one 25 %, two 12 %, more 12 %"));
    EXPECT_TRUE(shows("records 88.0/s, the last none yet")); // 44 in half a second
    stroke(KEY_F11);
    EXPECT_FALSE(shows("frames/s"));
}

TEST_F(OperatorInterfaceTest, WhatIsWrongWithTheLinkStandsOverThePictureInsideIt) {
    EXPECT_FALSE(shows("10004"));
    channel.getOverlays().watch(&link, &pace);
    channel.getOverlays().setSceneState("nothing moves");
    EXPECT_TRUE(shows("nothing moves"));
    LinkSample sample;
    sample.listening = true;
    sample.port = 10004;
    sample.out.refused_destination = "a host's name that fills half a window if not all of it";
    link.update(sample, 0);
    channel.getOverlays().showStatistics(Overlays::Statistics::full);
    frames(33, 0);
    for (const auto& [width, height] : {std::pair(1280, 720), {320, 200}, {240, 900}}) {
        channel.resize(width, height);
        EXPECT_TRUE(shows("nothing moves") && shows("no host yet on port 10004"));
        const UiDrawList& list = *channel.draw();
        float statistics_end = 0, top = 0;
        for (const UiDrawList::Command& command : list.getCommands()) {
            const std::string_view text = list.text(command);
            if (text.find("lost 0, short 0") != std::string_view::npos) statistics_end = command.y;
            if (text.find("no feedback") == std::string_view::npos) continue;
            EXPECT_LE(command.x + channel.getRoot()->getTextWidth(command.h, text), width);
            top = command.y;
        }
        EXPECT_TRUE(width == 1280 || top > statistics_end);
    }
    sample.in.datagrams_received = 1;
    sample.out = {};
    link.update(sample, 0);
    EXPECT_FALSE(shows("10004"));
    channel.getOverlays().setSceneState("");
    EXPECT_FALSE(shows("nothing moves"));
}

} // namespace
