// SPDX-License-Identifier: MIT
#include "Script.h"
#include "ScriptPlayer.h"
#include "channel/interface/WindowListener.h"
#include "ig/ui/UIButton.h"
#include "ig/ui/UILabel.h"
#include "testkit/LogicScene.h"

#include <gtest/gtest.h>

namespace {

using namespace ig;
using Kind = ScriptCommand::Kind;

Script scriptOf(const std::string& commands) {
    Script script;
    std::string message;
    EXPECT_TRUE(parseScript("from: start\ncommands:\n" + commands, "s.yaml", script, message))
        << message;
    return script;
}

TEST(ScriptFile, CommandsAreReadInTheOrderOfTheirTimes) {
    const Script script = scriptOf("- {at: 9, click: 下放声呐, hold: 3}\n"
                                   "- {at: 1.5, key: Shift+t}\n"
                                   "- {at: 9, key: +, hold: 1}\n"
                                   "- {at: 2, drag: [300, -40], over: 2, button: right}\n"
                                   "- {at: 4, wheel: -3}\n"
                                   "- {at: 9, key: F12}\n");
    ASSERT_EQ(script.commands.size(), 6u);
    EXPECT_EQ(script.commands[0].keys, (std::vector<int>{KEY_SHIFT, 't'}));
    EXPECT_EQ(script.commands[1].y, -40);
    EXPECT_EQ(script.commands[1].button, 1);
    EXPECT_EQ(script.commands[1].duration, 2);
    EXPECT_EQ(script.commands[3].duration, 3);
    EXPECT_EQ(script.commands[3].line, 3);
    EXPECT_EQ(script.commands[4].keys, std::vector<int>{'+'});
    EXPECT_EQ(script.commands[5].keys, std::vector<int>{KEY_F12});
}

TEST(ScriptFile, FaultsAreToldWithTheirPlace) {
    const std::pair<const char*, const char*> faults[] = {
        {"", "s.yaml:1:1: a script must be a map"},
        {"from: start\n", "s.yaml:1:1: a script needs a list"},
        {"form: start\n", "s.yaml:1:1: a script has no key \"form\""},
        {"from: now\n", "s.yaml:1:7: from must be"},
        {"commands: [\n", "s.yaml:2:1: "},
        {"commands:\n- F1\n", "s.yaml:2:3: a command must be a map"},
        {"commands:\n- {key: F1}\n", "s.yaml:2:3: a command needs \"at\""},
        {"commands:\n- {at: 1}\n", "s.yaml:2:3: a command does one thing"},
        {"commands:\n- {at: 1, key: F1, type: a}\n", "s.yaml:2:3: a command does one thing"},
        {"commands:\n- {at: 1, at: 2, key: F1}\n", "s.yaml:2:11: \"at\" is given twice"},
        {"commands:\n- {at: -1, key: F1}\n", "s.yaml:2:8: at must be a number from 0"},
        {"commands:\n- {at: .nan, key: F1}\n", "s.yaml:2:8: at must be a number"},
        {"commands:\n- {at: 1, press: F1}\n", "s.yaml:2:11: a command has no key \"press\""},
        {"commands:\n- {at: 1, click: ''}\n", "s.yaml:2:18: click needs a text"},
        {"commands:\n- {at: 1, key: Shift+}\n", "s.yaml:2:16: there is no key \"\""},
        {"commands:\n- {at: 1, drag: [1, 2, 3]}\n", "s.yaml:2:17: drag needs"},
        {"commands:\n- {at: 1, drag: [1, .inf]}\n", "s.yaml:2:21: drag must be a number"},
        {"commands:\n- {at: 1, wheel: 0.5}\n", "s.yaml:2:18: wheel needs whole notches"},
        {"commands:\n- {at: 1, screenshot: ../x}\n", "s.yaml:2:23: screenshot needs a plain name"},
        {"commands:\n- {at: 1, wheel: 1, hold: 2}\n", "s.yaml:2:3: hold belongs to"},
        {"commands:\n- {at: 3, wheel: 1}\n- {at: 1, click: a, hold: 2.5}\n",
         "s.yaml:2:1: the mouse is still held by the command in line 3"},
    };
    for (const auto& [text, expected] : faults) {
        Script script;
        std::string message;
        EXPECT_FALSE(parseScript(text, "s.yaml", script, message)) << text;
        EXPECT_EQ(message.rfind(expected, 0), 0u) << text << message;
    }
}

/// Hears what a script does, frame by frame.
struct Recorder final : WindowListener {
    explicit Recorder(UIRoot& root) : ui(root) {}
    void onKey(int key, bool down, bool) override { add(down ? "down" : "up", key); }
    void onText(const char* utf8) override { events += std::string("'") + utf8 + "' "; }
    void onButton(int button, bool down, float x, float y) override {
        add(down ? "press" : "release", button);
        const UIEventMouse event{button, x, y};
        down ? ui.mouseDown(event) : ui.mouseUp(event);
    }
    void onMove(float x, float y) override {
        add("move", static_cast<int>(x));
        ui.mouseMove(x, y);
    }
    void onWheel(float notches) override { add("wheel", static_cast<int>(notches)); }
    void onModifiers(bool, bool, bool) override {}
    void onFocusLost() override {}
    void onLeft() override {}
    void onClose() override {}
    void onResized(int, int, float) override {}
    void add(const char* name, int value) { events += name + std::to_string(value) + ' '; }
    std::string events;
    UIRoot& ui;
};

struct ScriptPlayerTest : testing::Test {
    ScriptPlayerTest() {
        ui.resize(800, 600);
        auto* button = new UIButton(&ui, "Drop");
        button->setFixSize(80, 20);
        ui.addChild(button);
        auto* label = new UILabel(&ui, "Only a text");
        label->setAlignFree(true);
        label->setPosition(0, 50);
        ui.addChild(label);
        ui.update(0);
    }
    /// What happens before the frame of that time.
    std::string at(double time) {
        player.play(time, true);
        picture = player.getPictureName();
        player.pictureTaken();
        return std::exchange(listener.events, {});
    }
    LogCapture log;
    std::string picture; ///< of that frame
    UIRoot ui;
    Recorder listener{ui};
    ScriptPlayer player{listener, ui};
};

TEST_F(ScriptPlayerTest, PressesStayForAFrameAndKeepTheirOrderHoweverSlowTheFrames) {
    player.open(scriptOf("- {at: 0, click: Drop}\n- {at: 0.2, key: Shift+g}\n"
                         "- {at: 0.3, drag: [100, 0], over: 1}\n- {at: 1.5, screenshot: a}\n"
                         "- {at: 1.5, wheel: -2}\n- {at: 1.6, type: a5é}\n- {at: 1.7, quit: }\n"));
    EXPECT_EQ(at(0), "move40 press0 ");
    EXPECT_EQ(at(2), "release0 down270 down103 move400 "); // from the button to the middle
    EXPECT_EQ(picture, "a");
    EXPECT_EQ(at(2), "press0 "); // keys have 0.1 s to go; the wheel waits for the mouse
    EXPECT_EQ(at(2.5), "move450 up103 up270 "); // half of the way
    EXPECT_EQ(picture, "");
    EXPECT_EQ(at(3.1), "move500 release0 move400 wheel-1 ");
    EXPECT_FALSE(player.hasQuit());
    EXPECT_EQ(at(3.1), "wheel-1 ");
    EXPECT_EQ(at(3.2), "down97 'a' up97 down53 '5' up53 'é' ");
    EXPECT_TRUE(player.hasQuit());
    EXPECT_EQ(player.getFailures(), 0);
}

TEST_F(ScriptPlayerTest, AKeyPressedTwiceInOneSlowFrameIsSeenTwice) {
    player.open(scriptOf("- {at: 1, key: F1}\n- {at: 1.2, key: F2}\n- {at: 1.3, key: F1}\n"));
    const std::string f1 = "down" + std::to_string(KEY_F1), f2 = "down" + std::to_string(KEY_F2);
    EXPECT_EQ(at(2), f1 + " " + f2 + " ");
    EXPECT_EQ(at(2.5), "up" + f1.substr(4) + " up" + f2.substr(4) + " " + f1 + " ");
}

TEST_F(ScriptPlayerTest, TimesCountFromTheFirstRecordUnlessTheScriptSaysOtherwise) {
    Script script;
    std::string message;
    ASSERT_TRUE(parseScript("commands: [{at: 1, key: g}]", "s.yaml", script, message)) << message;
    player.open(script);
    player.play(5, false);
    EXPECT_EQ(at(7), "");
    EXPECT_EQ(at(7.9), "");
    EXPECT_EQ(at(8), "down103 'g' "); // as a keyboard tells both
}

TEST_F(ScriptPlayerTest, WhatIsNoButtonIsToldOnceWithThoseThatThereAre) {
    player.open(scriptOf("- {at: 0, click: Only a text}\n- {at: 0.1, click: Drop}\n"));
    EXPECT_EQ(at(0).find("press"), std::string::npos);
    EXPECT_NE(at(0.1).find("press0"), std::string::npos) << "the next command is done";
    EXPECT_EQ(player.getFailures(), 1);
    EXPECT_EQ(log.lines,
              std::vector<std::string>{
                  "s.yaml:3: there is no button \"Only a text\" to click; there are \"Drop\""});
}

TEST(ShippedScripts, FindTheirButtons) {
    for (const char* name : {"demo", "weapons"}) {
        Script script;
        std::string message;
        ASSERT_TRUE(
            readScript(std::string("data/missions/") + name + ".script.yaml", script, message))
            << message;
        LogicScene scene;
        scene.useProjectData();
        ASSERT_TRUE(scene.start());
        scene.frame(); // the panels find their places
        Recorder listener(*scene.ui);
        ScriptPlayer player(listener, *scene.ui);
        const double end = script.commands.back().at + 1;
        player.open(std::move(script));
        for (double time = 0; time < end; time += 0.1) { // the panels alone: no physics
            player.play(time, true);
            scene.ui->update(0);
        }
        EXPECT_EQ(player.getFailures(), 0) << (scene.log.lines.empty() ? "" : scene.log.lines[0]);
    }
}

} // namespace
