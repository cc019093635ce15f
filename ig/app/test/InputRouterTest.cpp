// SPDX-License-Identifier: MIT
#include "ig/app/InputRouter.h"
#include "ig/app/ControlApp.h"
#include "ig/app/MsgBox.h"
#include "ig/ui/UIButton.h"
#include "ig/ui/UIEditLine.h"
#include "ig/ui/UIRoot.h"

#include <gtest/gtest.h>

namespace ig {
namespace {

struct InputRouterTest : testing::Test {
    InputRouterTest() {
        root.resize(400, 300);
        place(button, 0);
        place(field, 20);
        root.update(0);
    }
    void place(UIElement* element, int y) {
        element->setAlignFree(true);
        element->setFixSize(100, 20);
        element->setPosition(0, y);
        root.addChild(element);
    }
    void clickField() {
        router.mouseDown(0, 50, 30);
        router.mouseUp(0, 50, 30);
    }

    UIRoot root;
    ControlApp scene;
    InputRouter router{&root, &scene};
    UIButton* button = new UIButton(&root, "b");   // 0 to 20
    UIEditLine* field = new UIEditLine(&root, ""); // 20 to 40
};

TEST_F(InputRouterTest, WhatTheUserInterfaceTakesNeverReachesTheScene) {
    EXPECT_FALSE(router.mouseDown(0, 50, 10));
    EXPECT_FALSE(scene.isLeftButtonDown());
    EXPECT_TRUE(button->isFocused());
    EXPECT_FALSE(router.mouseUp(0, 50, 10));
    EXPECT_FALSE(router.wheel(1));
    EXPECT_FALSE(scene.isWheelButtonUp());
    clickField();
    EXPECT_FALSE(router.keyDown('5'));
    router.text("5");
    EXPECT_FALSE(router.keyUp('5'));
    EXPECT_FALSE(scene.isKeyClick('5') || scene.isKeyPress('5'));
    EXPECT_EQ(field->getText(), "5");
    EXPECT_TRUE(router.keyDown(KEY_F1)); // no text
    EXPECT_TRUE(scene.isKeyClick(KEY_F1));
}

TEST_F(InputRouterTest, WhatWentDownForOneGoesUpForTheSame) {
    EXPECT_TRUE(router.keyDown('w'));
    clickField();
    EXPECT_FALSE(router.keyDown('w', true)); // still the scene's, and no command
    scene.endFrame();
    EXPECT_TRUE(router.keyUp('w'));
    EXPECT_FALSE(scene.isKeyPress('w'));
    EXPECT_FALSE(router.keyDown('g'));
    router.mouseDown(0, 300, 200); // the scene: the field is left
    EXPECT_TRUE(scene.isLeftButtonDown());
    EXPECT_FALSE(router.keyUp('g'));       // no projector for a typed g
    EXPECT_TRUE(router.mouseMove(50, 10)); // an orbit may lead over a button …
    EXPECT_EQ(root.getFocus(), nullptr);
    EXPECT_TRUE(router.mouseUp(0, 50, 10)); // … and end there
    EXPECT_FALSE(scene.isLeftButtonDown());
    router.mouseDown(0, 50, 10);
    EXPECT_FALSE(router.mouseUp(0, 300, 200));
    EXPECT_FALSE(router.keyUp('q'));                                   // whose press nobody saw
    EXPECT_FALSE(router.keyDown(-1) || router.mouseDown(9, 300, 200)); // which nobody knows
}

TEST_F(InputRouterTest, RepeatsNeverCommand) {
    router.keyDown('1');
    scene.endFrame();
    router.keyDown('1', true);
    router.keyDown('1'); // a repeat that isn't marked
    EXPECT_FALSE(scene.isKeyClick('1'));
    EXPECT_TRUE(router.keyDown(KEY_ALT, true)); // its release was kept from the window
    EXPECT_TRUE(scene.isKeyPress(KEY_ALT) && router.isHeld(KEY_ALT));
}

TEST_F(InputRouterTest, MotionIsCountedFromTheFirstPlaceThatIsKnown) {
    router.mouseMove(300, 200);
    EXPECT_EQ(scene.getMouseDX(), 0);
    router.mouseMove(303, 195);
    EXPECT_EQ(scene.getMouseDX(), 3);
    EXPECT_EQ(scene.getMouseDY(), -5);
    router.mouseDown(0, 310, 195); // what led here was no drag
    EXPECT_EQ(scene.getMouseDX(), 0);
    router.mouseMove(312, 195);
    router.mouseDown(1, 312, 195); // … and this is one
    EXPECT_EQ(scene.getMouseDX(), 2);
    router.focusLost();
    router.mouseMove(10, 250); // came back elsewhere: no jump
    EXPECT_EQ(scene.getMouseDX(), 0);
}

TEST_F(InputRouterTest, LosingTheFocusLetsEverythingGoAndKeepsTheText) {
    router.keyDown('w');
    router.mouseDown(1, 300, 200);
    router.focusLost();
    EXPECT_FALSE(scene.isKeyPress('w') || scene.isRightButtonDown());
    EXPECT_FALSE(router.keyUp('w'));
    EXPECT_TRUE(router.keyDown('w')); // a new press
    router.mouseDown(0, 50, 10);
    router.focusLost();
    EXPECT_FALSE(button->isFocused());
    clickField();
    router.text("half");
    router.focusLost();
    EXPECT_TRUE(field->isFocused());
    EXPECT_EQ(field->getText(), "half");
}

TEST(MsgBoxTest, IsRefusedAtOnceWhereNobodyCanAnswer) {
    EXPECT_FALSE(MsgBox(nullptr, "title", "text").modality());
}

} // namespace
} // namespace ig
